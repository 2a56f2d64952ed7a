#include "calculix/translate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numeric>

#include "calculix/deck_mesh.h"
#include "calculix/faces.h"
#include "calculix/input_error.h"
#include "calculix/load_cases.h"
#include "calculix/lumping.h"
#include "calculix/modal_rows.h"
#include "calculix/model.h"

namespace calculix {

namespace {

constexpr double two_pi = 6.28318530718;  // the toolkit's own digits, so that frequencies come back as given

struct BodyRelease {
  void operator()(FmdBody* body) const { FMD_UnLink(body); }
};

using BodyPointer = std::unique_ptr<FmdBody, BodyRelease>;

void require(int result, const char* what) {
  if (result == 0) throw ToolkitError(std::string("the toolkit could not ") + what);
}

void set_header(FmdBody* body, const Model& model) {
  const std::string& used = model.contents.program;
  const auto& reduction = model.job.reduction;
  std::string title = model.title;
  const std::string& source = reduction ? reduction->files.stiffness : model.job.results;
  std::string name = std::filesystem::path(source).filename().string();
  std::string type = "CalculiX";
  std::string program = used.empty() ? "" : "Results of CalculiX " + used;
  if (reduction) program = "Craig-Bampton modes from matrices of CalculiX";
  std::string deck = "Deck " + std::filesystem::path(model.job.deck).filename().string();
  std::string comment = model.job.comment;
  require(FMD_SetHeader(body, title.data(), name.data(), type.data(), program.data(), deck.data(),
                        comment.data()),
          "set the header");
}

// The toolkit answers nothing, but what it did not take is not there afterwards.
void set_units(FmdBody* body, Units units) {
  FMD_SetUnits(body, units.mass.data(), units.length.data(), units.time.data(), units.force.data());
  constexpr std::size_t label_size = 16;
  char set[4][label_size];
  FMD_Units(body, set[0], set[1], set[2], set[3]);
  const bool taken =
      units.mass == set[0] && units.length == set[1] && units.time == set[2] && units.force == set[3];
  if (!taken || !(FMD_UCF(body) > 0.0)) throw ToolkitError("the toolkit could not set the units");
}

void set_nodes(FmdBody* body, const Mesh& mesh, const std::vector<double>& masses) {
  for (std::size_t i = 0; i < mesh.node_ids.size(); ++i) {
    const Point& at = mesh.points[i];
    require(FMD_SetNodeCoordinates(body, mesh.node_ids[i], at[0], at[1], at[2]), "add a node");
    require(FMD_SetNodalMass(body, mesh.node_ids[i], masses[i]), "set a nodal mass");
  }
}

void set_faces(FmdBody* body, const Mesh& mesh) {
  for (const Face& face : outer_faces(mesh)) {
    std::array<int, largest_face> ids{};
    for (std::size_t i = 0; i < static_cast<std::size_t>(face.corners); ++i) {
      ids[i] = mesh.node_ids[static_cast<std::size_t>(face.nodes[i])];
    }
    require(FMD_SetFaceList(body, face.corners, ids.data()), "add a face");
  }
}

// Mass, centre and inertia of the nodal masses.
void set_global_properties(FmdBody* body) {
  double mass = 0.0;
  double inertia[9];
  double centre[3];
  require(FMD_TotalMassInertia(body, &mass, inertia, centre), "sum up the masses");
  require(FMD_SetGlobalMass(body, mass, centre, inertia), "set the global mass properties");
}

// The modes have unit modal mass, so that the generalized stiffness is the eigenvalue.
void set_modes(FmdBody* body, const std::vector<Mode>& modes) {
  const double factor = FMD_UCF(body);
  for (const Mode& mode : modes) {
    const double omega = two_pi * mode.hertz;
    require(FMD_SetGeneralizedMass(body, mode.number, mode.number, 1.0), "set a generalized mass");
    require(FMD_SetGeneralizedStiffness(body, mode.number, mode.number, omega * omega / factor),
            "set a generalized stiffness");
  }
}

// The modes are not orthogonal: all entries of both matrices, on one side of the diagonal.
void set_reduced_matrices(FmdBody* body, const ReducedModel& reduced) {
  const double factor = FMD_UCF(body);
  for (int row = 0; row < reduced.modes; ++row) {
    for (int column = row; column < reduced.modes; ++column) {
      const auto place = static_cast<std::size_t>(row) * static_cast<std::size_t>(reduced.modes) +
                         static_cast<std::size_t>(column);
      require(FMD_SetGeneralizedMass(body, row + 1, column + 1, reduced.mass[place]),
              "set a generalized mass");
      require(FMD_SetGeneralizedStiffness(body, row + 1, column + 1, reduced.stiffness[place] / factor),
              "set a generalized stiffness");
    }
  }
}

void set_vector(FmdBody* body, const Mesh& mesh, const ModeVector& vector) {
  constexpr int shape = 0;
  constexpr int stress = 1;
  const int type = vector.quantity == Quantity::displacement ? shape : stress;
  for (std::size_t i = 0; i < vector.nodes.size(); ++i) {
    const int id = mesh.node_ids[static_cast<std::size_t>(vector.nodes[i])];
    double values[6];
    std::copy_n(vector.values.begin() + static_cast<std::ptrdiff_t>(6 * i), 6, values);
    require(FMD_SetModeVec(body, vector.mode->number, id, type, values), "store a mode");
  }
}

// One point a node, which gives its displacement.
void set_monitor_points(FmdBody* body, const Model& model, ModalRows& rows) {
  constexpr int point_type = 1;
  constexpr int displacement = 1;
  constexpr int all_translations = 123;
  const Mesh& mesh = model.contents.mesh;
  for (std::size_t i = 0; i < model.monitor_nodes.size(); ++i) {
    const auto node = static_cast<std::size_t>(model.monitor_nodes[i].node);
    Point at = mesh.points[node];
    std::string name = monitor_name(mesh.node_ids[node]);
    std::string label = model.monitor_nodes[i].label;
    FMD_SetMonitorPointInfo(body, point_type, displacement, all_translations, 0, at.data(), name.data(),
                            label.data());
    const bool stored = FMD_SetMonitorPointOperator(body, static_cast<int>(i), 1, rows.displacements(i)) == 0;
    require(stored ? 1 : 0, "set a monitor point");
  }
}

void set_load_cases(FmdBody* body, const Model& model, const ModalRows& rows) {
  const Mesh& mesh = model.contents.mesh;
  for (std::size_t c = 0; c < model.load_cases.size(); ++c) {
    const int number = static_cast<int>(c);
    for (std::size_t m = 0; m < model.contents.modes.size(); ++m) {
      const Mode& mode = model.contents.modes[m];
      if (!std::isfinite(rows.load(c, m))) {
        throw InputError(model.job.deck, 0,
                         "expected loads of finite work in mode " + std::to_string(mode.number));
      }
      require(FMD_SetModalLoad(body, number, mode.number, rows.load(c, m)), "set a modal load");
    }
    std::string label = model.load_cases[c].label;
    require(FMD_SetModalLoadLabel(body, number, label.data()), "name a load case");
    for (const NodalLoad& load : model.load_cases[c].loads) {
      const int id = mesh.node_ids[static_cast<std::size_t>(load.node)];
      require(FMD_SetModalLoadNodal(body, number, id, load.direction, load.value), "set a nodal load");
    }
  }
}

const std::string& mesh_file(const Job& job) {
  return job.results.empty() ? job.deck : job.results;
}

std::vector<double> nodal_masses(const Job& job, const FrdContents& contents, const Deck& deck) {
  const Mesh& mesh = contents.mesh;
  const std::vector<double> densities = element_densities(mesh, mesh_file(job), deck, job.density);
  std::vector<double> masses(mesh.node_ids.size(), 0.0);
  const int bad = lump_masses(mesh, densities, masses);
  if (bad >= 0) {
    const Element& element = mesh.elements[static_cast<std::size_t>(bad)];
    static const char* const measures[] = {"length", "area", "volume"};
    throw InputError(mesh_file(job), element.line,
                     std::string("expected a positive ") + measures[element.type->dimension - 1] +
                         " of element " + std::to_string(element.id));
  }
  add_point_masses(deck, contents, masses);
  return masses;
}

std::vector<MonitorNode> monitor_nodes(const Job& job, const FrdContents& contents, const Deck& deck) {
  std::vector<MonitorNode> points;
  std::vector<bool> taken(contents.mesh.node_ids.size(), false);
  for (const std::string& name : job.monitor_nodes) {
    const std::string shown = std::filesystem::path(name).filename().string();
    for (const int id : named_node_ids("monitor points", name, deck, contents, mesh_file(job))) {
      const int node = contents.node_index.find(id);
      if (taken[static_cast<std::size_t>(node)]) continue;
      taken[static_cast<std::size_t>(node)] = true;
      points.push_back({node, "node " + std::to_string(id) + " of " + shown});
    }
  }
  return points;
}

// Component modes go in the place of those of the results, whose frequencies remain to compare with.
// Reference points become nodes without mass.
void take_reduction(Model& model, const Deck& deck, const ProgressHandler& progress) {
  FrdContents& contents = model.contents;
  const double mass = std::accumulate(model.masses.begin(), model.masses.end(), 0.0);
  model.reduction =
      reduce(*model.job.reduction, deck, contents, mesh_file(model.job), mass, model.notes, progress);
  for (const Mode& mode : contents.modes) model.results_hertz.push_back(mode.hertz);
  contents.modes.clear();
  for (int number = 1; number <= model.reduction->model.modes; ++number) {
    contents.modes.push_back({number, 0.0, 0, true, false});
  }
  for (const Attachment& attachment : model.reduction->attachments) {
    if (attachment.reference_node == 0) {
      model.interface_ids.insert(model.interface_ids.end(), attachment.ids.begin(), attachment.ids.end());
      continue;
    }
    contents.mesh.node_ids.push_back(attachment.reference_node);
    contents.mesh.points.push_back(attachment.reference);
    model.masses.push_back(0.0);
    model.interface_ids.push_back(attachment.reference_node);
  }
  contents.node_index = IdIndex(contents.mesh.node_ids);
}

InputError skipped_note(const Job& job, const FrdContents& contents) {
  return InputError(job.results, contents.first_skipped_line,
                    "skipped " + std::to_string(contents.skipped_datasets) +
                        " dataset(s) that belong to no frequency analysis");
}

// A progress handler of one step.
FractionHandler step(const ProgressHandler& progress, const char* name) {
  return [&progress, name](double fraction) {
    if (progress) progress(name, fraction);
  };
}

}  // namespace

Model read_model(const Job& job, const ProgressHandler& progress) {
  const Deck deck = read_deck(job.deck);
  Model model;
  model.job = job;
  if (job.results.empty()) {
    model.contents = contents_of_deck(deck);
  } else {
    model.contents = read_frd(job.results, step(progress, "Reading mesh"));
    take_deck_coordinates(model.contents.mesh, job.results, deck);
  }
  model.title = deck.title.empty() ? model.contents.title : deck.title;
  model.masses = nodal_masses(job, model.contents, deck);
  for (const std::string& name : job.interface_nodes) {
    const std::vector<int> ids =
        named_node_ids("interface nodes", name, deck, model.contents, mesh_file(job));
    model.interface_ids.insert(model.interface_ids.end(), ids.begin(), ids.end());
  }
  if (job.reduction) take_reduction(model, deck, progress);
  model.monitor_nodes = monitor_nodes(job, model.contents, deck);
  model.load_cases = load_cases_of(deck, model.contents, model.notes);
  if (model.contents.skipped_datasets > 0) model.notes.push_back(skipped_note(job, model.contents));
  return model;
}

FmdBody* make_body(const Model& model, const ProgressHandler& progress) {
  const Mesh& mesh = model.contents.mesh;
  BodyPointer body(
      FMD_Create(static_cast<int>(mesh.node_ids.size()), static_cast<int>(model.contents.modes.size())));
  if (body == nullptr) throw ToolkitError("the toolkit could not make a body");
  set_header(body.get(), model);
  set_units(body.get(), model.job.units);
  set_nodes(body.get(), mesh, model.masses);
  set_global_properties(body.get());
  set_faces(body.get(), mesh);
  for (const int id : model.interface_ids)
    require(FMD_SetInterfaceNode(body.get(), id), "mark an interface node");
  ModalRows rows(model);
  const auto take = [&](const ModeVector& vector) {
    set_vector(body.get(), mesh, vector);
    rows.take(vector);
  };
  if (model.reduction) {
    set_reduced_matrices(body.get(), model.reduction->model);
    send_mode_vectors(*model.reduction, model.contents, take);
  } else {
    set_modes(body.get(), model.contents.modes);
    read_mode_vectors(model.job.results, model.contents, take, step(progress, "Reading modes"));
  }
  set_monitor_points(body.get(), model, rows);
  set_load_cases(body.get(), model, rows);
  return body.release();
}

}  // namespace calculix
