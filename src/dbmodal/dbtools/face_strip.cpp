#include "dbmodal/dbtools/face_strip.h"

#include <algorithm>
#include <cstddef>

namespace fmd {

namespace {

constexpr int kCornersInRecord = 3;

std::uint64_t pack(std::int32_t high, std::int32_t low) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32 | static_cast<std::uint32_t>(low);
}

std::int32_t corner_count(const CanonicalFace& face) {
  return static_cast<std::int32_t>(face.head >> 32);
}

// The step-th corner of the walk; step 0 is the first corner.
std::int32_t corner_at(const std::int32_t* corners, std::int32_t count, bool forward, std::int32_t step) {
  return step == 0 || forward ? corners[step] : corners[count - step];
}

// Below, at or above 0, by the corners that the records do not hold.
int compare_tails(const CanonicalFace& left, const CanonicalFace& right, const std::int32_t* list) {
  const std::int32_t count = corner_count(left);
  for (std::int32_t step = kCornersInRecord; step < count; ++step) {
    const std::int32_t a = corner_at(list + left.place, count, left.forward != 0, step);
    const std::int32_t b = corner_at(list + right.place, count, right.forward != 0, step);
    if (a != b) return a < b ? -1 : 1;
  }
  return 0;
}

CanonicalFace canonicalize(std::int32_t* corners, std::int32_t count, std::int32_t place) {
  if (count == 0) return {0, 0, place, 0};
  std::rotate(corners, std::max_element(corners, corners + count), corners + count);
  const bool forward = count > 2 && corners[1] > corners[count - 1];
  const std::int32_t second = count > 1 ? corner_at(corners, count, forward, 1) : 0;
  const std::int32_t third = count > 2 ? corner_at(corners, count, forward, 2) : 0;
  return {pack(count, corners[0]), pack(second, third), place, forward ? 1 : 0};
}

// Marks the faces that go by a place of -1.
void drop_common_faces(CanonicalFace* records, std::int32_t faces, const std::int32_t* list) {
  constexpr std::int32_t kDropped = -1;
  const auto same = [&](std::int32_t i) { return are_same_cycle(records[i], records[i + 1], list); };
  const auto opposite = [&](std::int32_t i) { return records[i].forward != records[i + 1].forward; };

  const std::int32_t last = faces - 1;
  const bool last_goes = faces > 1 && same(last - 1) && opposite(last - 1);
  for (std::int32_t i = 0; i < last;) {
    if (!same(i)) {
      ++i;
      continue;
    }
    const bool both = opposite(i);
    records[i].place = kDropped;
    if (both) records[i + 1].place = kDropped;
    i += both ? 2 : 1;
  }
  if (last_goes) records[last].place = kDropped;
}

FaceListSize write_kept_faces(std::int32_t* list, const CanonicalFace* records, std::int32_t faces,
                              const std::int32_t* copy) {
  FaceListSize size = {0, 0};
  for (std::int32_t i = 0; i < faces; ++i) {
    if (records[i].place < 0) continue;
    const std::int32_t words = corner_count(records[i]) + 1;
    std::copy_n(copy + records[i].place - 1, words, list + size.length);
    size.length += words;
    ++size.faces;
  }
  return size;
}

}  // namespace

bool is_sound_face_list(const std::int32_t* list, std::int32_t faces, std::int32_t length,
                        std::int32_t nodes) {
  if (faces < 0 || length < 0 || (list == nullptr && length > 0)) return false;
  std::int32_t place = 0;
  for (std::int32_t face = 0; face < faces; ++face) {
    if (place >= length) return false;
    const std::int32_t corners = list[place];
    if (corners < 0 || corners >= length - place) return false;
    const std::int32_t* first = list + place + 1;
    if (!std::all_of(first, first + corners, [=](std::int32_t node) { return node >= 0 && node < nodes; }))
      return false;
    place += corners + 1;
  }
  return place == length;
}

void canonicalize_faces(std::int32_t* list, std::int32_t faces, CanonicalFace* records) {
  std::int32_t place = 0;
  for (std::int32_t face = 0; face < faces; ++face) {
    const std::int32_t count = list[place++];
    records[face] = canonicalize(list + place, count, place);
    place += count;
  }
}

bool are_same_cycle(const CanonicalFace& left, const CanonicalFace& right, const std::int32_t* list) {
  return left.head == right.head && left.walk == right.walk && compare_tails(left, right, list) == 0;
}

void sort_faces(CanonicalFace* records, std::int32_t faces, const std::int32_t* list) {
  std::sort(records, records + faces, [list](const CanonicalFace& left, const CanonicalFace& right) {
    if (left.head != right.head) return left.head < right.head;
    if (left.walk != right.walk) return left.walk < right.walk;
    const int order = compare_tails(left, right, list);
    return order != 0 ? order < 0 : left.place < right.place;
  });
}

FaceListSize strip_common_faces(std::int32_t* list, std::int32_t faces, std::int32_t length,
                                CanonicalFace* records, std::int32_t* copy) {
  std::copy_n(list, length, copy);
  canonicalize_faces(copy, faces, records);
  sort_faces(records, faces, copy);
  drop_common_faces(records, faces, copy);
  return write_kept_faces(list, records, faces, copy);
}

}  // namespace fmd
