#include "kdcdb/paths.h"

#include <algorithm>
#include <cstring>

#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

Status Path::resolve(const char* directory) {
  char resolved[PATH_MAX];
  if (fmd::file_system().realpath(directory, resolved) == nullptr) return status_of_error(errno);
  std::memcpy(text_, resolved, std::strlen(resolved) + 1);
  return kOk;
}

bool Path::append(const char* name) {
  const std::size_t length = std::strlen(text_);
  const char* const separator = length == 1 ? "" : "/";
  const int added = std::snprintf(text_ + length, sizeof text_ - length, "%s%s", separator, name);
  return length + static_cast<std::size_t>(added) < PATH_MAX - kLongestSuffix;
}

Status resolve_base(const char* base, Path& absolute) {
  const char* const slash = std::strrchr(base, '/');
  const char* const name = slash == nullptr ? base : slash + 1;
  if (*name == '\0' || std::strlen(base) >= PATH_MAX) return kBadArgument;
  char directory[PATH_MAX] = ".";
  if (slash != nullptr) {
    const auto length = std::max<std::size_t>(static_cast<std::size_t>(slash - base), 1);
    std::memcpy(directory, base, length);
    directory[length] = '\0';
  }
  const Status status = absolute.resolve(directory);
  if (status != kOk) return status;
  return absolute.append(name) ? kOk : kBadArgument;
}

std::string base_of_master(const std::string& path) {
  const std::size_t suffix = std::strlen(kMasterSuffix);
  if (path.size() < suffix || path.compare(path.size() - suffix, suffix, kMasterSuffix) != 0) return path;
  return path.substr(0, path.size() - suffix);
}

}  // namespace kdcdb
