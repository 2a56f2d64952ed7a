// What the commands of the program have in common.
#ifndef FMDTOOL_COMMAND_H
#define FMDTOOL_COMMAND_H

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <functional>
#include <string>

#include "body_output.h"
#include "database.h"

namespace fmdtool {

// The work of the command that the user gave, once the command line is read: the exit code.
using Work = std::function<int()>;

// Reports what the work throws, which gives the exit code of a failure.
int guarded(const Work& work, int failure = EXIT_FAILURE);

// Flushes standard output; throws std::runtime_error where it could not take all that was printed.
void finish_output();
void print(const std::string& text);

// Beyond CLI11's own: a database by name, --body and --select, --option, the two outputs.
void add_database(CLI::App& command, std::string& name, const char* description = "Database, NAME.MASTER");
void add_choice(CLI::App& command, BodyChoice& choice);
void add_write_options(CLI::App& command, std::vector<std::string>& options);
void add_qualifiers(CLI::App& command, std::string& qualifiers);

constexpr const char* exit_status =
    "Exit status: 0 when all was done, 1 when not, above 100 for a command line that is not understood. What "
    "went\n"
    "wrong is told on standard error.\n";

}  // namespace fmdtool

#endif
