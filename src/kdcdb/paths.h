// The files of a database: one base name and the suffixes of its sets.
#ifndef FMDTOOLKIT_KDCDB_PATHS_H
#define FMDTOOLKIT_KDCDB_PATHS_H

#include <climits>
#include <cstdio>
#include <string>

#include "kdcdb/kdcdb.h"

namespace kdcdb {

constexpr const char* kMasterSuffix = ".MASTER";
constexpr const char* kDefaultSet = ".DBALL";
constexpr const char* kTemporarySet = ".DBFMD";

// A path on the stack, so that cleaning up needs no memory.
class Path {
 public:
  Path() { text_[0] = '\0'; }
  Path(const char* base, const char* suffix) { std::snprintf(text_, sizeof text_, "%s%s", base, suffix); }
  const char* text() const { return text_; }

  // The real path of a directory.
  Status resolve(const char* directory);

  // False for a name that does not fit with the suffix of a set.
  bool append(const char* name);

 private:
  static constexpr std::size_t kLongestSuffix = 16;
  char text_[PATH_MAX + kLongestSuffix];
};

// The absolute form of a base name, or of any file, which need not exist.
Status resolve_base(const char* base, Path& absolute);

// The base name of a master file; the path itself where it has no such suffix.
std::string base_of_master(const std::string& path);

}  // namespace kdcdb

#endif
