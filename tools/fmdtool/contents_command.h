// fmdtool contents
#ifndef FMDTOOL_CONTENTS_COMMAND_H
#define FMDTOOL_CONTENTS_COMMAND_H

#include "command.h"

namespace fmdtool {

void add_contents_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
