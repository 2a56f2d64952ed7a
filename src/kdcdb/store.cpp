#include "kdcdb/store.h"

namespace kdcdb {

Store& store() {
  static Store the_store;
  return the_store;
}

int Store::new_key(ScratchBlock* block) {
  const auto key = static_cast<int>(keys.size()) + 1;
  block->keys.reserve(block->keys.size() + 1);
  keys.push_back(std::make_unique<Cursor>(block));
  block->keys.push_back(key);
  return key;
}

void Store::end_keys_of(const ScratchBlock& block) {
  for (const int key : block.keys) keys[static_cast<std::size_t>(key) - 1].reset();
}

}  // namespace kdcdb
