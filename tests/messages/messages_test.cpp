#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/message_log.h"

namespace {

using fmdtest::MessageLog;

TEST(Messages, GoToTheHandlerOfTheirLevel) {
  const MessageLog log;
  FMD_Error("mode %d", 3);
  FMD_Warning("%s", "careful");
  FMD_Info("%5.2f", 1.5);
  EXPECT_EQ(log.errors, std::vector<std::string>{"mode 3"});
  EXPECT_EQ(log.warnings, std::vector<std::string>{"careful"});
  EXPECT_EQ(log.infos, std::vector<std::string>{" 1.50"});
}

TEST(Messages, PassThroughTheFormatterWithoutArguments) {
  const MessageLog log;
  FMD_Info("100%%");
  EXPECT_EQ(log.infos.at(0), "100%");
}

TEST(Messages, LongTextsArriveWhole) {
  const MessageLog log;
  const std::string text(10000, 'x');
  FMD_Error("<%s>", text.c_str());
  EXPECT_EQ(log.errors.at(0), "<" + text + ">");
}

TEST(Messages, InstallingAnswersOne) {
  const FmdMessageHandlers none = {nullptr, nullptr, nullptr};
  EXPECT_EQ(SetMessageHandlers(&none), 1);
}

TEST(MessagesDeathTest, AMessageWithoutHandlerIsAFaultOfTheHost) {
  const FmdMessageHandlers none = {nullptr, nullptr, nullptr};
  EXPECT_DEATH(
      {
        SetMessageHandlers(&none);
        FMD_Error("nobody listens");
      },
      "");
}

TEST(Messages, EachModuleNamesItself) {
  const std::set<std::string> texts = {fmdcreate_VersionId(), fmddata_VersionId(),   fmdset_VersionId(),
                                       fmdtools_VersionId(),  fmdcoarse_VersionId(), dbinvar_VersionId(),
                                       dbread_VersionId(),    dbunits_VersionId(),   dbwrite_VersionId()};
  EXPECT_EQ(texts.size(), 9U);
  EXPECT_EQ(std::string(dbwrite_VersionId()).substr(0, 8), "dbwrite ");
}

}  // namespace
