// fmdtool translate and fmdtool store, whose translations are told alike
#ifndef FMDTOOL_TRANSLATE_OPTIONS_H
#define FMDTOOL_TRANSLATE_OPTIONS_H

#include "command.h"

namespace fmdtool {

constexpr const char* translate_example =
    "Example:\n"
    "  fmdtool translate calculix bracket_free.frd.gz --deck bracket_free.inp \\\n"
    "      --interface-nodes P_HOLE_B1,P_HOLE_B2 -o bracket.fmd\n";

void add_translate_command(CLI::App& app, Work& work);
void add_store_command(CLI::App& app, Work& work);

}  // namespace fmdtool

#endif
