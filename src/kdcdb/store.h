// The one state behind kdcdb.h: the session, the open database, the keys and all scratch datablocks.
#ifndef FMDTOOLKIT_KDCDB_STORE_H
#define FMDTOOLKIT_KDCDB_STORE_H

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "kdcdb/commands.h"
#include "kdcdb/cursor.h"
#include "kdcdb/master_file.h"
#include "kdcdb/page_cache.h"
#include "kdcdb/scratch_block.h"

namespace kdcdb {

using ScratchBlocks = std::vector<std::unique_ptr<ScratchBlock>>;

struct Store {
  PageCache cache;
  std::map<std::string, ScratchBlocks, std::less<>> scratch;  // by absolute base path
  std::vector<std::unique_ptr<Cursor>> keys;                  // key k at k - 1; null once it has ended
  std::string directory;                                      // absolute; empty without a session
  std::string own_name;                                       // base name of the session's files
  std::string base;  // of the open database, absolute; empty without one
  MasterFile master;

  bool is_open() const { return !base.empty(); }

  // Null for a key that is not live.
  Cursor* cursor(int key) const {
    const auto place = static_cast<std::size_t>(key) - 1;
    return place < keys.size() ? keys[place].get() : nullptr;
  }
  int new_key(ScratchBlock* block);
  void end_keys_of(const ScratchBlock& block);
};

Store& store();

// Runs an operation and turns what the standard library throws for want of memory into a status.
template <typename Operation>
Status guarded(Operation operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  } catch (const std::length_error&) {
    return kNoMemory;
  }
}

}  // namespace kdcdb

#endif
