// Blocks of the display mesh: element faces (14) and the old style topology (5).
#include <cstdint>

#include "dbmodal/dbread/block_reader.h"

namespace fmd {

namespace {

// Faces come as corner count and node places; places become indices. False where the list does not hold the
// faces that it should, or a corner is no node.
bool take_faces(const BlockReader& reader, std::int32_t faces, std::int32_t length, std::int32_t* list) {
  if (faces < 0) return false;
  std::int32_t at = 0;
  for (std::int32_t face = 0; face < faces; ++face) {
    if (at >= length || list[at] < 0 || list[at] > length - at - 1) return false;
    for (const std::int32_t end = at + list[at]; at < end; ++at) {
      std::int32_t& corner = list[at + 1];
      if (corner < 0 || corner >= reader.body.NodeCount) return false;
      corner = reader.node_index(corner);
    }
    ++at;
  }
  return true;
}

void install_faces(FmdBody& body, CArray<std::int32_t>& list, std::int32_t faces, std::int32_t length) {
  install(body.FaceList, list);
  body.FaceCount = faces;
  body.FaceListLength = body.FaceListCapacity = length;
}

// One type of faces in the old style: so many faces of one size.
struct FaceType {
  std::int32_t type;
  std::int32_t count;
  std::int32_t size;
};

// Words of the list that the types make; -1 for types that the record cannot hold.
std::int64_t list_length(const BlockReader& reader, const FaceType* types, std::int32_t count) {
  std::int64_t length = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const FaceType& type = types[i];
    if (type.count < 0 || type.size < 0 || !reader.has(type.count, 2 + std::int64_t{type.size})) return -1;
    length += (std::int64_t{type.size} + 1) * type.count;
    if (!reader.has(length, 1)) return -1;
  }
  return length <= INT32_MAX ? length : -1;
}

bool read_old_face(BlockReader& reader, std::int32_t size, std::int32_t* list) {
  if (!reader.skip_words(2) || !reader.read_ints(list + 1, size)) return false;
  list[0] = size;
  for (std::int32_t corner = 1; corner <= size; ++corner) {
    list[corner] = FMD_NodeIndex(&reader.body, list[corner]);
    if (list[corner] < 0) return false;
  }
  return true;
}

}  // namespace

bool read_element_faces(BlockReader& reader) {
  constexpr const char* kProblem = "Problem reading Element Faces";
  std::int32_t words[4];
  if (!reader.read_ints(words, 4)) return report(kProblem);
  const std::int32_t faces = words[2];
  const std::int32_t length = words[3];
  if (length > 0 && !reader.has(length, 1)) return report(kProblem);
  auto list = allocate_table<std::int32_t>(length, "Out of memory while reading Element Faces Block");
  if (list == nullptr) return false;
  if (!reader.read_ints(list.get(), length) || !take_faces(reader, faces, length, list.get()))
    return report(kProblem);
  install_faces(reader.body, list, faces, length);
  reader.body.FacesReserved = words[1];
  return true;
}

bool read_element_topology(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading old style element block";
  constexpr const char* kNoMemory = "Out of memory while reading Element Topology Block";
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2) || (counts[1] > 0 && !reader.has(counts[1], 3))) return report(kProblem);
  const auto types = allocate_table<FaceType>(counts[1], kNoMemory);
  if (types == nullptr) return false;
  static_assert(sizeof(FaceType) == 3 * sizeof(std::int32_t), "read as words");
  if (!reader.read_ints(&types[0].type, 3LL * counts[1])) return report(kProblem);
  const std::int64_t length = list_length(reader, types.get(), counts[1]);
  if (length < 0) return report(kProblem);
  auto list = allocate_table<std::int32_t>(length, kNoMemory);
  if (list == nullptr) return false;

  std::int32_t faces = 0;
  std::int32_t* at = list.get();
  for (std::int32_t i = 0; i < counts[1]; ++i) {
    const FaceType& type = types[static_cast<std::size_t>(i)];
    for (std::int32_t k = 0; k < type.count; ++k, ++faces, at += type.size + 1) {
      if (!read_old_face(reader, type.size, at)) return report(kProblem);
    }
  }
  if (faces != counts[0]) return report(kProblem);
  install_faces(reader.body, list, faces, static_cast<std::int32_t>(length));
  return true;
}

}  // namespace fmd
