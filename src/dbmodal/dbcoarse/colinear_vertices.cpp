#include "dbmodal/dbcoarse/colinear_vertices.h"

#include <cmath>

namespace fmd {

namespace {

constexpr double kTenDegrees = 0.17453292519943295;
constexpr double kLongestEdge = 0.05;  // of the diagonal

struct StraightLimits {
  double squared_length;
  double cosine;
};

// A sharp fold back counts as straight too: the sign of the cosine is not looked at.
bool is_vertex_kept(const CoarseMesh& mesh, std::int32_t previous, std::int32_t vertex, std::int32_t next,
                    const StraightLimits& limits) {
  const char* const live = mesh.live.get();
  if (live[previous] == 0 || live[vertex] == 0 || live[next] == 0) return true;
  const double* const here = mesh.position(vertex);
  const double* const before = mesh.position(previous);
  const double* const after = mesh.position(next);
  const double back = squared_distance(here, before);
  if (back == 0.0) return false;
  if (back > limits.squared_length) return true;
  const double ahead = squared_distance(here, after);
  if (ahead == 0.0 || ahead > limits.squared_length) return true;
  const double back_length = std::sqrt(back);
  const double ahead_length = std::sqrt(ahead);
  double cosine = 0.0;
  for (int k = 0; k < 3; ++k)
    cosine += (before[k] - here[k]) / back_length * ((after[k] - here[k]) / ahead_length);
  return limits.cosine > std::fabs(cosine);
}

// Kept corners move up in place, so that behind the last corner comes the first kept one.
void straighten(const CoarseMesh& mesh, CoarseFace& face, const StraightLimits& limits) {
  std::int32_t* const corners = face.corners;
  std::int32_t previous = corners[face.count - 1];
  std::int32_t kept = 0;
  for (std::int32_t k = 0; k < face.count; ++k) {
    const std::int32_t next = corners[k + 1 == face.count ? 0 : k + 1];
    if (!is_vertex_kept(mesh, previous, corners[k], next, limits)) continue;
    previous = corners[kept++] = corners[k];
  }
  face.count = kept;
}

}  // namespace

void remove_colinear_vertices(CoarseMesh& mesh, double diagonal) {
  const double longest = diagonal * kLongestEdge;
  const StraightLimits limits = {longest * longest, std::cos(kTenDegrees)};
  for (CoarseFace* face = mesh.faces.get(); face != mesh.faces.get() + mesh.face_count; ++face) {
    if (face->corners != nullptr && face->count >= 4) straighten(mesh, *face, limits);
  }
}

}  // namespace fmd
