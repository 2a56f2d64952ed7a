#include "calculix/input_error.h"

#include <utility>

namespace calculix {

InputError::InputError(std::string file, long line, const std::string& text)
    : std::runtime_error(file + ":" + (line > 0 ? std::to_string(line) + ":" : std::string()) + " " + text),
      file_(std::move(file)),
      line_(line),
      text_(text) {}

std::string quote(std::string_view text) {
  constexpr std::size_t longest = 40;
  std::string result = "\"";
  for (const char c : text.substr(0, longest)) result += (c >= ' ' && c <= '~') ? c : '?';
  if (text.size() > longest) result += "...";
  return result + "\"";
}

}  // namespace calculix
