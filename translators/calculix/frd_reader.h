// Mesh, modes and nodal results of a CalculiX result file, in two passes: the first takes the mesh and the
// list of modes, so that a body can be planned, the second hands on one vector after the other.
#ifndef FMDTOOLKIT_CALCULIX_FRD_READER_H
#define FMDTOOLKIT_CALCULIX_FRD_READER_H

#include <functional>
#include <string>
#include <vector>

#include "calculix/id_index.h"
#include "calculix/mesh.h"

namespace calculix {

struct Mode {
  int number;
  double hertz;
  long line;  // of its first dataset's head
  bool has_displacement = false;
  bool has_stress = false;
};

struct FrdContents {
  std::string title;
  std::string program;
  Mesh mesh;
  IdIndex node_index;
  std::vector<Mode> modes;
  int skipped_datasets = 0;  // of other than frequency analyses
  long first_skipped_line = 0;
};

// How much of the file has been read, 0 to 1, now and then.
using FractionHandler = std::function<void(double)>;

FrdContents read_frd(const std::string& path, const FractionHandler& progress);

enum class Quantity { displacement, stress };

// One vector: nodes by index and six values for each, displacements with three zeros for the rotations,
// stresses in the order xx yy zz xy xz yz.
struct ModeVector {
  const Mode* mode = nullptr;
  Quantity quantity = Quantity::displacement;
  std::vector<int> nodes;
  std::vector<double> values;
};

void read_mode_vectors(const std::string& path, const FrdContents& contents,
                       const std::function<void(const ModeVector&)>& receive,
                       const FractionHandler& progress);

}  // namespace calculix

#endif
