#include "kdcdb/store.h"

#include <algorithm>

#include "kdcdb/paths.h"
#include "system/file_system.h"

namespace kdcdb {

Store& store() {
  static Store the_store;
  return the_store;
}

int Store::new_key(std::shared_ptr<Datablock> block) {
  const auto key = static_cast<int>(keys.size()) + 1;
  block->keys.reserve(block->keys.size() + 1);
  block->keys.push_back(key);
  try {
    keys.push_back(std::make_unique<Cursor>(block));
  } catch (...) {
    block->keys.pop_back();
    throw;
  }
  return key;
}

void Store::end_keys_of(const Datablock& block) {
  for (const int key : block.keys) keys[static_cast<std::size_t>(key) - 1].reset();
}

std::shared_ptr<Datablock> Store::find_linked(const Datablock& block) const {
  for (const auto& [name, database] : databases) {
    for (const Link& link : database.links) {
      if (link.block.get() == &block) return link.block;
    }
  }
  return nullptr;
}

void Store::drop_links_to(const Datablock& block) {
  for (auto& [name, database] : databases) {
    std::vector<Link>& links = database.links;
    links.erase(std::remove_if(links.begin(), links.end(),
                               [&](const Link& link) { return link.block.get() == &block; }),
                links.end());
  }
}

void Store::forget_scratch(std::string_view base_name) {
  const auto found = scratch.find(base_name);
  if (found == scratch.end()) return;
  for (const auto& block : found->second) {
    end_keys_of(*block);
    drop_links_to(*block);
  }
  scratch.erase(found);
}

// A database that is held was left in the middle of being written: nobody comes back for its temporary set.
void Store::end_session() {
  for (const auto& database : held)
    fmd::file_system().unlink(Path(database.first.c_str(), kTemporarySet).text());
  while (!scratch.empty()) forget_scratch(scratch.begin()->first);
  own_name.clear();
  databases.clear();
  held.clear();
  readers.clear();
}

Status Store::open_stored(const std::string& path, std::shared_ptr<const StoredFile>& stored) {
  std::shared_ptr<const StoredFile> now;
  const auto known = readers.find(path);
  const Status status =
      StoredFile::open(path.c_str(), known == readers.end() ? nullptr : known->second.lock(), now);
  if (status != kOk) return status;
  readers[path] = now;
  stored = std::move(now);
  return kOk;
}

}  // namespace kdcdb
