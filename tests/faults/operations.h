// Every exported operation, once, with a call that reaches its allocations.
#ifndef FMDTOOLKIT_TESTS_OPERATIONS_H
#define FMDTOOLKIT_TESTS_OPERATIONS_H

#include <ostream>
#include <vector>

#include "faults/scene.h"

namespace fmdtest {

// What a failed allocation may look like from outside.
enum class Failure {
  kReported,  // a message comes with the failure result
  kSilent     // the operation has no message of its own
};

struct Operation {
  const char* name;  // a dot and a remark may follow the operation's name
  void (*prepare)(Scene& scene);
  bool (*run)(Scene& scene);  // whether it succeeded, with the right result
  Failure failure = Failure::kReported;
  // Whether the same call succeeds on the same body once there is memory.
  bool repeats = true;
};

std::vector<Operation> all_operations();
std::ostream& operator<<(std::ostream& out, const Operation& operation);

// The tables behind it.
extern const std::vector<Operation> frame_operations;      // messages, lifecycle, units, small helpers
extern const std::vector<Operation> table_operations;      // nodes, modes, header, nodal data, faces
extern const std::vector<Operation> geometry_operations;   // internal geometry, free edges, nearest nodes
extern const std::vector<Operation> mode_operations;       // vectors, cache, statistics
extern const std::vector<Operation> matrix_operations;     // matrices, mass, invariants, dataset
extern const std::vector<Operation> load_operations;       // loads, rigid modes, monitors, operators
extern const std::vector<Operation> invariant_operations;  // invariants over modes
extern const std::vector<Operation> motion_operations;     // rigid motions of a body
extern const std::vector<Operation> record_operations;     // record streams
extern const std::vector<Operation> stored_operations;     // bodies in a database

}  // namespace fmdtest

#endif
