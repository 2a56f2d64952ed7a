// Blocks of stress and strain: the modes (18, 29) and the pre-stress and pre-strain (31, 32).
//
// Levels below 60 pad to all nodes of the body; level 60 writes the nodes that carry the data, or only those
// with a nonzero component.
#include <cmath>

#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "dbmodal/dbwrite/mode_source.h"
#include "dbmodal/dbwrite/mode_words.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kPadded = -1;

// The words in which stress and strain differ.
struct Kind {
  int type;
  SummaryByte modes;
  SummaryByte preload;
  const char* mode_info;
  const char* preload_info;
  const char* zero_mode;
  std::int32_t FmdModeStatistics::*largest_node;
  double FmdModeStatistics::*largest_value;
};

constexpr Kind kStressKind = {kStress,
                              kModalStress,
                              kPreStress,
                              "\nStress Mode info:\n   Modes: %ld\n   Nodes: %ld",
                              "\nPre-Stress info:\n   Nodes: %ld",
                              "The modal stresses for mode %d have only zero entries\n",
                              &FmdModeStatistics::MaxStressNode,
                              &FmdModeStatistics::MaxStress};

constexpr Kind kStrainKind = {kStrain,
                              kModalStrain,
                              kPreStrain,
                              "\nStrain Mode info:\n   Modes: %ld\n   Nodes: %ld",
                              "\nPre-Strain info:\n   Nodes: %ld",
                              "The modal strains for mode %d have only zero entries\n",
                              &FmdModeStatistics::MaxStrainNode,
                              &FmdModeStatistics::MaxStrain};

// The nodes of a block: for each its id and its row in the vectors, or kPadded.
struct Selection {
  int count = 0;
  CArray<std::int32_t> ids;
  CArray<std::int32_t> rows;

  bool reserve(int nodes) {
    ids = allocate<std::int32_t>(nodes, "dbwrite");
    if (ids == nullptr) return false;
    rows = allocate<std::int32_t>(nodes, "dbwrite");
    return rows != nullptr;
  }

  void add(int id, int row) {
    ids[as_size(count)] = id;
    rows[as_size(count)] = row;
    ++count;
  }
};

bool pads(const WriteJob& job, int nodes_with_data) {
  return job.level() < 60 && nodes_with_data != job.body->NodeCount;
}

bool select_all_nodes(WriteJob& job, int type, Selection& selection) {
  FmdBody* const body = job.body;
  if (!selection.reserve(body->NodeCount)) return false;
  for (int node = 0; node < body->NodeCount; ++node) {
    const int id = body->Nodes[node].Id;
    selection.add(id, FMD_ModeNodeIndex(body, type, id));
  }
  return true;
}

// Marks the nodes of a vector with a nonzero component.
bool mark_nonzero(ModeSource& source, int number, char* marks) {
  const double* rows = source.fetch(number);
  if (rows == nullptr) return false;
  for (int node = 0; node < source.node_count(); ++node, rows += kValuesPerNode) {
    if (!is_zero(rows, 1)) marks[node] = 1;
  }
  return true;
}

// A pass of its own over the pre-stress and the exported modes, since the node list stands before them.
bool mark_nodes_in_use(WriteJob& job, const Kind& kind, ModeSource& source, char* marks) {
  if (job.summary[kind.preload] != 0 && !mark_nonzero(source, 0, marks)) return false;
  if (job.summary[kind.modes] == 0) return true;
  for (int mode = 0; mode < job.mode_count; ++mode) {
    if (!mark_nonzero(source, job.mode_number(mode), marks)) return false;
  }
  return true;
}

bool select_own_nodes(WriteJob& job, const Kind& kind, ModeSource& source, Selection& selection) {
  const int nodes = source.node_count();
  if (!selection.reserve(nodes)) return false;
  CArray<char> marks;
  if (job.options.sparse_stress) {
    marks = allocate<char>(nodes, "dbwrite");
    if (marks == nullptr || !mark_nodes_in_use(job, kind, source, marks.get())) return false;
  }
  for (int node = 0; node < nodes; ++node) {
    if (marks != nullptr && marks[as_size(node)] == 0) continue;
    selection.add(FMD_ModeNodeID(job.body, kind.type, node), node);
  }
  return true;
}

