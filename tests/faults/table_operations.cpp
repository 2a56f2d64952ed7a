#include <cstring>

#include "faults/operations.h"

namespace fmdtest {

namespace {

bool free_and_tell(int* array) {
  const bool is_there = array != nullptr;
  FMD_FreeMemory(array);
  return is_there;
}

// New indices follow those that the scene has, also when a call is repeated after a failure.
bool adds_node(Scene& s) {
  const int before = FMD_NodeCount(s.body);
  return FMD_AddNode(s.body, 5000 + before) == before && FMD_NodeIndex(s.body, 5000 + before) == before;
}

int by_id_order(int left, int right) {
  return By_Id(&left, &right);
}

}  // namespace

const std::vector<Operation> table_operations = {
    {"FMD_AddNode", empty_body, adds_node},
    {"FMD_AddNode.growing", body_of_thousand_nodes, adds_node},
    {"FMD_AddMode", empty_body, [](Scene& s) { return FMD_AddMode(s.body, 5) == 0; }},
    {"FMD_LookupOrAddNode", empty_body, [](Scene& s) { return FMD_LookupOrAddNode(s.body, 5) == 0; }},
    {"FMD_LookupOrAddMode", empty_body, [](Scene& s) { return FMD_LookupOrAddMode(s.body, 5) == 0; }},
    {"FMD_NodeIndex", full_body, [](Scene& s) { return FMD_NodeIndex(s.body, 12) == 1; }},
    {"FMD_NodeID", full_body, [](Scene& s) { return FMD_NodeID(s.body, 1) == 12; }},
    {"FMD_ModeIndex", full_body, [](Scene& s) { return FMD_ModeIndex(s.body, 2) == 1; }},
    {"FMD_ModeNumber", full_body, [](Scene& s) { return FMD_ModeNumber(s.body, 1) == 2; }},
    {"FMD_NodeCount", full_body, [](Scene& s) { return FMD_NodeCount(s.body) == kSceneNodes; }},
    {"FMD_ModeCount", full_body, [](Scene& s) { return FMD_ModeCount(s.body) == kSceneModes; }},
    {"FMD_ModeNodeCount", full_body, [](Scene& s) { return FMD_ModeNodeCount(s.body, 1) == kSceneNodes; }},
    {"FMD_ModeNodeID", full_body, [](Scene& s) { return FMD_ModeNodeID(s.body, 2, 3) == 14; }},
    {"FMD_ModeNodeIndex", full_body, [](Scene& s) { return FMD_ModeNodeIndex(s.body, 1, 14) == 3; }},
    {"By_Id", no_body, [](Scene&) { return by_id_order(1, 2) == -1 && by_id_order(2, 2) == 0; }},
    {"SelectedModeIndex", no_body,
     [](Scene&) {
       int modes[] = {3, 5, 9};
       return SelectedModeIndex(9, modes, 3) == 2;
     }},
    {"FMD_SetInterfaceNode", body_of_thousand_nodes,
     [](Scene& s) { return FMD_SetInterfaceNode(s.body, 15) == 1; }},
    {"FMD_SetInterfaceNode.growing", body_of_thousand_nodes,
     [](Scene& s) {
       for (int id = 1000; id < 1100; ++id)
         if (FMD_SetInterfaceNode(s.body, id) != 1) return false;
       return true;
     }},
    {"FMD_InterfaceNodes", full_body,
     [](Scene& s) { return free_and_tell(FMD_InterfaceNodes(s.body, s.ints)) && s.ints[0] == 2; }},
    {"FMD_InterfaceNodeIDs", full_body,
     [](Scene& s) { return free_and_tell(FMD_InterfaceNodeIDs(s.body, s.ints)) && s.ints[0] == 2; }},
    {"FMD_SwapNodesByID", full_body,
     [](Scene& s) {
       FMD_SwapNodesByID(s.body, 11, 12);
       return FMD_NodeCount(s.body) == kSceneNodes;
     }},
    {"FMD_RenumberNodes", full_body,
     [](Scene& s) { return FMD_RenumberNodes(s.body, 100) == 1 && FMD_NodeCount(s.body) == kSceneNodes; }},
    {"FMD_RenumberInterfaceNodes", full_body,
     [](Scene& s) {
       int ids[] = {500, 14};
       return FMD_RenumberInterfaceNodes(s.body, 2, ids) == 1 && FMD_NodeIndex(s.body, 500) == 0;
     }},

    {"FMD_SetHeader", full_body,
     [](Scene& s) {
       char text[] = "text";
       return FMD_SetHeader(s.body, text, text, text, text, text, text) == 1;
     }},
    {"FMD_Header", full_body,
     [](Scene& s) {
       FMD_Header(s.body, s.text[0], s.text[1], s.text[2], s.text[3], s.text[4], s.text[5], s.text[6]);
       return s.text[0][0] == '\0';
     }},
    {"FMD_Version", full_body, [](Scene& s) { return FMD_Version(s.body) == 31; }},
    {"FMD_SetVersion", full_body,
     [](Scene& s) {
       FMD_SetVersion(s.body, 20);
       return FMD_Version(s.body) == 20;
     }},
    {"FMD_SetNodeCoordinates", empty_body,
     [](Scene& s) { return FMD_SetNodeCoordinates(s.body, 5, 1, 2, 3) == 1; }},
    {"FMD_NodeCoordinates", full_body,
     [](Scene& s) { return FMD_NodeCoordinates(s.body, 1, s.values) == 1 && s.values[0] == 1.0; }},
    {"FMD_NodeCoordinateList", full_body,
     [](Scene& s) {
       return FMD_NodeCoordinateList(s.body, s.values, s.ints) == 1 && s.ints[0] == kSceneNodes;
     }},
    {"FMD_SetNodalMass", empty_body, [](Scene& s) { return FMD_SetNodalMass(s.body, 5, 2.0) == 1; }},
    {"FMD_AddNodalMass", empty_body, [](Scene& s) { return FMD_AddNodalMass(s.body, 5, 2.0) == 1; }},
    {"FMD_NodalMass", full_body, [](Scene& s) { return FMD_NodalMass(s.body, 1) == 1.5; }},
    {"FMD_SetNodalInertia", empty_body,
     [](Scene& s) { return FMD_SetNodalInertia(s.body, 5, 1, 2, 3, 4, 5, 6) == 1; }},
    {"FMD_SetNodalInertiaEntry", empty_body,
     [](Scene& s) { return FMD_SetNodalInertiaEntry(s.body, 5, 1, 2, 3.0) == 1; }},
    {"FMD_NodalInertia", full_body,
     [](Scene& s) { return FMD_NodalInertia(s.body, 0, s.values) == 1 && s.values[4] == 2.0; }},
    {"FMD_NodalMassAndGeometry", full_body,
     [](Scene& s) {
       return FMD_NodalMassAndGeometry(s.body, 1, s.values, s.values + 1) == 1 && s.values[0] == 1.5;
     }},
    {"FMD_BodySize", full_body, [](Scene& s) { return FMD_BodySize(s.body) > 1.7; }},

    {"FMD_SetFaceList", empty_body,
     [](Scene& s) {
       int ids[] = {1, 2, 3, 4};
       return FMD_SetFaceList(s.body, 4, ids) == 1;
     }},
    {"FMD_SetFace", empty_body, [](Scene& s) { return FMD_SetFace(s.body, 3, 1, 2, 3) == 1; }},
    {"FMD_FaceListSize", full_body,
     [](Scene& s) {
       return FMD_FaceListSize(s.body, s.ints, s.ints + 1) == 10 && s.ints[0] == 2 && s.ints[1] == 10;
     }},
    {"FMD_ElementFaces", full_body,
     [](Scene& s) { return FMD_ElementFaces(s.body, s.ints) == 1 && s.ints[0] == 4; }},
};

}  // namespace fmdtest
