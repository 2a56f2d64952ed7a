// Runs the work in a process of its own, so that what it left unfinished is removed however it ends: by a
// signal, for want of memory or by a fault.
#ifndef FMDTOOL_SUPERVISOR_H
#define FMDTOOL_SUPERVISOR_H

#include <functional>
#include <string>

namespace fmdtool {

// The work's result as exit code. Interrupts, hangups and requests to end go on to the work; when a signal
// ends it, the same signal ends this process after the tidying up.
int run_supervised(const std::function<int()>& work);

// Within the work: what is to be removed if it dies now; an empty path for nothing any more.
enum class Leftover { directory, output };
void note_leftover(Leftover kind, const std::string& path);

// Holds signals back, so that nothing is made that is not noted.
class SignalHold {
 public:
  SignalHold();
  ~SignalHold();
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;
};

}  // namespace fmdtool

#endif
