// The data of a body by node, cut down to the nodes that are kept.
//
// Each step prepares the shortened data beside that of the body and changes nothing of the body's; installing
// it cannot fail. So a removal of nodes that fails half-way, for want of memory or disk, leaves the body
// whole.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_SHORTEN_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_SHORTEN_H

#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbdata/mode_rewrite.h"
#include "messages/memory.h"

namespace fmd {

// Nodes that are kept, as indices into the node table, ascending.
struct KeptNodes {
  const std::int32_t* nodes;
  std::int32_t count;
};

// The mode data of one kind, 0 shape, 1 stress, 2 strain, with the rows of kept nodes only, in kept order.
class ShortenedModes {
 public:
  ShortenedModes() = default;
  ShortenedModes(const ShortenedModes&) = delete;
  ShortenedModes& operator=(const ShortenedModes&) = delete;

  // Finds the rows of the kept nodes in the body's data; comes before all else.
  bool map_rows(FmdBody& body, int kind, const KeptNodes& kept);

  // Copies all vectors to a new scratch datablock, in the numbers and the width in which they are stored. A
  // body without modes has nothing to copy, and says so.
  bool ShortenModeFile(FmdBody& body, int kind);

  // Copies the rows of pre-stress or pre-strain, where the body has them.
  bool shorten_pre_load(const FmdBody& body, int kind);

  // Hands all that was prepared over to the body.
  void install(FmdBody& body, int kind);

  // Whether a kept node, by its place among them, carries data of the kind; how many do.
  bool carries(std::int32_t place) const { return rows_[static_cast<std::size_t>(place)] >= 0; }
  std::int32_t row_count() const { return row_count_; }

 private:
  bool copy_modes(const FmdBody& body, int kind);
  void install_file(FmdBody& body, int kind);
  void install_pre_load(FmdBody& body, int kind);

  CArray<std::int32_t> rows_;  // by place of the kept node: its row in the body's data, or -1
  std::int32_t kept_count_ = 0;
  std::int32_t row_count_ = 0;
  bool replaces_file_ = false;
  bool removes_file_ = false;
  ModeRewrite file_{"dbtools"};
  CArray<double> pre_load_;
};

// The nodal modal load cases with places among the kept nodes instead of node indices.
class ShortenedLoads {
 public:
  ShortenedLoads() = default;
  ~ShortenedLoads();
  ShortenedLoads(const ShortenedLoads&) = delete;
  ShortenedLoads& operator=(const ShortenedLoads&) = delete;

  // The places are given by node index, -1 for a node that goes.
  bool ShortenModalLoads(const FmdBody& body, const std::int32_t* places);

  // Hands the cases over to the body.
  void install(FmdBody& body);

 private:
  CArray<FmdNodalLoadCase> cases_;
  std::int32_t count_ = 0;
};

}  // namespace fmd

#endif
