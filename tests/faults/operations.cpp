#include "faults/operations.h"

namespace fmdtest {

std::vector<Operation> all_operations() {
  std::vector<Operation> all;
  for (const auto* table :
       {&frame_operations, &table_operations, &geometry_operations, &mode_operations, &matrix_operations,
        &load_operations, &invariant_operations, &motion_operations, &record_operations, &stored_operations})
    all.insert(all.end(), table->begin(), table->end());
  return all;
}

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  return out << operation.name;
}

}  // namespace fmdtest
