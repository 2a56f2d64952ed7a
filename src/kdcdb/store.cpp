#include "kdcdb/store.h"

namespace kdcdb {

Store& store() {
  static Store the_store;
  return the_store;
}

int Store::new_key(ScratchBlock* block) {
  keys.push_back(std::make_unique<Cursor>(block));
  return static_cast<int>(keys.size());
}

void Store::end_keys_of(const ScratchBlock* block) {
  for (auto& key : keys)
    if (key != nullptr && key->block() == block) key.reset();
}

}  // namespace kdcdb
