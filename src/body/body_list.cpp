#include "body/body_list.h"

namespace fmd {

namespace {

FmdBody* BodyList = nullptr;

// The link that points at the body, or the null link at the tail.
FmdBody** link_to(const FmdBody* body) {
  FmdBody** link = &BodyList;
  while (*link != nullptr && *link != body) link = &(*link)->Next;
  return link;
}

}  // namespace

FmdBody* first_body() {
  return BodyList;
}

bool is_listed(const FmdBody* body) {
  return body != nullptr && *link_to(body) == body;
}

void append_body(FmdBody* body) {
  *link_to(nullptr) = body;
}

bool remove_body(FmdBody* body) {
  FmdBody** link = link_to(body);
  if (*link == nullptr) return false;
  *link = body->Next;
  return true;
}

}  // namespace fmd
