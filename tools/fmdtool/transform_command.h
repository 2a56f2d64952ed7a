// fmdtool transform
#ifndef FMDTOOL_TRANSFORM_COMMAND_H
#define FMDTOOL_TRANSFORM_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_transform_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
