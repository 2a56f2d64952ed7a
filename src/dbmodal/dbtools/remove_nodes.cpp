// The removal of nodes that are not geometry. All that can fail is prepared first; then the body changes in
// one go.
#include <algorithm>

#include "dbmodal/dbdata/sorted_table.h"
#include "dbmodal/dbtools/geometry_nodes.h"
#include "dbmodal/dbtools/shorten.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

// The node table and the tables that are allocated and grow with it, with room for the kept nodes.
struct NodeTables {
  CArray<FmdNode> nodes;
  CArray<FmdNode*> mode_nodes[TOTAL_MODE_INFO_TYPES];
  CArray<FmdIdIndex> sorted[TOTAL_MODE_INFO_TYPES];

  bool provide(std::int32_t count) {
    nodes = allocate<FmdNode>(count, "dbtools");
    if (nodes == nullptr) return false;
    for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
      mode_nodes[type] = allocate<FmdNode*>(count, "dbtools");
      if (mode_nodes[type] == nullptr) return false;
      sorted[type] = allocate<FmdIdIndex>(count, "dbtools");
      if (sorted[type] == nullptr) return false;
    }
    return true;
  }
};

class NodeRemoval {
 public:
  NodeRemoval(FmdBody& body, const KeptNodes& kept) : body_(body), kept_(kept) {}

  bool prepare(const std::int32_t* places);
  void apply(const std::int32_t* places);

 private:
  bool shorten_modes(int kind);
  void fill_node_table();
  void fill_mode_nodes(int kind);
  void install_tables();
  void drop_empty_kind(int kind);
  void renumber_references(const std::int32_t* places);

  FmdBody& body_;
  KeptNodes kept_;
  ShortenedModes modes_[TOTAL_MODE_INFO_TYPES];
  ShortenedLoads loads_;
  NodeTables tables_;
};

bool NodeRemoval::shorten_modes(int kind) {
  ShortenedModes& modes = modes_[kind];
  if (!modes.map_rows(body_, kind, kept_)) return false;
  if ((kind == kShape || FMD_ModeExist(&body_, kind) != 0) && !modes.ShortenModeFile(body_, kind))
    return false;
  return modes.shorten_pre_load(body_, kind);
}

bool NodeRemoval::prepare(const std::int32_t* places) {
  return shorten_modes(kShape) && shorten_modes(kStress) && shorten_modes(kStrain) &&
         loads_.ShortenModalLoads(body_, places) && tables_.provide(kept_.count);
}

// Records move whole, nodal inertias with them.
void NodeRemoval::fill_node_table() {
  FmdNode* nodes = tables_.nodes.get();
  for (std::int32_t place = 0; place < kept_.count; ++place) {
    FmdNode& node = body_.Nodes[kept_.nodes[place]];
    nodes[place] = node;
    node.Inertia = nullptr;
    tables_.mode_nodes[kShape][static_cast<std::size_t>(place)] = nodes + place;
    tables_.sorted[kShape][static_cast<std::size_t>(place)] = {node.Id, place};
  }
  sort_pairs(tables_.sorted[kShape].get(), kept_.count);
}

void NodeRemoval::fill_mode_nodes(int kind) {
  std::int32_t row = 0;
  for (std::int32_t place = 0; place < kept_.count; ++place) {
    if (!modes_[kind].carries(place)) continue;
    FmdNode* node = tables_.nodes.get() + place;
    tables_.mode_nodes[kind][static_cast<std::size_t>(row)] = node;
    tables_.sorted[kind][static_cast<std::size_t>(row)] = {node->Id, row};
    ++row;
  }
  sort_pairs(tables_.sorted[kind].get(), row);
  body_.ModeNodeCount[kind] = row;
}

