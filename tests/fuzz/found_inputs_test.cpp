// What fuzz programs have found: the least change of a sound input that showed it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/full_body.h"
#include "fuzz/record_stream.h"
#include "support/session.h"

namespace {

using FoundInputs = fmdtest::SessionTest;

fuzz::Words* record_of(fuzz::Stream& stream, int block) {
  const auto found =
      std::find_if(stream.records.begin(), stream.records.end(),
                   [block](const fuzz::Words& record) { return !record.empty() && record[0] == block; });
  return found == stream.records.end() ? nullptr : &*found;
}

FmdBody* open_stored(const fuzz::Stream& stream) {
  char path[] = "found.MASTER";
  return fuzz::store_stream(stream, path) ? FMD_CreateFromFMD(path, 1) : nullptr;
}

std::string listing(FmdBody* body, int block) {
  char* text = nullptr;
  std::size_t size = 0;
  FILE* const out = open_memstream(&text, &size);
  FMD_Contents(body, block, out);
  std::fclose(out);
  std::string listed(text, size);
  std::free(text);
  return listed;
}

// records: listing and export counted the row from 1 beyond the largest integer.
TEST_F(FoundInputs, LeastRowOfDampingIsListedAndWritten) {
  fuzz::Stream stream = fuzz::stored_stream(fuzz::make_full_body(true), "no_ortho");
  fuzz::Words* const damping = record_of(stream, 15);
  ASSERT_NE(damping, nullptr);
  constexpr std::size_t kFirstRow = 3;  // behind block, count and flag
  ASSERT_GT(damping->size(), kFirstRow);
  (*damping)[kFirstRow] = INT_MIN;
  FmdBody* const body = open_stored(stream);
  ASSERT_NE(body, nullptr);
  EXPECT_NE(listing(body, 15).find("-2147483648"), std::string::npos) << listing(body, 15);
  char path[] = "found.fmd";
  EXPECT_EQ(FMD_write_FMD(body, path), 1);
}

}  // namespace
