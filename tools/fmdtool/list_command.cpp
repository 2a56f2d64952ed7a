#include "list_command.h"

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "console.h"
#include "fmdtoolkit/extensions.h"
#include "workspace.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

struct ListRequest {
  std::string database;
  bool json = false;
};

struct ListedBody {
  StoredBody stored;
  bool readable = false;
  int nodes = 0;
  int modes = 0;
  long long bytes = 0;
};

// From the ends of the body, without reading it.
ListedBody measure(const Database& database, const StoredBody& body) {
  ListedBody listed;
  listed.stored = body;
  std::string path = database.path().string();
  int logical_id = 0;
  const int block = DB_OpenDatablk(path.data(), body.number, &logical_id);
  if (block == 0) return listed;
  int trailer[7] = {block};
  listed.readable = DB_ReadTrailer(trailer) != 0;
  listed.modes = trailer[1];
  listed.nodes = trailer[2];
  listed.bytes = FMDX_DatablockBytes(block);
  DB_CloseDatablk(block);
  return listed;
}

std::string as_table(const std::vector<ListedBody>& bodies) {
  std::string table = "  body       nodes   modes           bytes  qualifiers\n";
  for (const ListedBody& body : bodies) {
    char line[128];
    if (body.readable) {
      std::snprintf(line, sizeof line, "%6d  %10d  %6d  %14lld  ", body.stored.number, body.nodes, body.modes,
                    body.bytes);
    } else {
      std::snprintf(line, sizeof line, "%6d  %10s  %6s  %14s  ", body.stored.number, "-", "-", "-");
    }
    table += line + as_text(body.stored.qualifiers) + "\n";
  }
  return table;
}

nlohmann::ordered_json json_of(const ListedBody& body) {
  nlohmann::ordered_json json;
  const Qualifiers& qualifiers = body.stored.qualifiers;
  json["body"] = body.stored.number;
  json["qualifiers"]["SELABEL"] = qualifiers.label.value_or("");
  for (std::size_t i = 0; i < qualifier_numbers; ++i) {
    json["qualifiers"][number_names[i]] = qualifiers.numbers[i].value_or(0);
  }
  for (const char* key : {"nodes", "modes", "bytes"}) json[key] = nullptr;
  if (!body.readable) return json;
  json["nodes"] = body.nodes;
  json["modes"] = body.modes;
  json["bytes"] = body.bytes;
  return json;
}

// Labels may hold bytes that are no text in UTF-8.
std::string as_json(const std::string& database, const std::vector<ListedBody>& bodies) {
  nlohmann::ordered_json json;
  json["database"] = database;
  json["bodies"] = nlohmann::ordered_json::array();
  for (const ListedBody& body : bodies) json["bodies"].push_back(json_of(body));
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

int list(const ListRequest& request) {
  const fs::path path = fs::absolute(request.database);
  install_message_handlers(false);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.database);
  std::vector<ListedBody> bodies;
  bool whole = true;
  for (const StoredBody& body : database.bodies()) {
    bodies.push_back(measure(database, body));
    if (bodies.back().readable) continue;
    print_error(database.place_of(body) + ": cannot be read; `fmdtool check` tells what is wrong");
    whole = false;
  }
  print(request.json ? as_json(request.database, bodies) : as_table(bodies));
  return whole ? EXIT_SUCCESS : EXIT_FAILURE;
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