void NodeRemoval::install_tables() {
  for (std::int32_t node = 0; node < body_.NodeCount; ++node) release(body_.Nodes[node].Inertia);
  release(body_.Nodes);
  body_.Nodes = tables_.nodes.release();
  body_.SortedModeNodes[kShape] = nullptr;  // the same array as SortedNodes
  release(body_.SortedNodes);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    release(body_.ModeNodes[type]);
    body_.ModeNodes[type] = tables_.mode_nodes[type].release();
    release(body_.SortedModeNodes[type]);
    body_.SortedModeNodes[type] = tables_.sorted[type].release();
    body_.LastModeNodePlace[type] = 0;
  }
  body_.SortedNodes = body_.SortedModeNodes[kShape];
  body_.LastNodePlace = 0;
  body_.NodeCount = kept_.count;
  body_.ModeNodeCount[kShape] = kept_.count;
  body_.NodeCapacity = kept_.count;
  body_.ReservedNodes = kept_.count;
}

// Stress or strain of which every node has gone ends with them.
void NodeRemoval::drop_empty_kind(int kind) {
  char& modes = body_.BlockExists[kind == kStress ? kModalStress : kModalStrain];
  char& pre_load = body_.BlockExists[kind == kStress ? kPreStress : kPreStrain];
  const char* name = kind == kStress ? "Stress" : "Strain";
  if (body_.ModeNodeCount[kind] > 0) return;
  if (modes != 0) {
    FMD_Warning("All the nodes referenced in %s Mode have been removed. %s Mode data is eliminated.", name,
                name);
  }
  if (pre_load != 0) {
    FMD_Warning("All the nodes referenced in Pre-%s have been removed. Pre-%s data is eliminated.", name,
                name);
  }
  modes = 0;
  pre_load = 0;
}

void NodeRemoval::renumber_references(const std::int32_t* places) {
  for (std::int32_t face = 0, word = 0; face < body_.FaceCount; ++face) {
    for (std::int32_t corners = body_.FaceList[word++]; corners > 0; --corners, ++word)
      body_.FaceList[word] = places[body_.FaceList[word]];
  }
  for (std::int32_t entry = 0; entry < body_.InterfaceNodeCount; ++entry)
    body_.InterfaceNodes[entry] = places[body_.InterfaceNodes[entry]];
}

void NodeRemoval::apply(const std::int32_t* places) {
  for (int kind = 0; kind < TOTAL_MODE_INFO_TYPES; ++kind) modes_[kind].install(body_, kind);
  loads_.install(body_);
  fill_node_table();
  fill_mode_nodes(kStress);
  fill_mode_nodes(kStrain);
  install_tables();
  drop_empty_kind(kStress);
  drop_empty_kind(kStrain);
  renumber_references(places);
  FMD_CleanModesInMemory(&body_);
}

// By node index, the place of the node among those that are kept, or -1.
CArray<std::int32_t> places_of_nodes(const FmdBody& body, const KeptNodes& kept) {
  CArray<std::int32_t> places = allocate<std::int32_t>(body.NodeCount, "dbtools");
  if (places == nullptr) return places;
  std::fill_n(places.get(), body.NodeCount, -1);
  for (std::int32_t place = 0; place < kept.count; ++place)
    places[static_cast<std::size_t>(kept.nodes[place])] = place;
  return places;
}

int remove_all_but(FmdBody& body, const KeptNodes& kept) {
  const CArray<std::int32_t> places = places_of_nodes(body, kept);
  NodeRemoval removal(body, kept);
  if (places == nullptr || !removal.prepare(places.get())) return 0;
  removal.apply(places.get());
  return 1;
}

void drop_geometry_cache(FmdBody& body) {
  release(body.GeometryNodes);
  body.GeometryNodeCount = 0;
}

}  // namespace

int RemoveNonGeometryNodes(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  // Faces and nodes that came after the cache was made are not in it.
  if (!is_geometry_cache_complete(*body)) drop_geometry_cache(*body);
  int count = 0;
  const CArray<int> nodes(FMD_GeometryNodes(body, &count));
  if (nodes == nullptr) return 1;
  const int done = remove_all_but(*body, {nodes.get(), count});
  drop_geometry_cache(*body);
  return done;
}

}  // namespace fmd
