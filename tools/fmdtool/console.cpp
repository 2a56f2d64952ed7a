#include "console.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtool {

namespace {

bool is_verbose = false;
bool bar_is_shown = false;
int modes_told = 0;
int errors = 0;
std::function<void(const std::string&)> diverted;

// A line end with the blanks behind it becomes a blank and other characters that steer a terminal question
// marks, so that a message is one line whatever an input file holds.
std::string one_line(const std::string& text) {
  std::string result;
  bool line_begins = true;
  for (const char c : text) {
    const bool line_end = c == '\n' || c == '\r';
    if (line_begins && (line_end || c == ' ')) continue;
    line_begins = line_end;
    const auto code = static_cast<unsigned char>(c);
    result += line_end ? ' ' : ((code < 32 || code == 127) ? '?' : c);
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

void print_line(const char* kind, const std::string& text) {
  clear_progress();
  std::fprintf(stderr, "fmdtool: %s%s\n", kind, one_line(text).c_str());
}

void on_error(const char* text) {
  ++errors;
  if (diverted) {
    diverted(one_line(text));
  } else {
    print_error(text);
  }
}

void on_warning(const char* text) {
  print_warning(text);
}

void on_information(const char* text) {
  constexpr const char* format = "\nTrans Mode info:\n   Modes: %d";
  std::sscanf(text, format, &modes_told);
  if (is_verbose) print_line("", text);
}

}  // namespace

void install_message_handlers(bool verbose) {
  is_verbose = verbose;
  modes_told = 0;
  errors = 0;
  const FmdMessageHandlers handlers = {on_error, on_warning, on_information};
  SetMessageHandlers(&handlers);
}

void print_error(const std::string& text) {
  print_line("error: ", text);
}

void print_warning(const std::string& text) {
  print_line("warning: ", text);
}

void show_progress(const char* step, double fraction) {
  static const bool on_terminal = isatty(STDERR_FILENO) == 1;
  if (!on_terminal) return;
  constexpr int width = 40;
  const int filled = static_cast<int>(fraction * width);
  std::string bar(static_cast<std::size_t>(width), '.');
  bar.replace(0, static_cast<std::size_t>(filled), static_cast<std::size_t>(filled), '#');
  std::fprintf(stderr, "\r\033[K%-14s [%s] %3d %%", step, bar.c_str(), static_cast<int>(fraction * 100.0));
  std::fflush(stderr);
  bar_is_shown = true;
}

void clear_progress() {
  if (!bar_is_shown) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  bar_is_shown = false;
}

int errors_told() {
  return errors;
}

void divert_errors(std::function<void(const std::string& line)> to) {
  diverted = std::move(to);
}

int exported_modes() {
  return modes_told;
}

}  // namespace fmdtool
