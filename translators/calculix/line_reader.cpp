#include "calculix/line_reader.h"

#include <sys/stat.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "calculix/input_error.h"

namespace calculix {

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 20;
constexpr unsigned inflate_buffer_size = 1U << 18;

gzFile handle(void* file) {
  return static_cast<gzFile>(file);
}

}  // namespace

LineReader::LineReader(std::string path) : path_(std::move(path)), buffer_(new char[buffer_size]) {
  struct stat status {};
  if (stat(path_.c_str(), &status) != 0) {
    throw InputError(path_, 0, std::string("cannot be opened: ") + std::strerror(errno));
  }
  if (S_ISDIR(status.st_mode)) throw InputError(path_, 0, "expected a file, found a directory");
  file_size_ = static_cast<double>(status.st_size);
  file_ = gzopen(path_.c_str(), "rb");
  if (file_ == nullptr) throw InputError(path_, 0, std::string("cannot be opened: ") + std::strerror(errno));
  gzbuffer(handle(file_), inflate_buffer_size);
}

LineReader::~LineReader() {
  gzclose(handle(file_));
}

double LineReader::fraction() const {
  if (file_size_ <= 0.0) return 1.0;
  return std::min(1.0, static_cast<double>(gzoffset(handle(file_))) / file_size_);
}

void LineReader::fail(const std::string& text) const {
  throw InputError(path_, line_number_, text);
}

// Moves the unfinished line to the front and reads on behind it. A cut gzip file shows as an error of the
// decompressor after its last byte.
bool LineReader::refill() {
  if (at_end_) return false;
  std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  if (end_ == buffer_size) {
    throw InputError(path_, line_number_ + 1,
                     "expected text, found a line of more than a million characters");
  }
  const int got = gzread(handle(file_), buffer_.get() + end_, static_cast<unsigned>(buffer_size - end_));
  int state = Z_OK;
  if (got <= 0) gzerror(handle(file_), &state);
  if (got < 0 || (state != Z_OK && state != Z_STREAM_END)) {
    const std::string why =
        state == Z_ERRNO ? std::strerror(errno) : "the compressed data is damaged or cut off";
    throw InputError(path_, line_number_ + 1, "cannot be read: " + why);
  }
  at_end_ = got == 0;
  end_ += static_cast<std::size_t>(got);
  return got > 0;
}

bool LineReader::next(std::string_view& line) {
  std::size_t searched = begin_;
  for (;;) {
    const char* start = buffer_.get() + searched;
    const void* found = std::memchr(start, '\n', end_ - searched);
    if (found != nullptr) {
      const auto length =
          static_cast<std::size_t>(static_cast<const char*>(found) - (buffer_.get() + begin_));
      line = std::string_view(buffer_.get() + begin_, length);
      begin_ += length + 1;
      break;
    }
    const std::size_t unfinished = end_ - begin_;
    if (refill()) {
      searched = begin_ + unfinished;
      continue;
    }
    if (unfinished == 0) return false;
    line = std::string_view(buffer_.get() + begin_, unfinished);
    begin_ = end_;
    line_is_whole_ = false;
    break;
  }
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  ++line_number_;
  return true;
}

}  // namespace calculix
