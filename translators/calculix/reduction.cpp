#include "calculix/reduction.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include "calculix/input_error.h"
#include "calculix/model.h"

namespace calculix {

namespace {

constexpr double mass_tolerance = 1e-3;

struct Source {
  const ReductionRequest& request;
  const Deck& deck;
  const FrdContents& contents;
  const std::string& mesh_file;
};

void check_nodes(const Source& source, const std::vector<DegreeOfFreedom>& dofs) {
  for (std::size_t row = 0; row < dofs.size(); ++row) {
    if (source.contents.node_index.find(dofs[row].node) >= 0) continue;
    throw InputError(source.request.files.dofs, static_cast<long>(row) + 1,
                     "expected a node of " + std::filesystem::path(source.mesh_file).filename().string() +
                         ", found unknown node " + std::to_string(dofs[row].node) +
                         ": the matrices do not belong to this mesh");
  }
}

std::vector<int> node_ids_of(const InterfaceRequest& interface, const Source& source) {
  std::vector<int> ids = ids_of_list(interface.nodes);
  if (ids.empty()) {
    ids = named_node_ids("interface", interface.nodes, source.deck, source.contents, source.mesh_file);
  }
  std::set<int> seen;
  for (const int id : ids) {
    if (source.contents.node_index.find(id) < 0) {
      throw InputError(source.mesh_file, 0, "expected node " + std::to_string(id) + " of an interface");
    }
  }
  ids.erase(std::remove_if(ids.begin(), ids.end(), [&](int id) { return !seen.insert(id).second; }),
            ids.end());
  return ids;
}

std::vector<InterfaceNode> placed(const std::vector<int>& ids, const FrdContents& contents) {
  std::vector<InterfaceNode> nodes;
  nodes.reserve(ids.size());
  for (const int id : ids) {
    nodes.push_back({id, contents.mesh.points[static_cast<std::size_t>(contents.node_index.find(id))]});
  }
  return nodes;
}

int highest_id(const Source& source) {
  int highest = 0;
  for (const int id : source.contents.mesh.node_ids) highest = std::max(highest, id);
  for (const int id : source.deck.node_ids) highest = std::max(highest, id);
  return highest;
}

// Makes the interfaces one after the other; no node may belong to two of them.
class Attacher {
 public:
  Attacher(const Source& source, const std::vector<DegreeOfFreedom>& dofs)
      : source_(source), rows_(dofs), next_id_(highest_id(source)) {}

  void attach(const InterfaceRequest& interface) {
    Attachment attachment{interface.kind,
                          std::filesystem::path(interface.nodes).filename().string(),
                          node_ids_of(interface, source_),
                          modes_,
                          0,
                          0,
                          {}};
    for (const int id : attachment.ids) {
      if (taken_.insert(id).second) continue;
      fail(attachment, "expected each node in one interface, found node " + std::to_string(id) + " again");
    }
    const std::vector<InterfaceNode> nodes = placed(attachment.ids, source_.contents);
    attachment.reference = interface.reference.value_or(centre_of(nodes));
    if (interface.kind != InterfaceKind::nodes) attachment.reference_node = ++next_id_;
    try {
      for (Coupling& coupling : couplings_of(interface.kind, nodes, attachment.reference, rows_)) {
        attachment.coordinates += coupling.width;
        couplings.push_back(std::move(coupling));
      }
    } catch (const ReductionError& error) {
      fail(attachment, error.what());
    }
    modes_ += attachment.coordinates;
    attachments.push_back(std::move(attachment));
  }

  std::vector<Attachment> attachments;
  std::vector<Coupling> couplings;

 private:
  [[noreturn]] void fail(const Attachment& attachment, const std::string& text) const {
    throw InputError(source_.request.files.dofs, 0, "interface " + attachment.name + ": " + text);
  }

