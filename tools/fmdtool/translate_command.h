// fmdtool translate calculix, fmdtool store calculix
#ifndef FMDTOOL_TRANSLATE_COMMAND_H
#define FMDTOOL_TRANSLATE_COMMAND_H

#include <string>

#include "calculix/translate.h"

namespace fmdtool {

struct TranslateRequest {
  calculix::Job job;       // paths as given; an empty deck stands for the one beside the results
  std::string output;      // empty for the name of the results with the ending .fmd in the current directory
  std::string database;    // in place of the output
  std::string qualifiers;  // in the database
  std::string write_options;
  std::string invariants;  // full, fast or empty
  bool json = false;
  bool verbose = false;
};

// The exit code; what goes wrong is reported.
int translate_calculix(TranslateRequest request);

}  // namespace fmdtool

#endif
