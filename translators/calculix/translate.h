// From the results and the deck of a CalculiX job, or from its matrices, to a flexible body.
#ifndef FMDTOOLKIT_CALCULIX_TRANSLATE_H
#define FMDTOOLKIT_CALCULIX_TRANSLATE_H

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "calculix/frd_reader.h"
#include "calculix/input_error.h"
#include "calculix/reduction.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace calculix {

struct Units {
  std::string mass = "MEGAGRAM";
  std::string length = "MILLIMETER";
  std::string time = "SECOND";
  std::string force = "NEWTON";
};

struct Job {
  std::string results;                       // .frd, plain or gzipped; may be empty where matrices are given
  std::string deck;                          // .inp
  std::optional<double> density;             // goes before the deck's
  Units units;                               // of the deck
  std::vector<std::string> interface_nodes;  // names of node sets or of files with ids
  std::vector<std::string> monitor_nodes;    // likewise
  std::string comment;                       // for the header
  std::optional<ReductionRequest>
      reduction;  // component modes from matrices in place of those of the results
};

// A node at which a host may ask for the displacement.
struct MonitorNode {
  int node;  // index
  std::string label;
};

struct NodalLoad {
  int node;       // index
  int direction;  // 1 to 3 forces along the axes, 4 to 6 moments about them
  double value;
};

// What acts in a static step of the deck.
struct LoadCase {
  std::string label;
  std::vector<NodalLoad> loads;  // one for each node and direction
};

// The toolkit refused something; its message has told what.
class ToolkitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Told now and then: the step that runs and how far it is, 0 to 1.
using ProgressHandler = std::function<void(const char* step, double fraction)>;

// All that the input says, checked, but for the values of the modes.
struct Model {
  Job job;
  std::string title;
  FrdContents contents;
  std::vector<double> masses;  // per node
  std::vector<int> interface_ids;
  std::vector<MonitorNode> monitor_nodes;
  std::vector<LoadCase> load_cases;
  std::optional<Reduction> reduction;
  std::vector<double> results_hertz;  // with a reduction, of the modes of the results
  std::vector<InputError> notes;      // what the user should know, though nothing is wrong
};

// Reads deck and results once. Throws InputError.
Model read_model(const Job& job, const ProgressHandler& progress);

// Makes a body, which is the caller's to release, and reads the values of the modes into it. Message handlers
// are installed and KXI_KADCDB_DIR is set. Throws InputError for what is wrong with the results, ToolkitError
// when the toolkit refuses; no body is left then.
FmdBody* make_body(const Model& model, const ProgressHandler& progress);

}  // namespace calculix

#endif
