// fmdtool list
#ifndef FMDTOOL_LIST_COMMAND_H
#define FMDTOOL_LIST_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_list_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
