// Interface nodes: node indices in order of definition.
#include <algorithm>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

int FMD_SetInterfaceNode(FmdBody* body, int id) {
  constexpr int kStep = 100;
  if (CheckFMD(body) == 0) return 0;
  const int index = FMD_NodeIndex(body, id);
  if (index < 0) return 0;
  std::int32_t* const end = body->InterfaceNodes + body->InterfaceNodeCount;
  if (std::find(body->InterfaceNodes, end, index) != end) return 1;
  if (body->InterfaceNodeCount >= body->InterfaceNodeCapacity) {
    if (!fmd::grow(body->InterfaceNodes, std::int64_t{body->InterfaceNodeCapacity} + kStep)) {
      fmd::report_allocation_failure("dbset");
      return 0;
    }
    body->InterfaceNodeCapacity += kStep;
  }
  body->InterfaceNodes[body->InterfaceNodeCount++] = index;
  body->BlockExists[fmd::kInterfaceNodes] = 1;
  return 1;
}
