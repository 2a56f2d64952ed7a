#include "dbmodal/dbwrite/summary.h"

namespace fmd {

void copy_from_body(WriteJob& job, int first_byte, int last_byte) {
  for (int byte = first_byte; byte <= last_byte; ++byte) job.summary[byte] = job.body->BlockExists[byte];
}

void place_faces(WriteJob& job) {
  const char* const exists = job.body->BlockExists;
  if (exists[kElementFaces] == 0 && exists[kElementTopology] == 0) return;
  job.summary[job.is_old_style() ? kElementTopology : kElementFaces] = 1;
}

}  // namespace fmd
