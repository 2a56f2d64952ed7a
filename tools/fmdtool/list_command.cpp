#include "list_command.h"

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "console.h"
#include "workspace.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

struct ListRequest {
  std::string database;
  bool json = false;
};

std::string as_table(const std::vector<StoredBody>& bodies) {
  std::string table = "  body       nodes   modes           bytes  qualifiers\n";
  for (const StoredBody& body : bodies) {
    char line[128];
    std::snprintf(line, sizeof line, "%6d  %10d  %6d  %14lld  ", body.number, body.nodes, body.modes,
                  body.bytes);
    table += line + as_text(body.qualifiers) + "\n";
  }
  return table;
}

nlohmann::ordered_json json_of(const StoredBody& body) {
  nlohmann::ordered_json json;
  json["body"] = body.number;
  json["qualifiers"]["SELABEL"] = body.qualifiers.label.value_or("");
  for (std::size_t i = 0; i < qualifier_numbers; ++i) {
    json["qualifiers"][number_names[i]] = body.qualifiers.numbers[i].value_or(0);
  }
  json["nodes"] = body.nodes;
  json["modes"] = body.modes;
  json["bytes"] = body.bytes;
  return json;
}

// Labels may hold bytes that are no text in UTF-8.
std::string as_json(const std::string& database, const std::vector<StoredBody>& bodies) {
  nlohmann::ordered_json json;
  json["database"] = database;
  json["bodies"] = nlohmann::ordered_json::array();
  for (const StoredBody& body : bodies) json["bodies"].push_back(json_of(body));
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

int list(const ListRequest& request) {
  const fs::path path = fs::absolute(request.database);
  install_message_handlers(false);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.database);
  print(request.json ? as_json(request.database, database.bodies()) : as_table(database.bodies()));
  return EXIT_SUCCESS;
}

}  // namespace

void add_list_command(CLI::App& app, Work& work) {
  CLI::App& command = *app.add_subcommand("list", "List the bodies of a database");
  command.footer(std::string("Example:\n  fmdtool list parts.MASTER\n\n") + exit_status);
  const auto request = std::make_shared<ListRequest>();
  add_database(command, request->database);
  command.add_flag("--json", request->json, "Print JSON instead of a table");
  command.callback(
      [&work, request] { work = [request] { return guarded([&] { return list(*request); }); }; });
}

}  // namespace fmdtool
