// Which pages of a master file are free for a writer: gaps first, then the end of the file.
#ifndef FMDTOOLKIT_KDCDB_PAGE_ALLOCATOR_H
#define FMDTOOLKIT_KDCDB_PAGE_ALLOCATOR_H

#include <cstdint>
#include <vector>

#include "kdcdb/dictionary.h"

namespace kdcdb {

class PageAllocator {
 public:
  PageAllocator() = default;

  // Gaps between the extents that are in use, which may come in any order, below the end page given.
  PageAllocator(std::vector<Extent> in_use, std::uint64_t first_page, std::uint64_t end_page);

  // A run of at least one page and at most so many, behind the page given if that is free.
  Extent take(std::uint64_t at_most, std::uint64_t behind);

  // One run of so many pages.
  Extent take_run(std::uint64_t pages);

  void give_back(const Extent& extent);

 private:
  Extent cut(std::size_t gap, std::uint64_t pages);

  std::vector<Extent> gaps_;  // ascending
  std::uint64_t end_page_ = 0;
};

}  // namespace kdcdb

#endif
