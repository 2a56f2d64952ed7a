#include "kdcdb/page_allocator.h"

#include <algorithm>

namespace kdcdb {

PageAllocator::PageAllocator(std::vector<Extent> in_use, std::uint64_t first_page, std::uint64_t end_page)
    : end_page_(end_page) {
  std::sort(in_use.begin(), in_use.end(), [](const Extent& a, const Extent& b) { return a.page < b.page; });
  std::uint64_t free_from = first_page;
  for (const Extent& extent : in_use) {
    if (extent.page > free_from) gaps_.push_back({free_from, extent.page - free_from});
    free_from = std::max(free_from, extent.page + extent.pages);
  }
  if (end_page > free_from) gaps_.push_back({free_from, end_page - free_from});
  end_page_ = std::max(end_page, free_from);
}

Extent PageAllocator::cut(std::size_t gap, std::uint64_t pages) {
  Extent& from = gaps_[gap];
  const Extent taken{from.page, pages};
  from.page += pages;
  from.pages -= pages;
  if (from.pages == 0) gaps_.erase(gaps_.begin() + static_cast<std::ptrdiff_t>(gap));
  return taken;
}

Extent PageAllocator::take(std::uint64_t at_most, std::uint64_t behind) {
  if (gaps_.empty()) return take_run(at_most);
  std::size_t gap = 0;
  for (std::size_t i = 0; i < gaps_.size(); ++i) {
    if (gaps_[i].page == behind) gap = i;
  }
  return cut(gap, std::min(at_most, gaps_[gap].pages));
}

Extent PageAllocator::take_run(std::uint64_t pages) {
  for (std::size_t i = 0; i < gaps_.size(); ++i) {
    if (gaps_[i].pages >= pages) return cut(i, pages);
  }
  const Extent taken{end_page_, pages};
  end_page_ += pages;
  return taken;
}

void PageAllocator::give_back(const Extent& extent) {
  const auto place = std::lower_bound(gaps_.begin(), gaps_.end(), extent,
                                      [](const Extent& a, const Extent& b) { return a.page < b.page; });
  const auto inserted = gaps_.insert(place, extent);
  const auto next = inserted + 1;
  if (next != gaps_.end() && inserted->page + inserted->pages == next->page) {
    inserted->pages += next->pages;
    gaps_.erase(next);
  }
  if (inserted == gaps_.begin()) return;
  const auto before = inserted - 1;
  if (before->page + before->pages != inserted->page) return;
  before->pages += inserted->pages;
  gaps_.erase(inserted);
}

}  // namespace kdcdb