bool select_nodes(WriteJob& job, const Kind& kind, ModeSource& source, Selection& selection) {
  if (!source.open(job.body, kind.type)) return false;
  if (pads(job, source.node_count())) return select_all_nodes(job, kind.type, selection);
  return select_own_nodes(job, kind, source, selection);
}

void put_rows(WriteJob& job, const Selection& selection, const double* rows, int nodes) {
  if (selection.count == nodes && !pads(job, nodes)) {
    job.sink->put_reals(rows, as_size(nodes) * kValuesPerNode);
    return;
  }
  constexpr double kZeros[kValuesPerNode] = {};
  for (int i = 0; i < selection.count; ++i) {
    const int row = selection.rows[as_size(i)];
    job.sink->put_reals(row == kPadded ? kZeros : rows + as_size(row) * kValuesPerNode, kValuesPerNode);
  }
}

// von Mises, squared: a^2 + b^2 + c^2 - ab - bc - ca + 3 (d^2 + e^2 + f^2)
double von_mises_squared(const double* v) {
  return v[0] * v[0] + v[1] * v[1] + v[2] * v[2] - v[0] * v[1] - v[1] * v[2] - v[2] * v[0] +
         3.0 * (v[3] * v[3] + v[4] * v[4] + v[5] * v[5]);
}

void keep_largest(WriteJob& job, const Kind& kind, int exported, const double* rows,
                  const Selection& selection) {
  double largest = 0.0;
  int id = 0;
  for (int i = 0; i < selection.count; ++i) {
    const int row = selection.rows[as_size(i)];
    if (row == kPadded) continue;
    const double measure = von_mises_squared(rows + as_size(row) * kValuesPerNode);
    if (measure > largest) {
      largest = measure;
      id = selection.ids[as_size(i)];
    }
  }
  FmdModeStatistics& record = job.body->ModalStatistics[job.first_mode + exported];
  record.*(kind.largest_node) = id;
  record.*(kind.largest_value) = std::sqrt(largest);
}

bool write_modes(WriteJob& job, const Kind& kind) {
  ModeSource source;
  Selection selection;
  if (!select_nodes(job, kind, source, selection)) return false;
  FMD_Info(kind.mode_info, static_cast<long>(job.mode_count), static_cast<long>(selection.count));
  job.sink->put_int(job.mode_count);
  job.sink->put_int(selection.count);
  job.sink->put_ints(selection.ids.get(), as_size(selection.count));
  for (int mode = 0; mode < job.mode_count; ++mode) {
    const int number = job.mode_number(mode);
    const double* const rows = source.fetch(number);
    if (rows == nullptr) return false;
    put_mode_word(job, kind.type, mode);
    put_rows(job, selection, rows, source.node_count());
    keep_largest(job, kind, mode, rows, selection);
    if (is_zero(rows, source.node_count())) FMD_Warning(kind.zero_mode, number);
    if (!job.sink->ok()) return false;
  }
  return true;
}

bool write_preload(WriteJob& job, const Kind& kind) {
  ModeSource source;
  Selection selection;
  if (!select_nodes(job, kind, source, selection)) return false;
  FMD_Info(kind.preload_info, static_cast<long>(selection.count));
  const double* const rows = source.fetch(0);
  if (rows == nullptr) return false;
  job.sink->put_int(selection.count);
  put_rows(job, selection, rows, source.node_count());
  return true;
}

}  // namespace

bool write_modal_stress(WriteJob& job) {
  return write_modes(job, kStressKind);
}

bool write_modal_strain(WriteJob& job) {
  return write_modes(job, kStrainKind);
}

bool write_pre_stress(WriteJob& job) {
  return write_preload(job, kStressKind);
}

bool write_pre_strain(WriteJob& job) {
  return write_preload(job, kStrainKind);
}

}  // namespace fmd
