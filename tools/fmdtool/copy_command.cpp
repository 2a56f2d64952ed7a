#include "copy_command.h"

#include <memory>

#include "console.h"
#include "workspace.h"
#include "write_options.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

struct CopyRequest {
  std::string from;
  std::string to;
  BodyChoice choice;
  std::string qualifiers;
  std::vector<std::string> options;
  bool verbose = false;
};

// A copy has the form of its original unless the user wants another one.
void copy_body(const Database& database, const StoredBody& stored, const Qualifiers& qualifiers,
               bool keeps_form, BodyOutput& output) {
  FmdBody* const body = database.read(stored);
  if (keeps_form) replace_write_options(options_that_keep(body));
  output.write(body, qualifiers);
  FMD_UnLink(body);
}

int copy(const CopyRequest& request) {
  const fs::path path = fs::absolute(request.from);
  const auto output = make_output({"", request.to});
  refuse_as_output(*output, path, request.to + ": expected another database than the one that is read");
  const bool keeps_form = !has_write_options(joined(request.options));
  set_write_options(joined(request.options));
  install_message_handlers(request.verbose);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.from);
  const std::vector<StoredBody> chosen = database.chosen(request.choice);
  if (!request.qualifiers.empty() && chosen.size() > 1) {
    throw std::runtime_error("--qualifiers: expected one body to copy, found " +
                             std::to_string(chosen.size()) + "; say which with --body");
  }
  std::size_t done = 0;
  for (const StoredBody& stored : chosen) {
    copy_body(database, stored, stored.qualifiers.changed_by(request.qualifiers), keeps_form, *output);
    show_progress("Copying", static_cast<double>(++done) / static_cast<double>(chosen.size()));
  }
  output->commit();
  return EXIT_SUCCESS;
}

}  // namespace

void add_copy_command(CLI::App& app, Work& work) {
  CLI::App& command = *app.add_subcommand("copy", "Copy bodies from one database into another");
  command.footer(std::string("Without --body and --select all bodies are copied. A body that has the same "
                             "qualifiers in the\nother database is replaced. Without options of the writer a "
                             "copy has the form of its original.\n\nExample:\n  fmdtool copy parts.MASTER "
                             "archive.MASTER --select \"PROJNO=2\"\n\n") +
                 exit_status);
  const auto request = std::make_shared<CopyRequest>();
  add_database(command, request->from, "Database to copy from, NAME.MASTER");
  command.add_option("target", request->to, "Database to copy into; made if it is not there")
      ->required()
      ->type_name("TO.MASTER");
  add_choice(command, request->choice);
  add_qualifiers(command, request->qualifiers);
  add_write_options(command, request->options);
  command.add_flag("--verbose", request->verbose, "Show all messages of the toolkit");
  command.callback(
      [&work, request] { work = [request] { return guarded([&] { return copy(*request); }); }; });
}

}  // namespace fmdtool
