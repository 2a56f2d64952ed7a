#include "fmdtoolkit/free_edges.h"

namespace {

std::string key_of(const cFMDNode& first, const cFMDNode& second) {
  return std::to_string(first.ID()) + "_" + std::to_string(second.ID());
}

}  // namespace

cFMDEdge::cFMDEdge(cFMDNode* one, cFMDNode* other)
    : first_(one->ID() < other->ID() ? one : other),
      second_(first_ == one ? other : one),
      key_(key_of(*first_, *second_)),
      reference_count_(1) {
  first_->AddLinkedEdge(this);
  try {
    second_->AddLinkedEdge(this);
  } catch (...) {
    first_->RemoveLinkedEdge(this);
    throw;
  }
}

cFMDEdge::~cFMDEdge() {
  first_->RemoveLinkedEdge(this);
  second_->RemoveLinkedEdge(this);
}

const std::string& cFMDEdge::Key() const {
  return key_;
}

int cFMDEdge::RefCount() const {
  return reference_count_;
}

void cFMDEdge::AddRef() {
  ++reference_count_;
}

cFMDNode* cFMDEdge::GetAnotherNode(const cFMDNode* node) const {
  return first_ == node ? second_ : first_;
}
