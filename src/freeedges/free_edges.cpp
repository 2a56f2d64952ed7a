#include "fmdtoolkit/free_edges.h"

#include <memory>

namespace {

constexpr int kLeastCorners = 3;

}  // namespace

cFMDFreeEdges::cFMDFreeEdges() = default;

cFMDFreeEdges::~cFMDFreeEdges() {
  Clear();
}

// Edges first: they leave the lists of their nodes.
void cFMDFreeEdges::Clear() {
  for (const auto& entry : edges_) delete entry.second;
  edges_.clear();
  for (const auto& entry : nodes_) delete entry.second;
  nodes_.clear();
  free_edges_.clear();
}

void cFMDFreeEdges::FindFreeEdges(int faces, int* list) {
  Clear();
  PopulateEdges(faces, list);
  RemoveInternalEdges();
  GenerateFreeEdgeList();
}

std::vector<std::list<int>> cFMDFreeEdges::GetFreeEdges() const {
  return free_edges_;
}

cFMDNode* cFMDFreeEdges::FindNode(int id) {
  cFMDNode*& node = nodes_[id];
  if (node == nullptr) node = new cFMDNode(id);
  return node;
}

void cFMDFreeEdges::AddEdge(cFMDEdge* edge) {
  std::unique_ptr<cFMDEdge> added(edge);
  cFMDEdge*& entry = edges_[added->Key()];
  if (entry == nullptr) {
    entry = added.release();
  } else {
    entry->AddRef();
  }
}

void cFMDFreeEdges::PopulateEdges(int faces, int* list) {
  for (int face = 0; face < faces; ++face) {
    const int corners = *list;
    const int* corner = list + 1;
    for (int i = 0; corners >= kLeastCorners && i < corners; ++i) {
      cFMDNode* from = FindNode(corner[i]);
      cFMDNode* to = FindNode(corner[i + 1 < corners ? i + 1 : 0]);
      AddEdge(new cFMDEdge(from, to));
    }
    list += corners + 1;
  }
}

void cFMDFreeEdges::RemoveInternalEdges() {
  for (auto entry = edges_.begin(); entry != edges_.end();) {
    if (entry->second->RefCount() > 1) {
      delete entry->second;
      entry = edges_.erase(entry);
    } else {
      ++entry;
    }
  }
}

void cFMDFreeEdges::GenerateFreeEdgeList() {
  for (const auto& entry : nodes_) {
    cFMDNode* node = entry.second;
    if (node->EdgeCount() != 0) free_edges_.push_back(node->FindFreeEdge());
  }
}
