// Interface nodes, handed out as copies.
#include <algorithm>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

int* FMD_InterfaceNodes(FmdBody* body, int* count) {
  *count = 0;
  if (CheckFMD(body) == 0 || body->InterfaceNodeCount == 0) return nullptr;
  auto nodes = fmd::allocate<std::int32_t>(body->InterfaceNodeCount, "dbdata");
  if (nodes == nullptr) return nullptr;
  std::copy_n(body->InterfaceNodes, body->InterfaceNodeCount, nodes.get());
  *count = body->InterfaceNodeCount;
  return nodes.release();
}

int* FMD_InterfaceNodeIDs(FmdBody* body, int* count) {
  int* const nodes = FMD_InterfaceNodes(body, count);
  for (int i = 0; i < *count; ++i) nodes[i] = FMD_NodeID(body, nodes[i]);
  return nodes;
}
