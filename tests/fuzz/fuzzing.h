// The frame of a fuzz program: it makes inputs from a seed and gives them to a target in a process of its
// own, so that a crash, an endless loop or a leak ends that process alone and its input is written to a file.
//
//   fuzz_NAME [--seconds N] [--seed N]     makes inputs for so long; the seed is printed
//   fuzz_NAME FILE...                      runs inputs that were found before
#ifndef FMDTOOLKIT_TESTS_FUZZ_FUZZING_H
#define FMDTOOLKIT_TESTS_FUZZ_FUZZING_H

#include <functional>

#include "fuzz/mutation.h"

namespace fuzz {

struct Target {
  const char* name;
  std::function<void()> prepare;          // once, in a directory of the run's own
  std::function<Bytes(Random&)> make;     // an input
  std::function<void(const Bytes&)> run;  // which may not depend on the inputs before
};

int fuzz_main(int argc, char** argv, const Target& target);

}  // namespace fuzz

#endif
