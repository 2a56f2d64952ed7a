#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <regex>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace {

// Sets the zone for a scope.
class Zone {
 public:
  explicit Zone(const char* name) : variable_("TZ", name) { tzset(); }

 private:
  fmdtest::EnvironmentVariable variable_;
};

std::string local_time(int mode) {
  char text[64] = "";
  FMD_localtime_ISO8601(mode, text);
  return text;
}

std::string system_name(int mode) {
  char text[64] = "rubbish";
  FMD_uname(mode, text);
  return text;
}

TEST(LocalTime, NegativeModePrintsAndWritesTheSameText) {
  const Zone zone("UTC0");
  testing::internal::CaptureStdout();
  const std::string quiet = local_time(1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  testing::internal::CaptureStdout();
  const std::string verbose = local_time(-1);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(quiet, verbose);
  EXPECT_TRUE(std::regex_match(
      printed,
      std::regex("%utl_23-v-val, GMT = [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}, tz_value\\(0\\)\n"
                 "%utl_23-v-val, Loc = [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} \\+0000\n")))
      << printed;
}

TEST(LocalTime, ModeOneIsTheDateAndTwoTheTime) {
  const Zone zone("UTC0");
  char expected[32];
  const std::time_t now = std::time(nullptr);
  std::strftime(expected, sizeof expected, "%Y-%m-%d", std::gmtime(&now));
  EXPECT_EQ(local_time(1), expected);
  EXPECT_TRUE(std::regex_match(local_time(2), std::regex("[0-9]{2}:[0-9]{2} \\+0000")));
}

TEST(LocalTime, OtherModesGiveDateAndTime) {
  const Zone zone("UTC0");
  const std::regex both("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} \\+0000");
  for (const int mode : {0, 3, 11}) EXPECT_TRUE(std::regex_match(local_time(mode), both)) << mode;
}

TEST(LocalTime, ZoneWestOfGreenwichWithHalfAnHour) {
  const Zone zone("XYZ3:30");
  EXPECT_EQ(local_time(2).substr(6), "-0330");
}

TEST(LocalTime, ZoneEastOfGreenwich) {
  const Zone zone("XYZ-5:45");
  EXPECT_EQ(local_time(2).substr(6), "+0545");
}

TEST(SystemName, FormsByMode) {
  EXPECT_EQ(system_name(1), "Windows_");
  EXPECT_EQ(system_name(11), "Windows_");
  EXPECT_EQ(system_name(4), "Windows_");
  EXPECT_EQ(system_name(0), "Windows_");
  EXPECT_TRUE(std::regex_match(system_name(2), std::regex("Windows_ [0-9]+_[0-9]+")));
  EXPECT_TRUE(std::regex_match(system_name(3), std::regex("Windows_ [0-9]+_[0-9]+ [0-9]+")));
  EXPECT_TRUE(std::regex_match(system_name(12), std::regex("Windows__[0-9]+_[0-9]+")));
  EXPECT_TRUE(std::regex_match(system_name(13), std::regex("Windows__[0-9]+_[0-9]+_[0-9]+")));
}

TEST(ProcessorTime, IsInSecondsAndGrowsWithWork) {
  const double before = FMD_cputime();
  const auto start = std::chrono::steady_clock::now();
  volatile double sink = 0.0;
  while (FMD_cputime() - before < 0.02) sink = sink + 1.0;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  EXPECT_GE(wall.count(), 0.01);
}

}  // namespace
