// Options of the writer of datasets, which the toolkit takes from its environment.
#ifndef FMDTOOL_WRITE_OPTIONS_H
#define FMDTOOL_WRITE_OPTIONS_H

#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtool {

// Options given several times, as one text.
std::string joined(const std::vector<std::string>& options);

// Options given go before those of the environment; the invariants, "full", "fast" or none, join either.
void set_write_options(const std::string& given, const std::string& invariants = "");

// Those of the environment from now on.
void replace_write_options(const std::string& options);

// Whether the user gave options, here or in the environment.
bool has_write_options(const std::string& given);

// The options under which a body that was read is written in the form that it has.
std::string options_that_keep(FmdBody* body);

// Throws for options under which nothing could read a body with so many monitor points.
void refuse_unreadable(int monitor_points, bool into_database);

}  // namespace fmdtool

#endif
