#include "fmdtoolkit/free_edges.h"

cFMDNode::cFMDNode(int id) : id_(id) {}

cFMDNode::~cFMDNode() = default;

int cFMDNode::ID() const {
  return id_;
}

int cFMDNode::EdgeCount() const {
  return static_cast<int>(linked_edges_.size());
}

void cFMDNode::AddLinkedEdge(cFMDEdge* edge) {
  linked_edges_.push_back(edge);
}

void cFMDNode::RemoveLinkedEdge(cFMDEdge* edge) {
  linked_edges_.remove(edge);
}

cFMDNode* cFMDNode::GetConnectedNode() {
  cFMDEdge* taken = nullptr;
  cFMDNode* nearest = nullptr;
  for (cFMDEdge* edge : linked_edges_) {
    cFMDNode* other = edge->GetAnotherNode(this);
    if (nearest != nullptr && other->ID() >= nearest->ID()) continue;
    taken = edge;
    nearest = other;
  }
  if (taken == nullptr) return nullptr;
  nearest->RemoveLinkedEdge(taken);
  RemoveLinkedEdge(taken);
  return nearest;
}

std::list<int> cFMDNode::FindFreeEdge() {
  const auto ends_at = [this](const cFMDNode* node) { return node == this || node->EdgeCount() != 1; };

  std::list<int> chain;
  cFMDNode* node = GetConnectedNode();
  chain.push_back(id_);
  for (; node != nullptr; node = node->GetConnectedNode()) {
    chain.push_back(node->ID());
    if (ends_at(node)) break;
  }
  if (node == this) return chain;

  for (node = GetConnectedNode(); node != nullptr; node = node->GetConnectedNode()) {
    chain.push_front(node->ID());
    if (ends_at(node)) break;
  }
  return chain;
}
