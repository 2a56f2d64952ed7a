// Changes of a body that the command transform makes, one after the other.
#ifndef FMDTOOL_BODY_STEPS_H
#define FMDTOOL_BODY_STEPS_H

#include <functional>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtool {

// 1 or 0, as the toolkit's own operations answer.
using BodyStep = std::function<int(FmdBody*)>;

// What an option says that asks for a step: what is wrong with it, or an empty text and the step.
std::string parse_translation(const std::string& text, BodyStep& step);  // X,Y,Z
std::string parse_rotation(const std::string& text, BodyStep& step);     // AX,AY,AZ,DEGREES[,X,Y,Z]
std::string parse_mirror(const std::string& text, BodyStep& step);       // NX,NY,NZ[,X,Y,Z]
std::string parse_change_of_units(const std::string& text, BodyStep& step);

}  // namespace fmdtool

#endif
