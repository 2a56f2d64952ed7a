#include "calculix/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using calculix::columns;
using calculix::parse_int;
using calculix::parse_real;
using calculix::take_real;
using calculix::trimmed;

namespace {

double real(const std::string& text) {
  double value = std::nan("");
  return parse_real(text, value) ? value : std::nan("");
}

std::vector<double> run(std::string_view text, std::size_t count) {
  std::vector<double> values(count);
  for (double& value : values) {
    if (!take_real(text, value)) return {};
  }
  return trimmed(text).empty() ? values : std::vector<double>();
}

}  // namespace

TEST(NumberText, CutsColumnsCountedFromOneAndStopsAtTheEndOfTheLine) {
  EXPECT_EQ(columns("abcdef", 1, 2), "ab");
  EXPECT_EQ(columns("abcdef", 5, 9), "ef");
  EXPECT_EQ(columns("abcdef", 7, 9), "");
  EXPECT_EQ(columns("abcdef", 100, 110), "");
}

TEST(NumberText, ReadsWholeNumbersAndNothingElse) {
  int value = 0;
  EXPECT_TRUE(parse_int("   -12 ", value));
  EXPECT_EQ(value, -12);
  EXPECT_TRUE(parse_int("+7", value));
  EXPECT_EQ(value, 7);
  for (const char* bad : {"", "  ", "1.", "1 2", "x", "+", "2147483648", "99999999999999999999"}) {
    EXPECT_FALSE(parse_int(bad, value)) << bad;
  }
}

TEST(NumberText, ReadsRealsInEveryNotationOfDecks) {
  EXPECT_EQ(real("7.85E-9"), 7.85e-9);
  EXPECT_EQ(real("210000."), 210000.0);
  EXPECT_EQ(real(".5"), 0.5);
  EXPECT_EQ(real(" -1.5d3 "), -1500.0);
  EXPECT_EQ(real("+2e2"), 200.0);
  EXPECT_EQ(real("2997.447769"), 2997.447769);
  EXPECT_EQ(real("1.23456-100"), 1.23456e-100);
  EXPECT_EQ(real("-1.23456+100"), -1.23456e+100);
  EXPECT_EQ(real("1.23456E-100"), 1.23456e-100);
  EXPECT_EQ(real("0.12345678901234567890123"), 0.12345678901234567890123);
  EXPECT_EQ(real("1.0E-400"), 0.0);
  EXPECT_EQ(real("0.0E+400"), 0.0);
}

TEST(NumberText, RefusesWhatIsNoFiniteNumber) {
  for (const char* bad : {"",      " ",    "NaN",  "nan",   "Infinity",
                          "inf",   "-inf", "1.0E", "1.0E+", "1..0",
                          "1.0 2", "E5",   "-",    ".",     "1.0E+400",
                          "1.0x",  "0x10", "1,5",  "1-",    "99999999999999999999E+300"}) {
    EXPECT_TRUE(std::isnan(real(bad))) << bad;
  }
}

TEST(NumberText, GivesTheNearestDoubleAsTheStandardLibraryDoes) {
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-60, 60);
  for (int i = 0; i < 20000; ++i) {
    char text[64];
    const int digits = 3 + i % 15;
    std::snprintf(text, sizeof text, "%.*fE%+03d", digits, mantissa(random), exponent(random));
    ASSERT_EQ(real(text), std::strtod(text, nullptr)) << text;
  }
}

TEST(NumberText, TakesNumbersWithoutBlanksBetweenThem) {
  EXPECT_EQ(run("-1.59159E+01-3.11496E+00-6.81063E+00", 3),
            (std::vector<double>{-15.9159, -3.11496, -6.81063}));
  EXPECT_EQ(run("-1.59159E-101 3.11496E+00", 2), (std::vector<double>{-1.59159e-101, 3.11496}));
  EXPECT_EQ(run("-1.59159E-1013.11496E-1002.00000E+00", 3),
            (std::vector<double>{-1.59159e-101, 3.11496e-100, 2.0}));
  EXPECT_EQ(run("-1.59159E-013.11496E-100", 2), (std::vector<double>{-0.159159, 3.11496e-100}));
  EXPECT_EQ(run("1.5", 1), std::vector<double>());
  EXPECT_EQ(run("NaN", 1), std::vector<double>());
}
