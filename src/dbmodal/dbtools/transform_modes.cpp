// A new mode file whose modes are sums over the old ones.
//
// The batch, so many full columns as memory was found for and 100 megabytes hold, sets the count of steps. As
// a rule its columns serve as room for rows of all modes at once, so that the old modes are read once however
// many batches they would make. Only where they have too little room for that, after a failed allocation in
// a body of few nodes, the old modes are read once a batch.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "body/body.h"
#include "dbmodal/dbdata/mode_rewrite.h"
#include "dbmodal/dbdata/mode_vector.h"
#include "dbmodal/dbtools/transform_modes_kernel.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "services/progress.h"

namespace fmd {

namespace {

constexpr const char* kModule = "dbtools";
constexpr double kBatchBytes = 100000000.0;

std::size_t place(int index) {
  return static_cast<std::size_t>(index);
}

// Full columns of a batch, each allocated by itself.
class Batch {
 public:
  Batch() = default;
  ~Batch() {
    for (int at = 0; at < size_; ++at) release(columns_[place(at)]);
  }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // As many as wanted or as there is memory for. False after a message where there is not even one.
  bool provide(int wanted, std::int64_t values) {
    columns_ = allocate<double*>(wanted, kModule);
    if (columns_ == nullptr) return false;
    for (; size_ < wanted; ++size_) {
      columns_[place(size_)] = static_cast<double*>(allocate_quietly(values, sizeof(double)));
      if (columns_[place(size_)] == nullptr) break;
    }
    if (size_ == 0) report_allocation_failure(kModule);
    return size_ > 0;
  }

  int size() const { return size_; }
  double* column(int at) const { return columns_[place(at)]; }

 private:
  CArray<double*> columns_;
  int size_ = 0;
};

// Spreads the stamps of all steps evenly over the pieces of work that there really are.
class Stamps {
 public:
  Stamps(int steps, std::int64_t pieces) : steps_(steps), pieces_(pieces) {
    is_on_ = std::getenv("KXI_NO_TIME_MONITOR_STAMP") == nullptr;
  }
  void next_piece() {
    ++piece_;
    const double product = static_cast<double>(steps_) * static_cast<double>(piece_);
    const int due = piece_ < pieces_ ? static_cast<int>(product / static_cast<double>(pieces_)) : steps_;
    for (; is_on_ && stamped_ < due; ++stamped_) time_monitor_stamp();
  }

