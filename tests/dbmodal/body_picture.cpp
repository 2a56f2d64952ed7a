#include "dbmodal/body_picture.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "body/body.h"

namespace fmdtest {

namespace {

BodyPicture::Row node_row(FmdBody* body, int index) {
  BodyPicture::Row row(3);
  FMD_NodeCoordinates(body, index, row.data());
  row.push_back(FMD_NodalMass(body, index));
  double tensor[9];
  if (FMD_NodalInertia(body, index, tensor) != 0) row.insert(row.end(), tensor, tensor + 9);
  return row;
}

void add_vectors(FmdBody* body, int type, BodyPicture& picture) {
  const int nodes = FMD_ModeNodeCount(body, type);
  std::vector<double> halves[2];
  for (int mode = 0; mode < FMD_ModeCount(body); ++mode) {
    const int number = FMD_ModeNumber(body, mode);
    // Mode 0 of stress and strain is another vector.
    if ((type != fmd::kShape && number == 0) || FMD_ModeExist(body, type) == 0) continue;
    for (int part = 0; part < 2; ++part) {
      halves[part].assign(static_cast<std::size_t>(3 * nodes), -1.0);
      FMD_Mode(body, number, type, halves[part].data(), part);
    }
    for (int node = 0; node < nodes; ++node) {
      BodyPicture::Row& row = picture.vectors[{type, number, FMD_ModeNodeID(body, type, node)}];
      for (const std::vector<double>& half : halves)
        row.insert(row.end(), half.begin() + 3 * node, half.begin() + 3 * node + 3);
    }
  }
}

void add_pre_load(FmdBody* body, int type, BodyPicture& picture) {
  std::vector<double> values(static_cast<std::size_t>(6 * FMD_ModeNodeCount(body, type)));
  const double* stored = type == fmd::kStress ? body->PreStress : body->PreStrain;
  if (stored == nullptr || FMD_Read_Mode_Double(body, 0, type, values.data()) == 0) return;
  for (int node = 0; node < FMD_ModeNodeCount(body, type); ++node) {
    const auto first = values.begin() + 6 * node;
    picture.pre_loads[{type, FMD_ModeNodeID(body, type, node)}] = {first, first + 6};
  }
}

void add_faces(FmdBody* body, BodyPicture& picture) {
  for (int face = 0, place = 0; face < body->FaceCount; ++face) {
    std::vector<int> corners;
    for (int corner = 1; corner <= body->FaceList[place]; ++corner)
      corners.push_back(FMD_NodeID(body, body->FaceList[place + corner]));
    place += body->FaceList[place] + 1;
    picture.faces.push_back(corners);
  }
}

void add_loads(FmdBody* body, BodyPicture& picture) {
  for (int load_case = 0; load_case < body->NodalLoadCaseCount; ++load_case) {
    const FmdNodalLoadCase& loads = body->NodalLoadCases[load_case];
    picture.loads.emplace_back();
    for (int entry = 0; entry < loads.Count; ++entry) {
      picture.loads.back().push_back({static_cast<double>(FMD_NodeID(body, loads.Nodes[entry])),
                                      static_cast<double>(loads.Coordinates[entry]), loads.Values[entry]});
    }
  }
}

template <typename Map, typename IdOf>
Map restrict(const Map& map, const std::set<int>& ids, IdOf id_of) {
  Map kept;
  for (const auto& entry : map)
    if (ids.count(id_of(entry.first)) > 0) kept.insert(entry);
  return kept;
}

void expect_sorted_table(const FmdIdIndex* pairs, int count, FmdNode* const* nodes) {
  for (int place = 0; place < count; ++place) {
    EXPECT_LE(pairs[place > 0 ? place - 1 : 0].Id, pairs[place].Id);
    ASSERT_GE(pairs[place].Index, 0);
    ASSERT_LT(pairs[place].Index, count);
    EXPECT_EQ(nodes[pairs[place].Index]->Id, pairs[place].Id);
  }
}

}  // namespace

bool BodyPicture::operator==(const BodyPicture& other) const {
  return nodes == other.nodes && vectors == other.vectors && pre_loads == other.pre_loads &&
         faces == other.faces && interface_nodes == other.interface_nodes && loads == other.loads;
}

BodyPicture BodyPicture::restricted_to(const std::set<int>& ids) const {
  BodyPicture kept = *this;
  kept.nodes = restrict(nodes, ids, [](int id) { return id; });
  kept.vectors = restrict(vectors, ids, [](const auto& key) { return std::get<2>(key); });
  kept.pre_loads = restrict(pre_loads, ids, [](const auto& key) { return key.second; });
  return kept;
}

BodyPicture picture_of(FmdBody* body) {
  int keep = 0;
  FMD_GetKeepModesInMemory(body, &keep);
  FMD_SetKeepModesInMemory(body, 0);
  BodyPicture picture;
  for (int node = 0; node < FMD_NodeCount(body); ++node)
    picture.nodes[FMD_NodeID(body, node)] = node_row(body, node);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) add_vectors(body, type, picture);
  add_pre_load(body, fmd::kStress, picture);
  add_pre_load(body, fmd::kStrain, picture);
  add_faces(body, picture);
  for (int entry = 0; entry < body->InterfaceNodeCount; ++entry)
    picture.interface_nodes.push_back(FMD_NodeID(body, body->InterfaceNodes[entry]));
  add_loads(body, picture);
  FMD_SetKeepModesInMemory(body, keep);
  return picture;
}

void expect_sound(FmdBody* body) {
  EXPECT_GE(body->NodeCapacity, body->NodeCount);
  EXPECT_EQ(body->ModeNodeCount[fmd::kShape], body->NodeCount);
  EXPECT_EQ(body->SortedModeNodes[fmd::kShape], body->SortedNodes);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    for (int place = 0; place < body->ModeNodeCount[type]; ++place) {
      FmdNode* node = body->ModeNodes[type][place];
      ASSERT_GE(node, body->Nodes);
      ASSERT_LT(node, body->Nodes + body->NodeCount);
    }
    if (body->SortedModeNodes[type] != nullptr)
      expect_sorted_table(body->SortedModeNodes[type], body->ModeNodeCount[type], body->ModeNodes[type]);
  }
  for (int node = 0; node < body->NodeCount; ++node)
    EXPECT_EQ(FMD_NodeIndex(body, FMD_NodeID(body, node)), node);
}

}  // namespace fmdtest
