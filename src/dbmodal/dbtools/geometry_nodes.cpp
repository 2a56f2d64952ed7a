#include "dbmodal/dbtools/geometry_nodes.h"

#include <algorithm>

#include "dbmodal/dbtools/face_strip.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr std::int32_t kNoNode = -1;

std::int64_t reference_count(const FmdBody& body) {
  std::int64_t total = std::int64_t{body.FaceListLength} + body.InterfaceNodeCount;
  for (int load_case = 0; load_case < body.NodalLoadCaseCount; ++load_case)
    total += body.NodalLoadCases[load_case].Count;
  return total;
}

bool are_nodes(const FmdBody& body, const std::int32_t* nodes, std::int32_t count) {
  return std::all_of(nodes, nodes + count,
                     [&](std::int32_t node) { return node >= 0 && node < body.NodeCount; });
}

// Whether faces, interface nodes and loads name nodes that exist, as they do but in a damaged dataset.
bool has_sound_references(const FmdBody& body) {
  if (!is_sound_face_list(body.FaceList, body.FaceCount, body.FaceListLength, body.NodeCount)) return false;
  if (!are_nodes(body, body.InterfaceNodes, body.InterfaceNodeCount)) return false;
  for (int load_case = 0; load_case < body.NodalLoadCaseCount; ++load_case) {
    const FmdNodalLoadCase& loads = body.NodalLoadCases[load_case];
    if (!are_nodes(body, loads.Nodes, loads.Count)) return false;
  }
  return true;
}

void replace_corner_counts(std::int32_t* list, std::int32_t faces) {
  for (std::int32_t face = 0; face < faces; ++face) {
    const std::int32_t corners = *list;
    *list = kNoNode;
    list += corners + 1;
  }
}

void append_other_references(const FmdBody& body, std::int32_t* end) {
  end = std::copy_n(body.InterfaceNodes, body.InterfaceNodeCount, end);
  for (int load_case = 0; load_case < body.NodalLoadCaseCount; ++load_case)
    end = std::copy_n(body.NodalLoadCases[load_case].Nodes, body.NodalLoadCases[load_case].Count, end);
}

bool find_geometry_nodes(FmdBody& body) {
  const std::int64_t total = reference_count(body);
  CArray<std::int32_t> nodes = allocate<std::int32_t>(total, "dbtools");
  if (nodes == nullptr) return false;
  if (!has_sound_references(body) || FMD_ElementFaces(&body, nodes.get()) == 0) {
    FMD_Error("Missing element face information");
    return false;
  }
  replace_corner_counts(nodes.get(), body.FaceCount);
  append_other_references(body, nodes.get() + body.FaceListLength);
  body.GeometryNodeCount = keep_distinct_nodes(nodes.get(), total);
  body.GeometryNodes = nodes.release();
  return true;
}

bool are_cached(const FmdBody& body, const std::int32_t* nodes, std::int32_t count) {
  const std::int32_t* first = body.GeometryNodes;
  const std::int32_t* end = first + body.GeometryNodeCount;
  return std::all_of(nodes, nodes + count,
                     [=](std::int32_t node) { return std::binary_search(first, end, node); });
}

}  // namespace

bool is_geometry_cache_complete(const FmdBody& body) {
  if (body.GeometryNodes == nullptr) return true;
  if (!has_sound_references(body) || !are_cached(body, body.InterfaceNodes, body.InterfaceNodeCount))
    return false;
  for (std::int32_t face = 0, place = 0; face < body.FaceCount; ++face) {
    const std::int32_t corners = body.FaceList[place];
    if (!are_cached(body, body.FaceList + place + 1, corners)) return false;
    place += corners + 1;
  }
  for (int load_case = 0; load_case < body.NodalLoadCaseCount; ++load_case) {
    const FmdNodalLoadCase& loads = body.NodalLoadCases[load_case];
    if (!are_cached(body, loads.Nodes, loads.Count)) return false;
  }
  return true;
}

std::int32_t keep_distinct_nodes(std::int32_t* values, std::int64_t count) {
  std::int32_t* end = values + count;
  std::sort(values, end);
  std::int32_t* first = std::find_if(values, end, [](std::int32_t node) { return node != kNoNode; });
  std::int32_t* last = std::unique(first, end);
  if (first != values) std::copy(first, last, values);
  return static_cast<std::int32_t>(last - first);
}

}  // namespace fmd

int* FMD_GeometryNodes(FmdBody* body, int* count) {
  *count = 0;
  if (CheckFMD(body) == 0) return nullptr;
  if (body->GeometryNodes == nullptr && !fmd::find_geometry_nodes(*body)) return nullptr;
  auto nodes = fmd::allocate<int>(body->GeometryNodeCount, "dbtools");
  if (nodes == nullptr) return nullptr;
  std::copy_n(body->GeometryNodes, body->GeometryNodeCount, nodes.get());
  *count = body->GeometryNodeCount;
  return nodes.release();
}

int FMD_RemoveInternalGeometry(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (body->InternalGeometryRemoved != 0) return body->InternalGeometryRemoved;
  FMD_Info("\n Remove internal geometry of FMD\n");
  FMD_StripCommonFaces(body);
  if (fmd::RemoveNonGeometryNodes(body) != 0) body->InternalGeometryRemoved = 1;
  return body->InternalGeometryRemoved;
}
