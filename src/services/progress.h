// The progress count of long work: a total of steps, then one stamp a step, handed on to the host's handler.
#ifndef FMDTOOLKIT_SERVICES_PROGRESS_H
#define FMDTOOLKIT_SERVICES_PROGRESS_H

namespace fmd {

void time_monitor(int total);
void time_monitor_stamp();

}  // namespace fmd

#endif
