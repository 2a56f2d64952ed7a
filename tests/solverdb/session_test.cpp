#include "support/session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

namespace fs = std::filesystem;

class DatabaseSessionTest : public fmdtest::SessionTest {
 protected:
  std::set<std::string> extensions() {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(directory.path())) found.insert(entry.path().extension());
    return found;
  }
  std::size_t files() {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()));
  }
};

TEST_F(DatabaseSessionTest, StartMakesTheThreeFilesAndTermDeletesThem) {
  EXPECT_EQ(DB_StartBase(), 1);
  EXPECT_EQ(extensions(), (std::set<std::string>{".MASTER", ".DBALL", ".DBFMD"}));
  EXPECT_EQ(files(), 3U);
  EXPECT_EQ(DB_StartBase(), 1);
  EXPECT_EQ(files(), 3U);
  DB_TermBase();
  EXPECT_EQ(files(), 0U);
}

TEST_F(DatabaseSessionTest, TermWithoutStartDoesNothing) {
  DB_TermBase();
  DB_TermBase();
  EXPECT_EQ(files(), 0U);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(DatabaseSessionTest, LaterSessionStartsAnew) {
  int scratch = 0;
  ASSERT_EQ(DB_StartBase(), 1);
  const int old_block = DB_OpenScratch(&scratch);
  DB_TermBase();
  ASSERT_EQ(DB_StartBase(), 1);
  EXPECT_EQ(files(), 3U);
  FmdStream stream{};
  stream.Block = old_block;
  int value = 1;
  EXPECT_EQ(DB_WriteINTs(stream, &value, 1), 0);  // a key of the old session names nothing
  stream.Block = DB_OpenScratch(&scratch);
  EXPECT_NE(stream.Block, old_block);
  EXPECT_EQ(DB_WriteINTs(stream, &value, 1), 1);
}

TEST_F(DatabaseSessionTest, UnsetDirectoryIsReportedAndNothingStarts) {
  {
    fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
    EXPECT_EQ(DB_StartBase(), 0);
    EXPECT_EQ(log.all, (std::vector<std::string>{"E:Cannot get KXI_KADCDB_DIR."}));
    EXPECT_EQ(files(), 0U);
  }
  EXPECT_EQ(DB_StartBase(), 1);
}

TEST_F(DatabaseSessionTest, DirectoryIsReadOnceASession) {
  ASSERT_EQ(DB_StartBase(), 1);
  const std::string key_file = directory.path().string() + "/kdbcom.asg";
  EXPECT_STREQ(std::getenv("KDBASGFILE"), key_file.c_str());
  {
    fmdtest::EnvironmentVariable other("KXI_KADCDB_DIR", "/elsewhere");
    EXPECT_EQ(DB_StartBase(), 1);
    EXPECT_STREQ(std::getenv("KDBASGFILE"), key_file.c_str());
    DB_TermBase();
    EXPECT_EQ(DB_StartBase(), 1);
    EXPECT_STREQ(std::getenv("KDBASGFILE"), "/elsewhere/kdbcom.asg");
  }
}

TEST_F(DatabaseSessionTest, FilesOfTheSessionAreFoundAgainFromAnotherDirectory) {
  ASSERT_EQ(DB_StartBase(), 1);
  fs::create_directory("below");
  fs::current_path("below");
  DB_TermBase();
  fs::current_path("..");
  fs::remove("below");
  EXPECT_EQ(files(), 0U);
}

TEST_F(DatabaseSessionTest, ClosingBlockZeroIsLegal) {
  EXPECT_EQ(DB_CloseDatablk(0), 1);
  EXPECT_TRUE(log.all.empty());
}

TEST(FilePositions, AreSixtyFourBitsWide) {
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(FileTell_Win32(file), 0);
  EXPECT_EQ(FileSeek_Win32(file, 5LL << 30, 0), 0);
  EXPECT_EQ(FileTell_Win32(file), 5LL << 30);
  EXPECT_EQ(std::fputc('x', file), 'x');
  EXPECT_EQ(FileTell_Win32(file), (5LL << 30) + 1);
  EXPECT_EQ(FileSeek_Win32(file, -11, 1), 0);
  EXPECT_EQ(FileTell_Win32(file), (5LL << 30) - 10);
  EXPECT_EQ(FileSeek_Win32(file, -1, 2), 0);
  EXPECT_EQ(std::fgetc(file), 'x');
  EXPECT_NE(FileSeek_Win32(file, -1, 0), 0);
  std::fclose(file);
}

TEST(FilePositions, OfAPipeAreUnknown) {
  std::FILE* pipe = popen("true", "r");
  ASSERT_NE(pipe, nullptr);
  EXPECT_EQ(FileTell_Win32(pipe), -1);
  EXPECT_EQ(FileSeek_Win32(pipe, 0, 1), 1);
  EXPECT_EQ(FileSeek_Win32(pipe, 0, 2), 1);
  EXPECT_NE(FileSeek_Win32(pipe, 0, 0), 0);
  pclose(pipe);
}

}  // namespace
