// What a master file says of itself: its header, its two roots, and the dictionary that a root leads to.
// Nothing is believed before it has been checked against its checksum and the length of the file.
#ifndef FMDTOOLKIT_KDCDB_MASTER_CONTENT_H
#define FMDTOOLKIT_KDCDB_MASTER_CONTENT_H

#include <array>
#include <cstdint>
#include <vector>

#include "kdcdb/dictionary.h"
#include "kdcdb/master_pages.h"

namespace kdcdb {

enum class SlotState { kEmpty, kDamaged, kSound };

struct RootSlot {
  SlotState state = SlotState::kEmpty;
  Root root;
};

struct MasterContent {
  std::uint64_t file_id = 0;
  std::uint64_t file_pages = 0;  // whole ones
  std::array<RootSlot, 2> slots;

  // The sound root of the highest generation and the other one; null where there is none.
  const Root* newest() const;
  const Root* older() const;
};

// kNotADatabase for a file that has no header of ours, kDamaged for one that is too short for its roots.
Status read_master_content(int file, MasterContent& content);

// The entries that a root leads to; none for an empty database.
Status read_dictionary(int file, const MasterContent& content, const Root& root,
                       std::vector<StoredEntry>& entries);

// The pages that a root's dictionary takes; none of an empty database.
Extent dictionary_extent(const Root& root);

}  // namespace kdcdb

#endif