 private:
  bool is_on_;
  int steps_;
  int stamped_ = 0;
  std::int64_t pieces_;
  std::int64_t piece_ = 0;
};

int narrowed(std::int64_t count) {
  return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

class ModeTransformation {
 public:
  ModeTransformation(FmdBody& body, int kind, int count, const double* matrix)
      : body_(body), kind_(kind), nodes_(body.ModeNodeCount[kind]), count_(count), matrix_(matrix) {}

  // False after a message, with the body as it was.
  bool run();

 private:
  bool provide_batch();
  int piece_nodes() const;
  bool sweep_once(int nodes);
  bool transform_rows(ModeProduct& product, double** pieces, int first, int nodes, Stamps& stamps);
  bool sweep_by_batches();
  bool sum_batch(int first, double* vector, Stamps& stamps);
  bool fetch(int mode, int first, int nodes, double* values) const;
  bool write(int mode, int first, int nodes, double* values) const;

  FmdBody& body_;
  int kind_;
  int nodes_;
  int count_;
  const double* matrix_;
  Batch batch_;
  int steps_ = 0;
  int columns_ = 0;  // new modes: batches are worked through to their end
  ModeRewrite file_{kModule};
};

bool ModeTransformation::run() {
  if (!file_.open(body_, kind_)) return false;
  FMD_Info("Orthogonal mode file: key = %d", file_.key());
  if (!provide_batch() || !file_.provide_slots(body_, slot_nodes(body_, kind_))) return false;
  time_monitor(steps_);
  // All slots at once, so that a full disk shows before any work.
  if (!file_.write_empty_slots(0)) return false;
  const int nodes = piece_nodes();
  if (columns_ > 0 && !(nodes > 0 ? sweep_once(nodes) : sweep_by_batches())) return false;
  file_.install(body_);
  return true;
}

bool ModeTransformation::provide_batch() {
  const std::int64_t modes = body_.ModeCount;
  const std::int64_t values = std::int64_t{kValuesPerNode} * nodes_;
  const double most = std::max(kBatchBytes / (static_cast<double>(values) * sizeof(double)), 1.0);
  const int wanted = nodes_ < 1 ? 0 : static_cast<int>(std::min<double>(most, body_.ModeCount));
  if (!batch_.provide(wanted, values)) return false;
  steps_ = narrowed(modes * ((count_ - 1) / batch_.size() + 1));
  const std::int64_t batches = count_ < 1 ? 0 : (count_ - 1) / batch_.size() + 1;
  columns_ = static_cast<int>(std::min(batches * batch_.size(), modes));
  return true;
}

// Nodes of which the batch has room for all modes, within what the caches like; 0 where for none.
int ModeTransformation::piece_nodes() const {
  constexpr std::int64_t kSuitableBytes = std::int64_t{16} << 20;
  constexpr std::int64_t kWorthReading = 1024;
  const std::int64_t modes = body_.ModeCount;
  const std::int64_t room = nodes_ / ((modes + batch_.size() - 1) / batch_.size());
  const std::int64_t suitable =
      kSuitableBytes / (modes * kValuesPerNode * static_cast<std::int64_t>(sizeof(double)));
  return static_cast<int>(std::min(room, std::max(suitable, kWorthReading)));
}

bool ModeTransformation::fetch(int mode, int first, int nodes, double* values) const {
  if (fetch_nodes(body_, kind_, mode, first, nodes, values)) return true;
  FMD_Error("Failed to extract mode information for FMD.\n");
  return false;
}

bool ModeTransformation::write(int mode, int first, int nodes, double* values) const {
  take_units_out(body_, kind_, nodes, values);
  return file_.move_to(mode, first) && file_.write(values, std::int64_t{kValuesPerNode} * nodes);
}

bool ModeTransformation::sweep_once(int nodes) {
  ModeProduct product;
  const auto pieces = allocate<double*>(body_.ModeCount, kModule);
  if (pieces == nullptr) return false;
  if (!product.prepare(widest_vector_unit(), matrix_, body_.ModeCount, columns_)) {
    report_allocation_failure(kModule);
    return false;
  }
  const int per_column = nodes_ / nodes;
  for (int mode = 0; mode < body_.ModeCount; ++mode) {
    const std::int64_t first = std::int64_t{kValuesPerNode} * nodes * (mode % per_column);
    pieces[place(mode)] = batch_.column(mode / per_column) + first;
  }
  const std::int64_t panels = (nodes_ - 1) / nodes + 1;
  Stamps stamps(steps_, panels * body_.ModeCount);
  for (std::int64_t first = 0; first < nodes_; first += nodes) {
    const auto count = static_cast<int>(std::min<std::int64_t>(nodes, nodes_ - first));
    if (!transform_rows(product, pieces.get(), static_cast<int>(first), count, stamps)) return false;
  }
  return true;
}

bool ModeTransformation::transform_rows(ModeProduct& product, double** pieces, int first, int nodes,
                                        Stamps& stamps) {
  for (int mode = 0; mode < body_.ModeCount; ++mode) {
    stamps.next_piece();
    if (!fetch(mode, first, nodes, pieces[mode])) return false;
  }
  product.transform(pieces, std::int64_t{kValuesPerNode} * nodes);
  for (int mode = 0; mode < columns_; ++mode) {
    if (!write(mode, first, nodes, pieces[mode])) return false;
  }
  return true;
}

bool ModeTransformation::sweep_by_batches() {
  const auto vector = allocate<double>(std::int64_t{kValuesPerNode} * nodes_, kModule);
  if (vector == nullptr) return false;
  Stamps stamps(steps_, steps_);
  for (std::int64_t first = 0; first < count_; first += batch_.size()) {
    if (!sum_batch(narrowed(first), vector.get(), stamps)) return false;
  }
  return true;
}

bool ModeTransformation::sum_batch(int first, double* vector, Stamps& stamps) {
  const int modes = body_.ModeCount;
  const std::int64_t values = std::int64_t{kValuesPerNode} * nodes_;
  const int columns = std::clamp(modes - first, 0, batch_.size());
  for (int at = 0; at < columns; ++at) std::fill_n(batch_.column(at), values, 0.0);
  for (int mode = 0; mode < modes; ++mode) {
    stamps.next_piece();
    if (!fetch(mode, 0, nodes_, vector)) return false;
    const double* row = matrix_ + std::int64_t{mode} * modes + first;
    for (int at = 0; at < columns; ++at) {
      if (row[at] != 0.0) add_multiple(row[at], vector, values, batch_.column(at));
    }
  }
  for (int at = 0; at < columns; ++at) {
    if (!write(first + at, 0, nodes_, batch_.column(at))) return false;
  }
  return true;
}

}  // namespace

}  // namespace fmd

int FMD_TransformModes(FmdBody* body, int kind, int count, double* matrix) {
  if (CheckFMD(body) == 0 || matrix == nullptr || !fmd::is_mode_info_type(kind) || count < 0) return 0;
  const fmd::UncachedModes uncached(body);
  return fmd::ModeTransformation(*body, kind, count, matrix).run() ? 1 : 0;
}
