// fmdtool copy
#ifndef FMDTOOL_COPY_COMMAND_H
#define FMDTOOL_COPY_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_copy_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
