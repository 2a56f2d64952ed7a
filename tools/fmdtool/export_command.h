// fmdtool export
#ifndef FMDTOOL_EXPORT_COMMAND_H
#define FMDTOOL_EXPORT_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_export_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
