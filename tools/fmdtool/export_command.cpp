#include "export_command.h"

#include <memory>

#include "console.h"
#include "workspace.h"
#include "write_options.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

struct ExportRequest {
  std::string database;
  BodyChoice choice;
  std::string output;
  std::vector<std::string> options;
  bool verbose = false;
};

int export_body(const ExportRequest& request) {
  const fs::path path = fs::absolute(request.database);
  const auto output = make_output({request.output, ""});
  refuse_as_output(*output, path, request.output + ": expected an output file that is not the database");
  set_write_options(joined(request.options));
  install_message_handlers(request.verbose);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.database);
  const StoredBody stored = database.chosen_one(request.choice);
  FmdBody* const body = database.read(stored);
  show_progress("Writing", 1.0);
  output->write(body, stored.qualifiers);
  output->commit();
  return EXIT_SUCCESS;
}

}  // namespace

void add_export_command(CLI::App& app, Work& work) {
  CLI::App& command = *app.add_subcommand("export", "Write a body of a database as a dataset file");
  command.footer(std::string("Example:\n  fmdtool export parts.MASTER --body 1 -o arm.fmd\n\n") +
                 exit_status);
  const auto request = std::make_shared<ExportRequest>();
  add_database(command, request->database);
  add_choice(command, request->choice);
  command.add_option("-o,--output", request->output, "Dataset to write")->required()->type_name("OUT.fmd");
  add_write_options(command, request->options);
  command.add_flag("--verbose", request->verbose, "Show all messages of the toolkit");
  command.callback(
      [&work, request] { work = [request] { return guarded([&] { return export_body(*request); }); }; });
}

}  // namespace fmdtool
