// The free edges of the body's faces as chains of node ids, generated once.
#include "fmdtoolkit/free_edges.h"

#include <algorithm>
#include <cstdint>
#include <exception>

#include "body/body.h"
#include "dbmodal/dbtools/face_strip.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr std::int32_t kNotGenerated = -1;

using Chains = std::vector<std::list<int>>;

void release_chains(FmdBody& body) {
  for (std::int32_t chain = 0; body.FreeEdges != nullptr && chain < body.FreeEdgeCount; ++chain)
    release(body.FreeEdges[chain]);
  release(body.FreeEdges);
  release(body.FreeEdgeSizes);
  body.FreeEdgeCount = kNotGenerated;
}

// Faces that are not sound have no edges.
Chains find_chains(const FmdBody& body) {
  cFMDFreeEdges run;
  if (is_sound_face_list(body.FaceList, body.FaceCount, body.FaceListLength, body.NodeCount))
    run.FindFreeEdges(body.FaceCount, body.FaceList);
  return run.GetFreeEdges();
}

bool store_chain(FmdBody& body, std::int32_t place, const std::list<int>& chain) {
  CArray<std::int32_t> ids = allocate<std::int32_t>(static_cast<std::int64_t>(chain.size()), "dbtools");
  if (ids == nullptr) return false;
  std::transform(chain.begin(), chain.end(), ids.get(), [&](int node) { return FMD_NodeID(&body, node); });
  body.FreeEdges[place] = ids.release();
  body.FreeEdgeSizes[place] = static_cast<std::int32_t>(chain.size());
  return true;
}

bool store_chains(FmdBody& body, const Chains& chains) {
  body.FreeEdgeCount = static_cast<std::int32_t>(chains.size());
  if (chains.empty()) return true;
  body.FreeEdgeSizes = allocate<std::int32_t>(body.FreeEdgeCount, "dbtools").release();
  if (body.FreeEdgeSizes == nullptr) return false;
  body.FreeEdges = allocate<std::int32_t*>(body.FreeEdgeCount, "dbtools").release();
  if (body.FreeEdges == nullptr) return false;
  std::int32_t place = 0;
  for (const std::list<int>& chain : chains) {
    if (!store_chain(body, place++, chain)) return false;
  }
  return true;
}

bool has_chain(FmdBody* body, int chain) {
  return chain >= 0 && chain < body->FreeEdgeCount && body->FreeEdgeSizes != nullptr;
}

}  // namespace

}  // namespace fmd

int FMD_GenerateFreeEdges(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  FMD_RemoveInternalGeometry(body);
  fmd::release_chains(*body);
  try {
    if (fmd::store_chains(*body, fmd::find_chains(*body))) return 1;
  } catch (const std::exception&) {
    fmd::report_allocation_failure("dbtools");
  }
  fmd::release_chains(*body);
  return 0;
}

int FMD_GetFreeEdgeCount(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (body->FreeEdgeCount == fmd::kNotGenerated && FMD_GenerateFreeEdges(body) == 0) return 0;
  return body->FreeEdgeCount;
}

int FMD_GetFreeEdgeSize(FmdBody* body, int chain) {
  if (CheckFMD(body) == 0) return 0;
  if (body->FreeEdgeCount == fmd::kNotGenerated && FMD_GenerateFreeEdges(body) == 0) return 0;
  return fmd::has_chain(body, chain) ? body->FreeEdgeSizes[chain] : 0;
}

int FMD_GetFreeEdge(FmdBody* body, int chain, int* out) {
  if (CheckFMD(body) == 0 || !fmd::has_chain(body, chain)) return 0;
  std::copy_n(body->FreeEdges[chain], body->FreeEdgeSizes[chain], out);
  return body->FreeEdgeSizes[chain];
}
