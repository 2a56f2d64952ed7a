// Blocks of the exported modes: eigenvalues (7), mode shapes (8), statistics (30).
#include <algorithm>
#include <cmath>

#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "dbmodal/dbwrite/mode_source.h"
#include "dbmodal/dbwrite/mode_words.h"
#include "dbmodal/dbwrite/record_form.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Largest squared length over nodes; the first node that reached it wins.
struct Largest {
  double squared = 0.0;
  int node = -1;

  void offer(const double* values, int at) {
    const double length = values[0] * values[0] + values[1] * values[1] + values[2] * values[2];
    if (length > squared) {
      squared = length;
      node = at;
    }
  }
};

// The largest translation and rotation of one mode.
struct Peaks {
  Largest translation;
  Largest rotation;

  void offer(const double* rows, int first, int nodes) {
    for (int node = first; node < first + nodes; ++node, rows += kValuesPerNode) {
      translation.offer(rows, node);
      rotation.offer(rows + 3, node);
    }
  }

  void keep(FmdBody* body, FmdModeStatistics& record) const {
    if (translation.node >= 0) record.MaxDisplacementNode = FMD_ModeNodeID(body, kShape, translation.node);
    if (rotation.node >= 0) record.MaxRotationNode = FMD_ModeNodeID(body, kShape, rotation.node);
    record.MaxDisplacement = std::sqrt(translation.squared);
    record.MaxRotation = std::sqrt(rotation.squared);
  }
};

// Searched and written by pieces that stay in a core's cache.
void put_shape(WriteJob& job, const double* rows, int nodes, Peaks& peaks) {
  constexpr int kPiece = 2048;
  for (int first = 0; first < nodes; first += kPiece) {
    const int count = std::min(kPiece, nodes - first);
    const double* const piece = rows + as_size(first) * kValuesPerNode;
    peaks.offer(piece, first, count);
    job.sink->put_reals(piece, as_size(count) * kValuesPerNode);
  }
}

bool write_shape(WriteJob& job, ModeSource& source, int exported) {
  const int number = job.mode_number(exported);
  const double* const rows = source.fetch(number);
  if (rows == nullptr) return false;
  const int nodes = source.node_count();
  if (is_zero(rows, nodes)) FMD_Warning("The mode shape for mode %d has only zero entries\n", number);
  Peaks peaks;
  put_mode_word(job, kShape, exported);
  put_shape(job, rows, nodes, peaks);
  peaks.keep(job.body, job.body->ModalStatistics[job.first_mode + exported]);
  return job.sink->ok();
}

}  // namespace

void put_mode_word(WriteJob& job, int type, int exported) {
  if (job.record != nullptr) job.record->note_mode(*job.sink, type, exported);
  if (job.level() == 10) return;
  job.sink->put_int(job.level() == 20 ? 0 : job.mode_number(exported));
}

bool is_zero(const double* rows, int nodes) {
  for (int i = 0; i < kValuesPerNode * nodes; ++i) {
    if (rows[i] != 0.0) return false;
  }
  return true;
}

bool write_eigenvalues(WriteJob& job) {
  FMD_Info("\nEigenvalue info:\n   Modes: %ld", static_cast<long>(job.mode_count));
  job.sink->put_int(job.mode_count);
  for (int mode = 0; mode < job.mode_count; ++mode) {
    const int number = job.mode_number(mode);
    double values[5] = {};
    if (FMD_Eigenvalue(job.body, number, &values[0], &values[1], &values[2], &values[3], &values[4]) == 0) {
      return false;
    }
    job.sink->put_int(number);
    job.sink->put_reals(values, 5);
  }
  return true;
}

bool write_mode_shapes(WriteJob& job) {
  FmdBody* const body = job.body;
  ModeSource source;
  if (!source.open(body, kShape)) return false;
  const int nodes = source.node_count();
  FMD_Info("\nTrans Mode info:\n   Modes: %ld\n   Nodes: %ld", static_cast<long>(job.mode_count),
           static_cast<long>(nodes));
  FMD_Info("\nWriting Mode Shapes");
  job.sink->put_int(job.mode_count);
  job.sink->put_int(nodes);
  for (int node = 0; node < nodes; ++node) job.sink->put_int(FMD_ModeNodeID(body, kShape, node));
  for (int mode = 0; mode < job.mode_count; ++mode) {
    if (!write_shape(job, source, mode)) return false;
  }
  return true;
}

bool write_modal_statistics(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  for (int mode = 0; mode < job.mode_count; ++mode) {
    const FmdModeStatistics& record = job.body->ModalStatistics[job.first_mode + mode];
    const std::int32_t nodes[4] = {record.MaxDisplacementNode, record.MaxRotationNode, record.MaxStressNode,
                                   record.MaxStrainNode};
    const double values[4] = {record.MaxDisplacement, record.MaxRotation, record.MaxStress, record.MaxStrain};
    job.sink->put_ints(nodes, 4);
    job.sink->put_ints(record.OtherNodes, 9);
    job.sink->put_reals(values, 4);
    job.sink->put_reals(record.OtherValues, 9);
  }
  return true;
}

}  // namespace fmd
