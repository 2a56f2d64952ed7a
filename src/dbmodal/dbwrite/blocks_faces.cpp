// The display mesh: element faces (14) and, at the oldest levels, element topology (5).
#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

// The old form sorts faces by their number of corners, from 2 to 13.
constexpr int kFaceTypes = 12;
constexpr int kFewestCorners = 2;

// Calls visit(corner count, corners) for each face.
template <typename Visit>
void for_each_face(const std::int32_t* list, int faces, Visit visit) {
  for (int face = 0; face < faces; ++face, list += *list + 1) visit(*list, list + 1);
}

bool fits_a_type(int corners) {
  return corners >= kFewestCorners && corners < kFewestCorners + kFaceTypes;
}

CArray<std::int32_t> copy_faces(FmdBody* body, int& faces, int& length) {
  FMD_FaceListSize(body, &faces, &length);
  auto list = allocate<std::int32_t>(length, "dbwrite");
  if (list != nullptr && FMD_ElementFaces(body, list.get()) == 0) list.reset();
  return list;
}

void write_faces_of_type(WriteJob& job, const std::int32_t* list, int faces, int corners) {
  constexpr std::int32_t kUnused[2] = {0, 0};
  for_each_face(list, faces, [&](int count, const std::int32_t* nodes) {
    if (count != corners) return;
    job.sink->put_ints(kUnused, 2);
    for (int k = 0; k < count; ++k) job.sink->put_int(FMD_NodeID(job.body, nodes[k]));
  });
}

}  // namespace

bool write_element_topology(WriteJob& job) {
  int faces = 0;
  int length = 0;
  const auto list = copy_faces(job.body, faces, length);
  if (list == nullptr) return false;
  int counts[kFaceTypes] = {};
  int left_out = 0;
  for_each_face(list.get(), faces, [&](int corners, const std::int32_t*) {
    if (fits_a_type(corners)) {
      ++counts[corners - kFewestCorners];
    } else {
      ++left_out;
    }
  });
  if (left_out > 0) {
    FMD_Warning("%d element face(s) with more than 13 nodes do not fit the old style topology.", left_out);
  }
  job.sink->put_int(faces - left_out);
  job.sink->put_int(kFaceTypes);
  for (int type = 0; type < kFaceTypes; ++type) {
    const std::int32_t row[3] = {type, counts[type], type + kFewestCorners};
    job.sink->put_ints(row, 3);
  }
  for (int type = 0; type < kFaceTypes; ++type) {
    write_faces_of_type(job, list.get(), faces, type + kFewestCorners);
  }
  return true;
}

bool write_element_faces(WriteJob& job) {
  int faces = 0;
  int length = 0;
  const auto list = copy_faces(job.body, faces, length);
  if (list == nullptr) return false;
  FMD_Info("\nNumber of Element Faces: %d", faces);
  // The size in bytes of a long list wraps; readers ignore it.
  const auto bytes = static_cast<std::int32_t>(16U + 4U * static_cast<std::uint32_t>(length));
  const std::int32_t head[4] = {bytes, 0, faces, length};
  job.sink->put_ints(head, 4);
  job.sink->put_ints(list.get(), as_size(length));
  return true;
}

}  // namespace fmd
