// From the matrices of a job and the interfaces of a user to component modes on the nodes of a mesh.
#ifndef FMDTOOLKIT_CALCULIX_REDUCTION_H
#define FMDTOOLKIT_CALCULIX_REDUCTION_H

#include <functional>
#include <string>
#include <vector>

#include "calculix/deck_reader.h"
#include "calculix/frd_reader.h"
#include "calculix/interfaces.h"

namespace calculix {

struct MatrixFiles {
  std::string stiffness;  // .sti, plain or gzipped
  std::string mass;       // .mas, likewise
  std::string dofs;       // .dof, likewise
};

struct ReductionRequest {
  MatrixFiles files;
  std::vector<InterfaceRequest> interfaces;
  int fixed_modes = 20;
};

// An interface as it came out. A group has a node of its own at its reference point, which moves with it.
struct Attachment {
  InterfaceKind kind;
  std::string name;
  std::vector<int> ids;  // of its nodes
  int first_mode;        // index
  int coordinates;
  int reference_node;  // id; 0 for single nodes
  Point reference;
};

struct Reduction {
  std::vector<DegreeOfFreedom> dofs;
  ReducedModel model;
  std::vector<Attachment> attachments;
};

using StepHandler = std::function<void(const char* step, double fraction)>;

// Reads the matrices and makes the modes. Ids of reference nodes follow the highest id of deck and mesh. The
// mesh file is named where nodes are missing. Notes tell what the user should know. Throws InputError.
Reduction reduce(const ReductionRequest& request, const Deck& deck, const FrdContents& contents,
                 const std::string& mesh_file, double mass_of_elements, std::vector<InputError>& notes,
                 const StepHandler& progress);

// The shapes of all modes on the nodes of the mesh, reference nodes among them, one after the other.
void send_mode_vectors(const Reduction& reduction, const FrdContents& contents,
                       const std::function<void(const ModeVector&)>& receive);

}  // namespace calculix

#endif
