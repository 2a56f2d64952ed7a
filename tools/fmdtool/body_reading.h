// Reads all that a stored body has, as the command check does.
#ifndef FMDTOOL_BODY_READING_H
#define FMDTOOL_BODY_READING_H

#include <functional>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtool {

// Told what cannot be read; what the toolkit says of its own accord goes to its message handlers.
using Finding = std::function<void(const std::string&)>;

// Every block of a body that has been opened: what was read then must be found, mode vectors and invariants
// are read now.
void read_all(FmdBody* body, const Finding& tell);

}  // namespace fmdtool

#endif
