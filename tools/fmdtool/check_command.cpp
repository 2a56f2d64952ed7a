#include "check_command.h"

#include <memory>
#include <vector>

#include "body_reading.h"
#include "console.h"
#include "fmdtoolkit/extensions.h"
#include "workspace.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

enum Verdict : int { sound = 0, damaged = 1, unreadable = 2 };

constexpr const char* footer =
    "The whole file is walked: header, roots, checksums, extents, dictionary; then every block of every body "
    "is\n"
    "read. What is wrong is printed, a line each.\n"
    "\n"
    "Example:\n"
    "  fmdtool check parts.MASTER && echo sound\n"
    "\n"
    "Exit status: 0 when the database is sound, 1 when it is damaged, 2 when it cannot be checked, for\n"
    "instance because it is no database; above 100 for a command line that is not understood.\n";

// What the walk over the file finds.
Verdict walk(const std::string& path, std::vector<std::string>& findings) {
  const auto note = [](const char* text, void* list) {
    static_cast<std::vector<std::string>*>(list)->push_back(text);
  };
  return static_cast<Verdict>(FMDX_CheckDatabase(path.c_str(), note, &findings));
}

// All that the toolkit says against a body while it is read.
bool body_is_sound(const std::string& path, int number, const std::string& place) {
  bool is_sound = true;
  const auto tell = [&](const std::string& text) {
    print(place + ": " + text + "\n");
    is_sound = false;
  };
  divert_errors(tell);
  std::string name = path;
  FmdBody* const body = FMD_CreateFromFMD(name.data(), number);
  if (body == nullptr) {
    tell("cannot be read");
  } else {
    read_all(body, tell);
    FMD_UnLink(body);
  }
  divert_errors(nullptr);
  return is_sound;
}

int check(const std::string& given) {
  const std::string path = fs::absolute(given).string();
  install_message_handlers(false);
  const Workspace workspace;
  const ToolkitSession session;
  std::vector<std::string> findings;
  Verdict verdict = walk(path, findings);
  if (verdict == unreadable) {
    throw std::runtime_error(given + ": " + (findings.empty() ? "cannot be checked" : findings[0]));
  }
  for (const std::string& finding : findings) print(given + ": " + finding + "\n");
  std::string text = path;
  const int count = DB_BodyCount(text.data());
  for (int number = 1; number <= count; ++number) {
    show_progress("Reading bodies", static_cast<double>(number - 1) / count);
    if (!body_is_sound(path, number, given + ", body " + std::to_string(number))) verdict = damaged;
  }
  const std::string bodies = std::to_string(count) + (count == 1 ? " body" : " bodies");
  print(given + ": " + bodies + ", " + (verdict == sound ? "sound" : "damaged") + "\n");
  return verdict;
}

}  // namespace

void add_check_command(CLI::App& app, Work& work) {
  CLI::App& command =
      *app.add_subcommand("check", "Check every byte of a database and every block of its bodies");
  command.footer(footer);
  const auto name = std::make_shared<std::string>();
  add_database(command, *name);
  command.callback(
      [&work, name] { work = [name] { return guarded([&] { return check(*name); }, unreadable); }; });
}

}  // namespace fmdtool
