// Kernels on flat face lists: per face its corner count, then its corners as node indices.
//
// Two solid elements that share a face each contribute it, with opposite orientation. Stripping finds such
// pairs by sorting the faces on a canonical form, in which they are neighbours, and walks the sorted faces.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_FACE_STRIP_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_FACE_STRIP_H

#include <cstdint>

namespace fmd {

// Whether the list has room for exactly so many faces and every corner is an index below the node count.
bool is_sound_face_list(const std::int32_t* list, std::int32_t faces, std::int32_t length,
                        std::int32_t nodes);

// A face in canonical form: its largest corner first, then walked towards the larger neighbour of it. What
// decides most comparisons stands in the record itself.
struct CanonicalFace {
  std::uint64_t head;    // corner count, first corner
  std::uint64_t walk;    // the two corners after the first
  std::int32_t place;    // where its corners start; grows in the order of the list
  std::int32_t forward;  // 1: the walk runs as the corners are listed; 0: it runs backward
};

struct FaceListSize {
  std::int32_t faces;
  std::int32_t length;
};

// Brings every face of a sound list into canonical form: corners are rotated in place, orientation stays.
void canonicalize_faces(std::int32_t* list, std::int32_t faces, CanonicalFace* records);

// Whether two faces run through the same corners, whichever way round.
bool are_same_cycle(const CanonicalFace& left, const CanonicalFace& right, const std::int32_t* list);

// By corner count, then by the corners of the walk; faces of one cycle keep the order of the list.
void sort_faces(CanonicalFace* records, std::int32_t faces, const std::int32_t* list);

// Strips a sound list of common faces and leaves the rest in sorted order and canonical rotation. Of
// neighbours with one orientation the later is judged on; neighbours with opposite orientation both go. The
// last face is judged against the one before it, whatever became of that. Needs a record per face and a copy
// of the list as work space.
FaceListSize strip_common_faces(std::int32_t* list, std::int32_t faces, std::int32_t length,
                                CanonicalFace* records, std::int32_t* copy);

}  // namespace fmd

#endif
