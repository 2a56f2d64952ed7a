// Runs a program as a user does and keeps what it says.
#ifndef FMDTOOLKIT_TESTS_RUN_PROGRAM_H
#define FMDTOOLKIT_TESTS_RUN_PROGRAM_H

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace fmdtest {

struct Outcome {
  int exit_code = -1;  // 128 + number for a signal
  std::string output;
  std::string errors;
};

struct RunSettings {
  std::map<std::string, std::string> environment;  // all that the program gets
  bool errors_to_terminal = false;                 // standard error is a terminal of its own
  long file_size_limit = 0;                        // bytes that a file may have; 0 for no limit
  int signal_after_milliseconds = -1;              // sends an interrupt
};

Outcome run_program(const std::vector<std::string>& arguments, const RunSettings& settings);

}  // namespace fmdtest

#endif
