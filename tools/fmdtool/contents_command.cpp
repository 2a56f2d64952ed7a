#include "contents_command.h"

#include <cstdio>
#include <memory>

#include "console.h"
#include "workspace.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr int block_count = 35;

struct ContentsRequest {
  std::string database;
  BodyChoice choice;
  int block = 0;  // all that the body has
};

void show(FmdBody* body, int block) {
  for (int number = 1; number <= block_count; ++number) {
    const bool wanted = block == 0 ? FMD_Exists(body, number - 1) != 0 : number == block;
    if (wanted) FMD_Contents(body, number, stdout);
  }
}

int contents(const ContentsRequest& request) {
  const fs::path path = fs::absolute(request.database);
  install_message_handlers(false);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.database);
  for (const StoredBody& stored : database.chosen(request.choice)) {
    FmdBody* const body = database.read(stored);
    print(database.place_of(stored) + ": " + as_text(stored.qualifiers) + "\n");
    show(body, request.block);
    FMD_UnLink(body);
    if (errors_told() > 0)
      throw std::runtime_error(database.place_of(stored) + ": not all of it can be read");
  }
  return EXIT_SUCCESS;
}

}  // namespace

void add_contents_command(CLI::App& app, Work& work) {
  CLI::App& command = *app.add_subcommand("contents", "Show what is in the bodies of a database, as text");
  command.footer(std::string("Example:\n  fmdtool contents parts.MASTER --select arm --block 7\n\n") +
                 exit_status);
  const auto request = std::make_shared<ContentsRequest>();
  add_database(command, request->database);
  add_choice(command, request->choice);
  command
      .add_option(
          "--block", request->block,
          "Only this block, such as 4 nodal coordinates, 7 eigenvalues, 8 mode shapes [all there are]")
      ->check(CLI::Range(1, block_count))
      ->type_name("K");
  command.callback(
      [&work, request] { work = [request] { return guarded([&] { return contents(*request); }); }; });
}

}  // namespace fmdtool
