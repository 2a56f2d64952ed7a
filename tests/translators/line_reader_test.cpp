#include "calculix/line_reader.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/session.h"
#include "translators/frd_text.h"

using calculix::LineReader;
using fmdtest::input_error_of;
using fmdtest::write_file;

namespace {

std::vector<std::string> lines_of(const std::string& path) {
  LineReader reader(path);
  std::vector<std::string> lines;
  std::string_view line;
  while (reader.next(line)) lines.emplace_back(line);
  EXPECT_EQ(reader.line_number(), static_cast<long>(lines.size()));
  return lines;
}

void write_gzip(const std::string& path, const std::string& text) {
  gzFile file = gzopen(path.c_str(), "wb");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
}

std::string bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string many_lines() {
  std::string text;
  for (int i = 0; i < 300000; ++i) text += "line " + std::to_string(i * 7919L % 100003) + "\n";
  return text;
}

}  // namespace

class LineReaderTest : public ::testing::Test {
 protected:
  fmdtest::TemporaryDirectory directory;
};

TEST_F(LineReaderTest, CutsLinesWithAndWithoutReturnsAndWithoutALastLineEnd) {
  write_file("text", "one\r\n\ntwo\nthree");
  EXPECT_EQ(lines_of("text"), (std::vector<std::string>{"one", "", "two", "three"}));
  write_file("empty", "");
  EXPECT_TRUE(lines_of("empty").empty());
}

TEST_F(LineReaderTest, ReadsTheSameFromPlainAndGzippedFilesLargerThanItsBuffer) {
  const std::string text = many_lines();
  write_file("plain", text);
  write_gzip("packed", text);
  const std::vector<std::string> plain = lines_of("plain");
  std::string joined;
  for (const std::string& line : plain) joined += line + "\n";
  EXPECT_TRUE(joined == text);
  EXPECT_TRUE(plain == lines_of("packed"));
}

TEST_F(LineReaderTest, TellsOfACutOrDamagedGzipFile) {
  write_gzip("packed", many_lines());
  const std::string whole = bytes_of("packed");
  write_file("cut", whole.substr(0, whole.size() / 2));
  EXPECT_NE(input_error_of([] { lines_of("cut"); }).find("the compressed data is damaged or cut off"),
            std::string::npos);
  write_file("short", whole.substr(0, whole.size() - 3));
  EXPECT_NE(input_error_of([] { lines_of("short"); }).find("the compressed data is damaged or cut off"),
            std::string::npos);
  std::string damaged = whole;
  damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 0x55);
  write_file("damaged", damaged);
  EXPECT_NE(input_error_of([] { lines_of("damaged"); }).find("the compressed data is damaged or cut off"),
            std::string::npos);
}

TEST_F(LineReaderTest, TellsWhatItCannotOpen) {
  EXPECT_EQ(input_error_of([] { LineReader("missing"); }),
            "missing: cannot be opened: No such file or directory");
  EXPECT_EQ(input_error_of([] { LineReader("."); }), ".: expected a file, found a directory");
}

TEST_F(LineReaderTest, RefusesALineWithoutEnd) {
  write_file("long", "short\n" + std::string(3000000, 'x'));
  EXPECT_EQ(input_error_of([] { lines_of("long"); }),
            "long:2: expected text, found a line of more than a million characters");
}

TEST_F(LineReaderTest, TellsHowFarItIs) {
  write_file("plain", many_lines());
  LineReader reader("plain");
  std::string_view line;
  double last = 0.0;
  while (reader.next(line)) {
    ASSERT_GE(reader.fraction(), last);
    last = reader.fraction();
  }
  EXPECT_EQ(last, 1.0);
}
