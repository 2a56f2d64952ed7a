// Where a benchmark runs: what it prints about the machine, and its own directory with a database session.
#ifndef FMDTOOLKIT_BENCH_ENVIRONMENT_H
#define FMDTOOLKIT_BENCH_ENVIRONMENT_H

#include <string>

namespace fmdbench {

// Machine, system, compiler and flags, one line each.
void print_environment();

// A directory beside the current one for all files of the run, so that job and peer use the same disk;
// message handlers that print errors and warnings; options and cache size as the library has them by default.
class Environment {
 public:
  Environment();
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  std::string path(const std::string& name) const { return directory_ + "/" + name; }

 private:
  std::string directory_;
};

// A whole number argument of the command line, or the default.
int argument(int argc, char** argv, int place, int otherwise);

}  // namespace fmdbench

#endif
