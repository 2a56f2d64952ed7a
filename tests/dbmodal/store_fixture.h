// Stores bodies under options, with the messages of the call alone in the log.
#ifndef FMDTOOLKIT_TESTS_STORE_FIXTURE_H
#define FMDTOOLKIT_TESTS_STORE_FIXTURE_H

#include <cstdlib>
#include <string>
#include <vector>

#include "body/body.h"
#include "support/session.h"
#include "support/unsynced_file_system.h"

namespace fmdtest {

// What a set of options makes of the version word in a database, written down by hand.
struct StoredWord {
  const char* options;
  unsigned word;
};

inline const std::vector<StoredWord> kStoredWords = {
    {"", 0x103C},        {"single", 0x123C},  {"full_str", 0x1028}, {"full_str single", 0x1032},
    {"82_comp", 0x1014}, {"81_comp", 0x100A},
};

class StoreTest : public SessionTest {
 protected:
  int store(FmdBody* body, const std::string& options = "", std::string qualifiers = "",
            std::string path = "bodies.MASTER") {
    setenv("KXI_FMDWRITE_OPTIONS", options.c_str(), 1);
    log.clear();
    return FMD_write_DB(body, path.data(), qualifiers.data());
  }

  int write(FmdBody* body, const std::string& options, std::string path = "out.fmd") {
    setenv("KXI_FMDWRITE_OPTIONS", options.c_str(), 1);
    log.clear();
    return FMD_write_FMD(body, path.data());
  }

  FmdBody* open(int index, std::string path = "bodies.MASTER") {
    log.clear();
    return FMD_CreateFromFMD(path.data(), index);
  }

  UnsyncedFileSystem files;
};

}  // namespace fmdtest

#endif
