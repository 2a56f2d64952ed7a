#include "fmdtool/qualifiers.h"

#include <gtest/gtest.h>

using fmdtool::as_text;
using fmdtool::parse_new_qualifiers;
using fmdtool::parse_qualifiers;
using fmdtool::Qualifiers;

namespace {

Qualifiers parsed(const std::string& text) {
  Qualifiers qualifiers;
  EXPECT_EQ(parse_qualifiers(text, qualifiers), "") << text;
  return qualifiers;
}

std::string error_of(const std::string& text) {
  Qualifiers qualifiers;
  return parse_qualifiers(text, qualifiers);
}

}  // namespace

TEST(Qualifiers, AreNamedInAnyCaseAndOrder) {
  const Qualifiers qualifiers = parsed("StepCur=6, projno = -2 ,SELABEL='left arm'");
  EXPECT_EQ(as_text(qualifiers), "SELABEL='left arm',PROJNO=-2,STEPCUR=6");
}

TEST(Qualifiers, MayBeALabelAlone) {
  EXPECT_EQ(parsed("left arm").label, "left arm");
  EXPECT_EQ(parsed("'a=b'").label, "a=b");
  EXPECT_EQ(parsed("SELABEL=arm").label, "arm");
  EXPECT_EQ(parsed("''").label, "");
}

TEST(Qualifiers, KeepCommasInsideQuotesAndLoseTrailingBlanks) {
  EXPECT_EQ(parsed("SELABEL='a, b  ',PROJNO=1").label, "a, b");
}

TEST(Qualifiers, StarsNameNothing) {
  EXPECT_EQ(as_text(parsed("*")), "");
  EXPECT_EQ(as_text(parsed("SELABEL=*,PROJNO=*")), "");
}

TEST(Qualifiers, AreRefusedWithAReason) {
  EXPECT_EQ(error_of("COLOUR=1"),
            "expected a qualifier, one of SELABEL PROJNO VERSION PEID DESITER STEPCUR, found \"COLOUR\"");
  EXPECT_EQ(error_of("HIGHQUAL=1").rfind("expected a qualifier", 0), 0U);
  EXPECT_EQ(error_of("PEID="), "expected an integer for PEID, found \"\"");
  EXPECT_EQ(error_of("PEID=1.5"), "expected an integer for PEID, found \"1.5\"");
  EXPECT_EQ(error_of("PEID=2147483648"), "expected an integer for PEID, found \"2147483648\"");
  EXPECT_EQ(error_of("PEID=1,"), "expected NAME=VALUE, found \"\"");
  EXPECT_EQ(error_of("two\nlines"), "expected a label without single quotes and control characters");
  EXPECT_EQ(error_of("SELABEL='it's'"), "expected a label without single quotes and control characters");
}

TEST(Qualifiers, FindThoseThatAgreeInWhatIsNamed) {
  const Qualifiers stored = Qualifiers::defaults().changed_by("SELABEL='arm',PROJNO=2");
  EXPECT_EQ(as_text(stored), "SELABEL='arm',PROJNO=2,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
  for (const char* text : {"arm", "PROJNO=2", "PROJNO=+2,VERSION=1", "*"}) {
    EXPECT_TRUE(parsed(text).found_in(stored)) << text;
  }
  for (const char* text : {"Arm", "arm2", "''", "PROJNO=1", "SELABEL='arm',PEID=1"}) {
    EXPECT_FALSE(parsed(text).found_in(stored)) << text;
  }
}

// SELABEL='',PROJNO=0,VERSION=0,PEID=0,DESITER=0,STEPCUR=0 takes 56 characters of the 255.
TEST(Qualifiers, OfANewBodyFitARow) {
  Qualifiers qualifiers;
  EXPECT_EQ(as_text(Qualifiers::defaults()).size(), 56U);
  EXPECT_EQ(parse_new_qualifiers(std::string(255 - 56, 'x'), qualifiers), "");
  EXPECT_EQ(parse_new_qualifiers(std::string(255 - 55, 'x'), qualifiers),
            "expected a shorter label: with the other qualifiers it has to fit 255 characters");
}
