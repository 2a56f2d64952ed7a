// The one state behind kdcdb.h: the session, the open database, the keys and all scratch datablocks.
#ifndef FMDTOOLKIT_KDCDB_STORE_H
#define FMDTOOLKIT_KDCDB_STORE_H

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "kdcdb/commands.h"
#include "kdcdb/cursor.h"
#include "kdcdb/links.h"
#include "kdcdb/master_file.h"
#include "kdcdb/page_cache.h"
#include "kdcdb/scratch_block.h"
#include "kdcdb/stored_block.h"

namespace kdcdb {

using ScratchBlocks = std::vector<std::shared_ptr<ScratchBlock>>;

struct Store {
  PageCache cache;
  // By absolute base path.
  std::map<std::string, ScratchBlocks, std::less<>> scratch;
  std::map<std::string, DatabaseState, std::less<>> databases;
  std::map<std::string, std::unique_ptr<MasterFile>, std::less<>>
      held;  // closed, but locked until cleaned up

  std::map<std::string, std::weak_ptr<const StoredFile>, std::less<>> readers;  // by absolute path
  std::vector<std::unique_ptr<Cursor>> keys;  // key k at k - 1; null once it has ended
  std::string directory;                      // absolute; empty without a session
  std::string own_name;                       // base name of the session's files
  std::string base;                           // of the open database, absolute; empty without one
  bool keeps_lock = false;                    // the session comes back to the open database to clean up
  std::unique_ptr<MasterFile> master;

  bool is_open() const { return !base.empty(); }

  // Null for a key that is not live.
  Cursor* cursor(int key) const {
    const auto place = static_cast<std::size_t>(key) - 1;
    return place < keys.size() ? keys[place].get() : nullptr;
  }
  int new_key(std::shared_ptr<Datablock> block);
  void end_keys_of(const Datablock& block);
  std::shared_ptr<Datablock> find_linked(const Datablock& block) const;  // null where no link leads to it
  void drop_links_to(const Datablock& block);

  // Gives back the scratch datablocks of a database; keys of them end.
  void forget_scratch(std::string_view base_name);

  // What the session knew beyond files: links, assignments, locks kept.
  void end_session();

  // The datablocks of a database file as they are now; one object for all who look at the same state.
  Status open_stored(const std::string& path, std::shared_ptr<const StoredFile>& stored);
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
