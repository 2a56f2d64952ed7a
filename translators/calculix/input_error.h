// What is wrong with an input file: where it is, and what was expected there.
#ifndef FMDTOOLKIT_CALCULIX_INPUT_ERROR_H
#define FMDTOOLKIT_CALCULIX_INPUT_ERROR_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace calculix {

class InputError : public std::runtime_error {
 public:
  // Line 0 speaks of the file as a whole.
  InputError(std::string file, long line, const std::string& text);

  const std::string& file() const { return file_; }
  long line() const { return line_; }
  const std::string& text() const { return text_; }

 private:
  std::string file_;
  long line_;
  std::string text_;
};

// A piece of an input file for a message: quoted, short, and without characters that a terminal obeys.
std::string quote(std::string_view text);

}  // namespace calculix

#endif
