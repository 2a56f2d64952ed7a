// Builds datasets by hand, byte after byte.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_BYTES_H
#define FMDTOOLKIT_TESTS_DATASET_READER_BYTES_H

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

namespace dataset_reader {

// How a version word lays items out, written down by hand for each word.
struct Form {
  unsigned word;
  bool xdr;
  bool single;
  bool shape_word;   // a word before each mode shape
  bool stress_word;  // a word before each stress or strain vector
};

inline void PrintTo(const Form& form, std::ostream* out) {
  *out << "word " << form.word;
}

class Bytes {
 public:
  explicit Bytes(const Form& form) : form_(form) {}

  Bytes& ints(std::initializer_list<int> values) {
    for (const int value : values) append(&value, sizeof value);
    return *this;
  }

  Bytes& reals(std::initializer_list<double> values) {
    for (const double value : values) real(value);
    return *this;
  }

  Bytes& real(double value) {
    if (!form_.single) return append(&value, sizeof value);
    const auto narrow = static_cast<float>(value);
    return append(&narrow, sizeof narrow);
  }

  // So many reals, each one more than the last.
  Bytes& ramp(double first, int n) {
    for (int i = 0; i < n; ++i) real(first + i);
    return *this;
  }

  // A text filled up with zero bytes.
  Bytes& text(const std::string& text, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) character(i < text.size() ? text[i] : '\0');
    return *this;
  }

  Bytes& character(char value) {
    if (!form_.xdr) return append(&value, 1);
    const int word = value;
    return append(&word, sizeof word);
  }

  // Version word, header and summary with the bytes named set.
  Bytes& opening(std::initializer_list<int> summary_bytes) {
    ints({static_cast<int>(form_.word)});
    text("A title", 128).text("2024-05-06 07:08", 32).text("part.inp", 128).text("deck", 16);
    text("first", 80).text("second", 80).text("third", 80);
    std::string summary(100, '\0');
    for (const int byte : summary_bytes) summary[static_cast<std::size_t>(byte)] = 1;
    return text(summary, 100);
  }

  const Form& form() const { return form_; }
  std::vector<unsigned char> data;

 private:
  // The host is little-endian: XDR takes the bytes from the last to the first.
  Bytes& append(const void* value, std::size_t width) {
    const auto* bytes = static_cast<const unsigned char*>(value);
    if (form_.xdr) {
      for (std::size_t i = width; i > 0; --i) data.push_back(bytes[i - 1]);
    } else {
      data.insert(data.end(), bytes, bytes + width);
    }
    return *this;
  }

  Form form_;
};

}  // namespace dataset_reader

#endif
