// fmdtool check, and what the other commands make of a damaged database.
#include <algorithm>
#include <filesystem>

#include "support/sample_body.h"
#include "tools/fmdtool_database_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;

namespace {

constexpr std::size_t page = 16384;
constexpr std::size_t first_data_page = 3;

bool contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

std::string with_flipped_byte(std::string bytes, std::size_t at) {
  bytes.at(at) = static_cast<char>(bytes.at(at) ^ 0x10);
  return bytes;
}

}  // namespace

TEST_F(FmdtoolDatabaseTest, ChecksASoundDatabase) {
  expect_stored("parts.MASTER", "one", {"--invariants", "full", "--monitor", "TOP"});
  EXPECT_EQ(expect_done({"check", "parts.MASTER"}), "parts.MASTER: 1 body, sound\n");
  expect_stored("parts.MASTER", "two", {"--option", "full_str"});
  expect_stored("parts.MASTER", "three", {"--option", "single"});
  expect_stored("parts.MASTER", "four", {"--option", "81_comp"});
  expect_stored("parts.MASTER", "one");
  EXPECT_EQ(expect_done({"check", "parts.MASTER"}), "parts.MASTER: 4 bodies, sound\n");
}

TEST_F(FmdtoolDatabaseTest, CannotCheckWhatIsNoDatabase) {
  write_file("text.MASTER", "my notes");
  for (const char* name : {"gone.MASTER", "text.MASTER", "tmp"}) {
    const Outcome outcome = run({"check", name});
    EXPECT_EQ(outcome.exit_code, 2) << name;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors.rfind(std::string("fmdtool: error: ") + name + ": ", 0), 0U) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  }
}

TEST_F(FmdtoolDatabaseTest, FindsDamageInEveryPage) {
  expect_stored("parts.MASTER", "one");
  const std::string sound = bytes_of("parts.MASTER");
  ASSERT_EQ(sound.size() % page, 0U);
  for (std::size_t at = first_data_page * page + 5; at < sound.size(); at += page) {
    write_file("parts.MASTER", with_flipped_byte(sound, at));
    const Outcome outcome = run({"check", "parts.MASTER"});
    EXPECT_EQ(outcome.exit_code, 1) << at / page << outcome.output << outcome.errors;
    EXPECT_EQ(outcome.output.rfind("parts.MASTER: ", 0), 0U) << outcome.output;
    EXPECT_GE(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 2) << outcome.output;
  }
  for (const std::size_t length : {sound.size() - page, sound.size() - 1, 4 * page + 1}) {
    write_file("parts.MASTER", sound.substr(0, length));
    EXPECT_EQ(run({"check", "parts.MASTER"}).exit_code, 1) << length;
  }
}

TEST_F(FmdtoolDatabaseTest, TellsWhichBodyCannotBeRead) {
  expect_stored("parts.MASTER", "one");
  expect_stored("parts.MASTER", "two");
  write_file("parts.MASTER", with_flipped_byte(bytes_of("parts.MASTER"), first_data_page * page + 5));
  const Outcome check = run({"check", "parts.MASTER"});
  EXPECT_EQ(check.exit_code, 1);
  EXPECT_TRUE(contains(check.output, "\nparts.MASTER, body 1: cannot be read\n")) << check.output;
  EXPECT_FALSE(contains(check.output, "body 2")) << check.output;
  EXPECT_TRUE(contains(check.output, "\nparts.MASTER: 2 bodies, damaged\n")) << check.output;
  EXPECT_EQ(run({"export", "parts.MASTER", "--body", "1", "-o", "out.fmd"}).exit_code, 1);
  EXPECT_EQ(run({"contents", "parts.MASTER", "--body", "1"}).exit_code, 1);
  EXPECT_EQ(made(), (std::set<std::string>{"parts.MASTER"}));
  expect_done({"export", "parts.MASTER", "--body", "2", "-o", "out.fmd"});
}

TEST_F(FmdtoolDatabaseTest, TellsADamagedListFromAnEmptyOne) {
  expect_stored("parts.MASTER", "one");
  std::string bytes = bytes_of("parts.MASTER");
  bytes.replace(page, 2 * page, 2 * page, '?');  // both roots
  write_file("parts.MASTER", bytes);
  expect_one_line(run({"list", "parts.MASTER"}),
                  "parts.MASTER: the database cannot be read; `fmdtool check` tells what is wrong");
  EXPECT_NE(run({"check", "parts.MASTER"}).exit_code, 0);
}

// A body whose bytes are all as they were written, and which cannot be read all the same.
TEST_F(FmdtoolDatabaseTest, FindsABodyThatCannotBeUnderstood) {
  store_past_the_program("parts.MASTER", "full_str single", make_sample_body);
  const Outcome check = run({"check", "parts.MASTER"});
  EXPECT_EQ(check.exit_code, 1) << check.output;
  EXPECT_EQ(check.output.rfind("parts.MASTER, body 1: ", 0), 0U) << check.output;
  EXPECT_TRUE(contains(check.output, "parts.MASTER: 1 body, damaged\n")) << check.output;
}
