// fmdtool: makes Flexible Modal Datasets from finite-element results and keeps them in databases.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "check_command.h"
#include "contents_command.h"
#include "copy_command.h"
#include "export_command.h"
#include "list_command.h"
#include "supervisor.h"
#include "transform_command.h"
#include "translate_options.h"

namespace {

constexpr const char* footer =
    "`fmdtool translate calculix --help` tells the options of a translation, `fmdtool COMMAND --help` those "
    "of\n"
    "any other command.\n"
    "\n";

constexpr const char* database_example =
    "  fmdtool store calculix bracket_free.frd.gz --deck bracket_free.inp --database parts.MASTER\n"
    "  fmdtool list parts.MASTER\n";

int run(int count, char** arguments) {
  CLI::App app(
      "Flexible bodies for multibody dynamics: makes Flexible Modal Datasets from finite-element results and "
      "keeps them in databases");
  app.name("fmdtool");
  app.footer(std::string(footer) + fmdtool::translate_example + database_example);
  app.set_version_flag("--version", "fmdtool " FMDTOOL_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  fmdtool::Work work;
  fmdtool::add_translate_command(app, work);
  fmdtool::add_store_command(app, work);
  fmdtool::add_list_command(app, work);
  fmdtool::add_contents_command(app, work);
  fmdtool::add_export_command(app, work);
  fmdtool::add_copy_command(app, work);
  fmdtool::add_transform_command(app, work);
  fmdtool::add_check_command(app, work);
  CLI11_PARSE(app, count, arguments);
  return fmdtool::run_supervised(work);
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(count, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fmdtool: error: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
