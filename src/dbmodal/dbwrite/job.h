// One write of one body: what was asked for, what was decided, and the running status.
//
// The plan is made in two steps: the version word before the header, and the content (summary, exported
// modes) after the stages that edit the body.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_JOB_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_JOB_H

#include <cstddef>
#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbwrite/options.h"
#include "dbmodal/dbwrite/sink.h"
#include "dbmodal/version_word.h"

namespace fmd {

class RecordForm;

struct WriteJob {
  FmdBody* body = nullptr;
  Sink* sink = nullptr;
  RecordForm* record = nullptr;  // of a datablock; null for a plain file
  WriteOptions options;
  std::uint32_t version = 0;  // as chosen, before the coarsened bit
  char summary[kSummaryBytes] = {};
  int first_mode = 0;            // index of the first exported mode
  int mode_count = 0;            // exported modes
  bool may_change_units = true;  // false after a failed invariant stage
  bool ok = true;                // once cleared, nothing further is written

  int level() const { return format_level(version); }
  // Levels that carry old style element topology.
  bool is_old_style() const { return level() == 10 || level() == 20; }
  int mode_number(int exported) const { return FMD_ModeNumber(body, first_mode + exported); }
};

inline std::size_t as_size(int count) {
  return static_cast<std::size_t>(count);
}

}  // namespace fmd

#endif
