#include "dbmodal/dbcoarse/pinches.h"

#include <algorithm>

namespace fmd {

namespace {

constexpr double kShortSide = 0.3;  // of the polygon

template <typename T>
CArray<T> make_array(std::int64_t count) {
  return CArray<T>(static_cast<T*>(allocate_quietly(count, sizeof(T))));
}

std::size_t as_place(std::int32_t value) {
  return static_cast<std::size_t>(value);
}

}  // namespace

bool PinchRemoval::provide_nodes(std::int32_t nodes) {
  last_place_ = make_array<std::int32_t>(nodes);
  if (last_place_ == nullptr) return false;
  std::fill_n(last_place_.get(), nodes, -1);
  return true;
}

bool PinchRemoval::provide_places(std::int32_t length) {
  if (length <= capacity_) return true;
  const std::int64_t room = std::max<std::int64_t>(length, std::int64_t{2} * capacity_);
  if (room > INT32_MAX) return false;
  auto next_repeat = make_array<std::int32_t>(room);
  auto marked = make_array<char>(room);
  if (next_repeat == nullptr || marked == nullptr) return false;
  next_repeat_ = std::move(next_repeat);
  marked_ = std::move(marked);
  capacity_ = static_cast<std::int32_t>(room);
  return true;
}

bool PinchRemoval::find_repeats(const std::int32_t* polygon, std::int32_t length) {
  bool found = false;
  for (std::int32_t place = length - 1; place >= 0; --place) {
    std::int32_t& last = last_place_[as_place(polygon[place])];
    next_repeat_[as_place(place)] = last;
    found = found || last >= 0;
    last = place;
  }
  for (std::int32_t place = 0; place < length; ++place) last_place_[as_place(polygon[place])] = -1;
  return found;
}

void PinchRemoval::mark(const std::int32_t* polygon, std::int32_t from, std::int32_t to, const char* live) {
  for (std::int32_t place = from; place < to; ++place) {
    if (live[polygon[place]] != 0) marked_[as_place(place)] = 1;
  }
}

// The inner side between the two places, or the outer one, which has the later place in it.
void PinchRemoval::mark_side(const std::int32_t* polygon, std::int32_t length, std::int32_t first,
                             std::int32_t last, const char* live) {
  const auto limit = static_cast<std::int32_t>(kShortSide * length);
  if (last - first < limit) {
    mark(polygon, first + 1, last, live);
  } else if (length - last + first < limit) {
    mark(polygon, 0, first, live);
    mark(polygon, last, length, live);
  }
}

bool PinchRemoval::remove_pinches(std::int32_t* polygon, std::int32_t& length, const char* live) {
  if (!provide_places(length)) return false;
  if (!find_repeats(polygon, length)) return true;
  std::fill_n(marked_.get(), length, '\0');
  for (std::int32_t first = 0; first < length; ++first) {
    if (marked_[as_place(first)] != 0) continue;
    for (std::int32_t last = next_repeat_[as_place(first)]; last >= 0; last = next_repeat_[as_place(last)]) {
      if (marked_[as_place(last)] == 0) mark_side(polygon, length, first, last, live);
    }
  }
  std::int32_t kept = 0;
  for (std::int32_t place = 0; place < length; ++place) {
    if (marked_[as_place(place)] == 0) polygon[kept++] = polygon[place];
  }
  length = kept;
  return true;
}

}  // namespace fmd