  const Source& source_;
  RowIndex rows_;
  int next_id_;
  int modes_ = 0;
  std::set<int> taken_;
};

// Of a translation along x, to which each entry of such rows adds, off the diagonal twice.
double translated_mass(const SymmetricMatrix& mass, const std::vector<DegreeOfFreedom>& dofs) {
  double sum = 0.0;
  for (std::size_t c = 0; c < dofs.size(); ++c) {
    if (dofs[c].axis != 0) continue;
    for (auto i = static_cast<std::size_t>(mass.starts[c]); i < static_cast<std::size_t>(mass.starts[c + 1]);
         ++i) {
      const auto row = static_cast<std::size_t>(mass.rows[i]);
      if (dofs[row].axis == 0) sum += (row == c ? 1.0 : 2.0) * mass.values[i];
    }
  }
  return sum;
}

void note_differences(const Source& source, const Reduction& reduction, const SymmetricMatrix& mass,
                      double mass_of_elements, std::vector<InputError>& notes) {
  const std::size_t missing = 3 * source.contents.mesh.node_ids.size() - reduction.dofs.size();
  if (missing > 0) {
    notes.emplace_back(source.request.files.dofs, 0,
                       "lacks " + std::to_string(missing) +
                           " degree(s) of freedom of the mesh, which the job holds: they stay at rest");
    return;
  }
  const double found = translated_mass(mass, reduction.dofs);
  if (std::fabs(found - mass_of_elements) <= mass_tolerance * std::fabs(mass_of_elements)) return;
  notes.emplace_back(source.request.files.mass, 0,
                     "has a mass of " + std::to_string(found) + ", the elements have " +
                         std::to_string(mass_of_elements) + ": are mesh, density and matrices of one job?");
}

FractionHandler step(const StepHandler& progress, const char* name) {
  return [&progress, name](double fraction) {
    if (progress) progress(name, fraction);
  };
}

}  // namespace

Reduction reduce(const ReductionRequest& request, const Deck& deck, const FrdContents& contents,
                 const std::string& mesh_file, double mass_of_elements, std::vector<InputError>& notes,
                 const StepHandler& progress) {
  const Source source{request, deck, contents, mesh_file};
  Reduction reduction;
  reduction.dofs = read_degrees_of_freedom(request.files.dofs);
  check_nodes(source, reduction.dofs);
  Attacher attacher(source, reduction.dofs);
  for (const InterfaceRequest& interface : request.interfaces) attacher.attach(interface);
  const int size = static_cast<int>(reduction.dofs.size());
  const SymmetricMatrix stiffness =
      read_matrix(request.files.stiffness, size, step(progress, "Reading stiffness"));
  const SymmetricMatrix mass = read_matrix(request.files.mass, size, step(progress, "Reading mass"));
  note_differences(source, reduction, mass, mass_of_elements, notes);
  try {
    reduction.model =
        craig_bampton(stiffness, mass, attacher.couplings, request.fixed_modes, [&](const char* name) {
          if (progress) progress(name, 0.0);
        });
  } catch (const ReductionError& error) {
    throw InputError(request.files.stiffness, 0, error.what());
  }
  reduction.attachments = std::move(attacher.attachments);
  return reduction;
}

void send_mode_vectors(const Reduction& reduction, const FrdContents& contents,
                       const std::function<void(const ModeVector&)>& receive) {
  ModeVector vector;
  for (std::size_t i = 0; i < contents.mesh.node_ids.size(); ++i) vector.nodes.push_back(static_cast<int>(i));
  std::vector<std::size_t> places;
  places.reserve(reduction.dofs.size());
  for (const DegreeOfFreedom& dof : reduction.dofs) {
    const auto node = static_cast<std::size_t>(contents.node_index.find(dof.node));
    places.push_back(6 * node + static_cast<std::size_t>(dof.axis));
  }
  for (int m = 0; m < reduction.model.modes; ++m) {
    vector.mode = &contents.modes[static_cast<std::size_t>(m)];
    vector.values.assign(6 * vector.nodes.size(), 0.0);
    for (std::size_t row = 0; row < places.size(); ++row) {
      vector.values[places[row]] = reduction.model.vector(m)[row];
    }
    for (const Attachment& attachment : reduction.attachments) {
      const int coordinate = m - attachment.first_mode;
      if (attachment.reference_node == 0 || coordinate < 0 || coordinate >= attachment.coordinates) continue;
      const auto node = static_cast<std::size_t>(contents.node_index.find(attachment.reference_node));
      vector.values[6 * node + static_cast<std::size_t>(coordinate)] = 1.0;
    }
    receive(vector);
  }
}

}  // namespace calculix
