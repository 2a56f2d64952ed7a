#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace {

class Header : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(1, 1);
    ASSERT_NE(body, nullptr);
  }

  void set(std::vector<std::string>& texts) const {
    EXPECT_EQ(FMD_SetHeader(body, texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(),
                            texts[4].data(), texts[5].data()),
              1);
  }

  FmdBody* body = nullptr;
};

TEST_F(Header, TextsComeBackAndAreTold) {
  std::vector<std::string> texts = {"Arm", "arm.inp", "deck", "one", "two", "three"};
  set(texts);
  EXPECT_EQ(log.infos, (std::vector<std::string>{"Title: Arm", "Name : arm.inp", "Type : deck",
                                                 "Comment 1: one", "Comment 2: two", "Comment 3: three"}));
  char title[128];
  char name[128];
  char type[16];
  char comments[3][80];
  FMD_Header(body, title, nullptr, name, type, comments[0], comments[1], comments[2]);
  EXPECT_STREQ(title, "Arm");
  EXPECT_STREQ(name, "arm.inp");
  EXPECT_STREQ(type, "deck");
  EXPECT_STREQ(comments[2], "three");
}

TEST_F(Header, CreationTimeIsLocalTimeWithATrailingBlank) {
  std::vector<std::string> texts(6);
  const std::time_t before = std::time(nullptr);
  set(texts);
  char created[32];
  FMD_Header(body, nullptr, created, nullptr, nullptr, nullptr, nullptr, nullptr);
  std::tm parsed{};
  const char* const rest = strptime(created, "%a %b %d %H:%M:%S %Y", &parsed);
  ASSERT_NE(rest, nullptr) << created;
  EXPECT_STREQ(rest, " ");
  parsed.tm_isdst = -1;
  EXPECT_LE(std::difftime(std::mktime(&parsed), before), 2.0);
  EXPECT_GE(std::difftime(std::mktime(&parsed), before), 0.0);
}

TEST_F(Header, ANewlineAtTheEndOfTheCreationTimeIsRemoved) {
  std::snprintf(body->CreationTime, sizeof body->CreationTime, "long ago\n");
  char created[32];
  FMD_Header(body, nullptr, created, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_STREQ(created, "long ago");
}

TEST_F(Header, TextsAtTheLimitFitAndLongerOnesAreCut) {
  std::vector<std::string> fits = {std::string(127, 'a'), std::string(127, 'b'), std::string(15, 'c'),
                                   std::string(79, 'd'),  std::string(79, 'e'),  std::string(79, 'f')};
  set(fits);
  EXPECT_TRUE(log.warnings.empty());
  std::vector<std::string> longer = fits;
  for (std::string& text : longer) text += "xy";
  set(longer);
  EXPECT_EQ(log.warnings,
            (std::vector<std::string>{
                "Title too big: max size 127, specified size 129.\nTruncating title.",
                "Input file name too big: max size 127, specified size 129.\nTruncating input file name.",
                "Input file type spec too big: max size 15, specified size 17.\nTruncating input file type.",
                "Comment 1 too big: max size 79, specified size 81.\nTruncating Comment 1.",
                "Comment 2 too big: max size 79, specified size 81.\nTruncating Comment 2.",
                "Comment 3 too big: max size 79, specified size 81.\nTruncating Comment 3."}));
  EXPECT_EQ(body->Title, std::string(127, 'a'));
  EXPECT_EQ(body->InputFileType, std::string(15, 'c'));
  EXPECT_EQ(body->Comment3, std::string(79, 'f'));
}

TEST_F(Header, NewlinesBecomeBlanksInTheCallersTextToo) {
  std::vector<std::string> texts = {"two\nlines\n", "", "", "", "", ""};
  set(texts);
  EXPECT_EQ(texts[0], "two lines ");
  EXPECT_STREQ(body->Title, "two lines ");
}

TEST_F(Header, NullBodiesAreReported) {
  char text[] = "x";
  char title[128] = "kept";
  EXPECT_EQ(FMD_SetHeader(nullptr, text, text, text, text, text, text), 0);
  FMD_Header(nullptr, title, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_STREQ(title, "kept");
  EXPECT_EQ(FMD_Version(nullptr), 0);
  FMD_SetVersion(nullptr, 60);
  EXPECT_EQ(log.errors, (std::vector<std::string>(4, "The database has not been initialized.")));
}

TEST_F(Header, PlainVersionsClearTheFlagsAndOthersKeepThem) {
  body->Version = 60 | 0x400 | 0x200;
  FMD_SetVersion(body, 45);
  EXPECT_EQ(body->Version, 45U | 0x600U);
  EXPECT_EQ(FMD_Version(body), 45);
  FMD_SetVersion(body, 41);
  EXPECT_EQ(body->Version, 41U);
  for (const int plain : {10, 20, 30, 31, 40, 50, 51}) {
    body->Version = 60 | 0x400;
    FMD_SetVersion(body, plain);
    EXPECT_EQ(body->Version, static_cast<unsigned>(plain));
  }
  body->Version = 0x400;
  FMD_SetVersion(body, 0x13C);
  EXPECT_EQ(body->Version, 0x43CU);
}

}  // namespace
