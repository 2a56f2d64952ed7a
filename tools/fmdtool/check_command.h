// fmdtool check
#ifndef FMDTOOL_CHECK_COMMAND_H
#define FMDTOOL_CHECK_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_check_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
