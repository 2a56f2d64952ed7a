#include "services/progress.h"

#include "fmdtoolkit/extensions.h"

namespace {

FmdxProgressHandler progress_handler = nullptr;
int steps_total = 0;
int steps_done = 0;

}  // namespace

void FMDX_SetProgressHandler(FmdxProgressHandler handler) {
  progress_handler = handler;
}

namespace fmd {

void time_monitor(int total) {
  steps_total = total;
  steps_done = 0;
  if (progress_handler != nullptr) progress_handler(steps_done, steps_total);
}

void time_monitor_stamp() {
  ++steps_done;
  if (progress_handler != nullptr) progress_handler(steps_done, steps_total);
}

}  // namespace fmd
