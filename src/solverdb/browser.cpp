// Which bodies a database holds, as text rows. A row can be read by a person, and it is the condition that
// finds its body again. A database is asked once and remembered.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "kdcdb/kdcdb.h"

namespace {

constexpr std::size_t kRowBytes = 256;
constexpr std::size_t kMostColumns = 64;

struct BrowsedDatabase {
  std::string path;
  std::vector<std::string> rows;
};

struct Column {
  std::string name;
  std::size_t start;  // in a line
};

int browserSerial = 0;

std::vector<BrowsedDatabase>& browsed() {
  static std::vector<BrowsedDatabase> databases;
  return databases;
}

// Up to the next newline, which is passed.
std::string take_line(const std::string& text, std::size_t& at) {
  const std::size_t end = std::min(text.find('\n', at), text.size());
  std::string line = text.substr(at, end - at);
  at = std::min(end + 1, text.size());
  return line;
}

std::vector<Column> find_columns(const std::string& line) {
  std::vector<Column> columns;
  std::size_t at = line.find_first_not_of(' ');
  while (at != std::string::npos && columns.size() < kMostColumns) {
    const std::size_t end = std::min(line.find(' ', at), line.size());
    columns.push_back({line.substr(at, end - at), at});
    at = line.find_first_not_of(' ', end);
  }
  return columns;
}

// The label keeps its quotes and loses trailing blanks; its first character always stays.
std::string label_value(const std::string& line, std::size_t start) {
  const std::size_t open = line.find('\'', start);
  if (open == std::string::npos) return "''";
  const std::size_t close = std::min(line.find('\'', open + 1), line.size());
  std::string label = line.substr(open + 1, close - open - 1);
  while (label.size() > 1 && label.back() == ' ') label.pop_back();
  return "'" + label + "'";
}

std::string plain_value(const std::string& line, std::size_t start) {
  const std::size_t from = line.find_first_not_of(' ', start);
  if (from == std::string::npos) return "";
  return line.substr(from, std::min(line.find(' ', from), line.size()) - from);
}

std::string make_row(const std::string& line, const std::vector<Column>& columns) {
  std::string row;
  for (const Column& column : columns) {
    if (!row.empty()) row += ',';
    row += column.name + '=';
    row += column.name == "SELABEL" ? label_value(line, column.start) : plain_value(line, column.start);
  }
  row.resize(std::min(row.size(), kRowBytes - 1));
  return row;
}

std::vector<std::string> read_rows(const std::string& text) {
  std::vector<std::string> rows;
  const auto lines = std::count(text.begin(), text.end(), '\n');
  if (lines <= 2) return rows;
  std::size_t at = 0;
  const std::vector<Column> columns = find_columns(take_line(text, at));
  take_line(text, at);
  for (auto body = lines - 2; body > 0; --body) rows.push_back(make_row(take_line(text, at), columns));
  return rows;
}

// The first call tells the length.
std::string ask_dictionary(int serial) {
  char command[160];
  std::snprintf(command, sizeof command,
                "dbdict datablk(fmddb) where(highqual=%d) "
                "select(selabel,projno='projno',version='version',peid,desiter,stepcur)",
                -serial);
  char nothing[1];
  const int length = kdcdb::GetDbdict(command, nothing, sizeof nothing);
  if (length <= 0) return "";
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  if (kdcdb::GetDbdict(command, text.data(), text.size()) != 0) return "";
  text.resize(static_cast<std::size_t>(length));
  return text;
}

// The bodies of the database get negative marks, which no opened body has.
std::string list_bodies(const char* path, int serial) {
  const std::string number = std::to_string(serial);
  std::string command = "assign dbbrw" + number + "='" + path + "'";
  if (kdcdb::FMSCommand(command.c_str()) != kdcdb::kOk) return "";
  command = "dblocate logical=dbbrw" + number +
            " datablk=(fmddb) where(projno=* and version=*) "
            "convert(projno=projno;version=version;highqual=-" +
            number + ")";
  if (kdcdb::FMSCommand(command.c_str()) != kdcdb::kOk) return "";
  return ask_dictionary(serial);
}

// Once the rows are known the links serve nobody; they would keep the file open, and its writers from reusing
// space.
class BrowsingLinks {
 public:
  explicit BrowsingLinks(int serial) : logical_("dbbrw" + std::to_string(serial)) {}
  BrowsingLinks(const BrowsingLinks&) = delete;
  BrowsingLinks& operator=(const BrowsingLinks&) = delete;
  ~BrowsingLinks() { kdcdb::ForgetLogical(logical_.c_str()); }

 private:
  std::string logical_;
};

std::vector<std::string> browse(const char* path, int serial) {
  const BrowsingLinks links(serial);
  return read_rows(list_bodies(path, serial));
}

// The rows of a database that has bodies; null for any other.
const BrowsedDatabase* find_database(char* path) {
  for (const BrowsedDatabase& database : browsed()) {
    if (database.path == path) return &database;
  }
  if (DB_StartBase() == 0) return nullptr;
  const int status = DB_CheckDBset(path);
  const int serial = ++browserSerial;
  if (status != 0) return nullptr;
  std::vector<std::string> rows = browse(path, serial);
  if (rows.empty()) return nullptr;
  browsed().push_back({path, std::move(rows)});
  return &browsed().back();
}

}  // namespace

int DB_BodyBrowser(char* path, int index, char* row) {
  try {
    const BrowsedDatabase* const database = find_database(path);
    if (database == nullptr) return 0;
    const auto count = static_cast<int>(database->rows.size());
    if (index == 0) return count;
    if (index < 0 || index > count) return 0;
    if (row != nullptr)
      std::snprintf(row, kRowBytes, "%s", database->rows[static_cast<std::size_t>(index) - 1].c_str());
    return count;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int DB_BodyCount(char* path) {
  return DB_BodyBrowser(path, 0, nullptr);
}

int DB_GetBodyInfo(char* path, int index, char* row) {
  return DB_BodyBrowser(path, index, row) != 0 ? 1 : 0;
}

void DB_ResetBrowser(void) {
  std::vector<BrowsedDatabase>().swap(browsed());
}
