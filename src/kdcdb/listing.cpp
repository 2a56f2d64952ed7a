// The dictionary as text: a line of column names, an underline, and a line for each datablock.
#include <algorithm>
#include <cctype>
#include <cstring>

#include "kdcdb/store.h"
#include "kdcdb/trace.h"

namespace kdcdb {

namespace {

constexpr const char* kLabelColumn = "SELABEL";

// Column numbers: -1 for the label, else that of the qualifier.
constexpr int kLabel = -1;

struct Column {
  int number = kLabel;
  std::string title;
};

Status read_columns(const Item& select, std::vector<Column>& columns) {
  for (const Entry& entry : select.group) {
    Column column;
    column.number = entry.name == "selabel" ? kLabel : qualifier_number(entry.name);
    if (column.number == kLabel && entry.name != "selabel") return kBadCommand;
    column.title = column.number == kLabel ? kLabelColumn : kQualifierNames[column.number];
    columns.push_back(std::move(column));
  }
  return columns.empty() ? kBadCommand : kOk;
}

std::string cell(const Qualifiers& qualifiers, const Column& column) {
  if (column.number != kLabel)
    return std::to_string(qualifiers.numbers[static_cast<std::size_t>(column.number)]);
  return "'" + qualifiers.label + "'";
}

// The cells of one line, each but the last filled up to the width of its column.
template <typename CellOf>
void add_line(const std::vector<Column>& columns, const std::vector<std::size_t>& widths, CellOf cell_of,
              std::string& text) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string shown = cell_of(columns[i]);
    text += shown;
    if (i + 1 < columns.size()) text.append(widths[i] - shown.size() + 1, ' ');
  }
  text += '\n';
}

std::size_t width_of(const Column& column, const std::vector<Link>& rows) {
  std::size_t width = column.title.size();
  for (const Link& row : rows) width = std::max(width, cell(row.qualifiers, column).size());
  return width;
}

// Cells are made twice, for the widths and for the text: a database of many bodies would fill memory with
// them.
std::string format(const std::vector<Column>& columns, const std::vector<Link>& rows) {
  std::vector<std::size_t> widths;
  std::size_t length = columns.size() - 1;
  for (const Column& column : columns) {
    widths.push_back(width_of(column, rows));
    length += widths.back();
  }
  std::string text;
  text.reserve((rows.size() + 2) * (length + 1));
  add_line(
      columns, widths, [](const Column& column) { return column.title; }, text);
  text.append(length, '-');
  text += '\n';
  for (const Link& row : rows)
    add_line(
        columns, widths, [&](const Column& column) { return cell(row.qualifiers, column); }, text);
  return text;
}

// "dbdict datablk(name) where(...) select(column,...)"
Status list(const char* command_text, std::string& text) {
  const Store& state = store();
  if (!state.is_open()) return kNoDatabase;
  Command command;
  Selection selection;
  Status status = parse_single(command_text, command);
  if (status != kOk) return status;
  if (command.size() != 4 || command[0].name != "dbdict" || !is_group(command[3], "select"))
    return kBadCommand;
  std::vector<Column> columns;
  status = read_selection(command, 1, selection);
  if (status == kOk) status = read_columns(command[3], columns);
  if (status != kOk) return status;

  std::vector<Link> rows;
  status = find_matches(selection, rows);
  if (status == kOk && !rows.empty()) text = format(columns, rows);
  return status;
}

}  // namespace

Status ListStored(const char* master_path, StoredReport report, void* context) {
  return guarded([&] {
    std::shared_ptr<const StoredFile> stored;
    const Status status = StoredFile::open(master_path, nullptr, stored);
    if (status != kOk) return status;
    for (const StoredEntry& entry : stored->entries())
      report(entry.trailer.data(), static_cast<std::int64_t>(entry.words), context);
    return status;
  });
}

int GetDbdict(const char* command, char* buffer, std::size_t size) {
  trace("KD_GetDbdict: inp = %s\n", command);
  std::string text;
  int result = -guarded([&] { return list(command, text); });
  if (result == kOk && text.size() >= size) {
    result = static_cast<int>(text.size());
  } else if (result == kOk) {
    std::memcpy(buffer, text.c_str(), text.size() + 1);
  }
  trace("KD_GetDbdict: err = %d\n", result);
  return result;
}

}  // namespace kdcdb
