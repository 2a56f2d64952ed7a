// The trace: the exact lines of each operation, and nothing without the variable.
#include <gtest/gtest.h>

#include "kdcdb/kdcdb.h"
#include "support/memory_disk.h"
#include "support/session.h"

namespace {

using fmdtest::MemoryDisk;

const std::string kBase = MemoryDisk::path("b");

// Every operation once, on a new database, and what it printed.
std::string run_all() {
  testing::internal::CaptureStderr();
  MemoryDisk disk;
  char text[4096];
  std::size_t length = 0;
  int key = 0;
  int matches = 0;
  kdcdb::DbaseBst("message file", "./");
  kdcdb::GetDbName("F06", text, sizeof text, &length);
  kdcdb::DbaseNew(kBase.c_str(), "init dbfmd");
  kdcdb::DbaseNdl("delivered");
  kdcdb::FMSCommand("undblocate logical=*");
  kdcdb::FMSCommand("100% nonsense");
  kdcdb::GetDbdict("dbdict", text, sizeof text);
  kdcdb::CreateDatablk("dbcreate datablk=(fmdtmp) quals(highqual=1)", &key);
  kdcdb::Gopen(key, 1);
  const std::int32_t word = 5;
  std::int32_t read = 0;
  std::int64_t actual = 0;
  std::int64_t position = 0;
  bool end_of_record = false;
  bool end_of_file = false;
  kdcdb::Write(key, &word, 1, true);
  kdcdb::Filps3(key, 0);
  kdcdb::Read(key, &read, 1, &actual);
  kdcdb::Savps3(key, &position, &end_of_record, &end_of_file);
  kdcdb::Fwdrec(key);
  kdcdb::Fwdrec(key);
  std::int32_t trailer[7] = {key};
  kdcdb::Wrttrl(trailer);
  kdcdb::Rdtrl(trailer);
  kdcdb::Close(key, 1);
  const int found_key_before = key;
  kdcdb::AllocDatablk("datablk=(fmdtmp) where(highqual=1)", &key, &matches);
  kdcdb::DbaseCls();
  kdcdb::DbaseBst("m", "./");
  kdcdb::DbaseOld(kBase.c_str(), "restart");
  kdcdb::DbaseCls();
  kdcdb::DeleteDatabase(kBase.c_str());
  std::string printed = testing::internal::GetCapturedStderr();
  // Keys count through the whole process.
  const auto put = [&](const std::string& number, const std::string& name) {
    for (std::size_t at = 0; (at = printed.find("key = " + number, at)) != std::string::npos;
         at += name.size())
      printed.replace(at + 6, number.size(), name);
  };
  put(std::to_string(key), "NEXT");
  put(std::to_string(found_key_before), "KEY");
  return printed;
}

TEST(Trace, IsOffByDefault) {
  const fmdtest::EnvironmentVariable trace("KXI_DATABASE_TRACE", nullptr);
  EXPECT_EQ(run_all(), "");
}

TEST(Trace, PrintsEachOperationWithWhatItIsGivenAndGives) {
  const fmdtest::EnvironmentVariable trace("KXI_DATABASE_TRACE", "1");
  EXPECT_EQ(run_all(),
            "KD_DbaseBst: inp = message file\n"
            "KD_DbaseBst: err = 0\n"
            "KD_GetDbName: inp = F06\n"
            "KD_GetDbName: err = 0\n"
            "KD_DbaseNew: inp = /disk/b\n"
            "KD_DbaseNew: err = 0\n"
            "KD_DbaseNdl: inp = delivered\n"
            "KD_DbaseNdl: err = 0\n"
            "KD_FMSCommand: inp = undblocate logical=*\n"
            "KD_FMSCommand: err = 0\n"
            "KD_FMSCommand: inp = 100% nonsense\n"
            "KD_FMSCommand: err = 3\n"
            "KD_GetDbdict: inp = dbdict\n"
            "KD_GetDbdict: err = -3\n"
            "KD_CreateDatablk: inp = dbcreate datablk=(fmdtmp) quals(highqual=1)\n"
            "KD_CreateDatablk: err = 0\n"
            "Kdio_Gopen: key = KEY\n"
            "Kdio_Gopen: opt = 1\n"
            "Kdio_Write: key = KEY\n"
            "Kdio_Write: eof = 1\n"
            "Kdio_Filps3: key = KEY\n"
            "Kdio_Filps3: done\n"
            "Kdio_Read: key = KEY\n"
            "Kdio_Read: err = 0\n"
            "Kdio_Savps3: key = KEY\n"
            "Kdio_Savps3: eor = 1, eof = 0\n"
            "Kdio_Fwdrec: key = KEY\n"
            "Kdio_Fwdrec: err = 0\n"
            "Kdio_Fwdrec: key = KEY\n"
            "Kdio_Fwdrec: err = 8\n"
            "Kdio_Wrttrl: key = KEY\n"
            "Kdio_Wrttrl: done\n"
            "Kdio_Rdtrl: key = KEY\n"
            "Kdio_Rdtrl: done\n"
            "Kdio_Close: key = KEY\n"
            "Kdio_Close: done\n"
            "KD_AllocDatablk: inp = datablk=(fmdtmp) where(highqual=1)\n"
            "KD_AllocDatablk: key = NEXT, err = 0\n"
            "KD_DbaseCls:\n"
            "KD_DbaseCls: err = 0\n"
            "KD_DbaseBst: inp = m\n"
            "KD_DbaseBst: err = 0\n"
            "KD_DbaseOld: inp = /disk/b, restart\n"
            "KD_DbaseOld: err = 0\n"
            "KD_DbaseCls:\n"
            "KD_DbaseCls: err = 0\n");
}

// The variable counts when a session begins, so that it ends with the test.
TEST(Trace, EndsWithTheNextSessionThatDoesNotAskForIt) {
  {
    const fmdtest::EnvironmentVariable trace("KXI_DATABASE_TRACE", "1");
    EXPECT_NE(run_all(), "");
  }
  const fmdtest::EnvironmentVariable trace("KXI_DATABASE_TRACE", nullptr);
  EXPECT_EQ(run_all(), "");
}

}  // namespace
