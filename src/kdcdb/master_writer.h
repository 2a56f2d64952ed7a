// The writer's side of a master file: which datablocks it gets, and the commit that makes them part of it.
#ifndef FMDTOOLKIT_KDCDB_MASTER_WRITER_H
#define FMDTOOLKIT_KDCDB_MASTER_WRITER_H

#include <memory>
#include <vector>

#include "kdcdb/master_content.h"
#include "kdcdb/new_block.h"

namespace kdcdb {

class MasterWriter {
 public:
  // Works on an open and locked file, which stays the caller's. kDamaged where a root or the newest
  // dictionary is: what it calls free may be all that is left of somebody's data.
  Status begin(int file);

  // A datablock to be stored under these qualifiers, in place of one that has them.
  std::shared_ptr<NewBlock> create_block(const Qualifiers& qualifiers);

  // Makes the datablocks that were completed part of the database, in one step: after a failure, be it one in
  // the writing of a datablock that was not abandoned, it is what it was. Without such a datablock nothing is
  // written. Forgets all new datablocks.
  Status commit();

  const std::vector<std::shared_ptr<NewBlock>>& new_blocks() const { return new_blocks_; }

 private:
  Status add_entries(std::vector<StoredEntry>& entries);
  Status write_dictionary(const std::vector<StoredEntry>& entries, Root& root);
  Status store_new_blocks();
  Status switch_root(const Root& root);
  void cut_back(const Root& newest);

  int file_ = -1;
  Root root_;                  // in force
  std::uint64_t old_end_ = 0;  // end page of the root before it
  std::vector<StoredEntry> entries_;
  bool is_in_doubt_ = false;  // which of two roots the disk has
  PageAllocator allocator_;
  std::vector<std::shared_ptr<NewBlock>> new_blocks_;
};

}  // namespace kdcdb

#endif
