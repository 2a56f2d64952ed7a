// The descriptive header and the version word.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iterator>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

struct HeaderText {
  const char* too_big;
  const char* report;
};

constexpr HeaderText kTitle = {"Title too big: max size %ld, specified size %ld.\nTruncating title.",
                               "Title: %s"};
constexpr HeaderText kFileName = {
    "Input file name too big: max size %ld, specified size %ld.\nTruncating input file name.", "Name : %s"};
constexpr HeaderText kFileType = {
    "Input file type spec too big: max size %ld, specified size %ld.\nTruncating input file type.",
    "Type : %s"};
constexpr HeaderText kComment1 = {
    "Comment 1 too big: max size %ld, specified size %ld.\nTruncating Comment 1.", "Comment 1: %s"};
constexpr HeaderText kComment2 = {
    "Comment 2 too big: max size %ld, specified size %ld.\nTruncating Comment 2.", "Comment 2: %s"};
constexpr HeaderText kComment3 = {
    "Comment 3 too big: max size %ld, specified size %ld.\nTruncating Comment 3.", "Comment 3: %s"};

// Copies a text into its field, with newlines turned into blanks in the caller's text too.
template <std::size_t size>
void set_text(char (&field)[size], char* text, const HeaderText& words) {
  constexpr std::size_t kLimit = size - 1;
  const std::size_t length = std::strlen(text);
  if (length > kLimit) FMD_Warning(words.too_big, static_cast<long>(kLimit), static_cast<long>(length));
  std::replace(text, text + length, '\n', ' ');
  const std::size_t kept = std::min(length, kLimit);
  std::memcpy(field, text, kept);
  field[kept] = '\0';
  FMD_Info(words.report, field);
}

// Local time in the standard form of 24 characters; the newline that ends it becomes a blank.
void set_creation_time(FmdBody& body) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[64] = "";
  if (asctime_r(&local, text) == nullptr) return;
  std::replace(text, text + std::strlen(text), '\n', ' ');
  std::snprintf(body.CreationTime, sizeof body.CreationTime, "%.31s", text);
}

}  // namespace

int FMD_SetHeader(FmdBody* body, char* title, char* inputFileName, char* inputFileType, char* comment1,
                  char* comment2, char* comment3) {
  if (CheckFMD(body) == 0) return 0;
  set_creation_time(*body);
  set_text(body->Title, title, kTitle);
  set_text(body->InputFileName, inputFileName, kFileName);
  set_text(body->InputFileType, inputFileType, kFileType);
  set_text(body->Comment1, comment1, kComment1);
  set_text(body->Comment2, comment2, kComment2);
  set_text(body->Comment3, comment3, kComment3);
  return 1;
}

void FMD_SetVersion(FmdBody* body, int version) {
  if (CheckFMD(body) == 0) return;
  constexpr int kPlainVersions[] = {10, 20, 30, 31, 40, 41, 50, 51};
  const std::uint32_t level = static_cast<std::uint32_t>(version) & 0xFFU;
  const bool plain =
      std::find(std::begin(kPlainVersions), std::end(kPlainVersions), version) != std::end(kPlainVersions);
  body->Version = plain ? level : (body->Version & ~0xFFU) | level;
}
