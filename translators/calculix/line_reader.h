// Lines of a text file, plain or gzipped, cut from a large buffer.
#ifndef FMDTOOLKIT_CALCULIX_LINE_READER_H
#define FMDTOOLKIT_CALCULIX_LINE_READER_H

#include <memory>
#include <string>
#include <string_view>

namespace calculix {

class LineReader {
 public:
  // Throws InputError when the file cannot be opened.
  explicit LineReader(std::string path);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // The next line without its line end, valid until the next call; false at the end of the file.
  bool next(std::string_view& line);

  const std::string& path() const { return path_; }
  long line_number() const { return line_number_; }
  // False where the file ended before the line did.
  bool line_is_whole() const { return line_is_whole_; }

  // How much of the file has been consumed, 0 to 1.
  double fraction() const;

  // Throws InputError for the line read last.
  [[noreturn]] void fail(const std::string& text) const;

 private:
  bool refill();

  std::string path_;
  void* file_ = nullptr;
  double file_size_ = 0.0;
  std::unique_ptr<char[]> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool at_end_ = false;
  bool line_is_whole_ = true;
  long line_number_ = 0;
};

}  // namespace calculix

#endif
