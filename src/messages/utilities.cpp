// Time and host identification, for callers of the library.
#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "fmdtoolkit/fmdtoolkit.h"

double FMD_cputime(void) {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void FMD_localtime_ISO8601(int mode, char* text) {
  const bool verbose = mode < 0;
  const int form = verbose ? -mode : mode;
  const std::time_t now = std::time(nullptr);

  std::tm utc{};
  gmtime_r(&now, &utc);
  std::tm utc_as_local = utc;
  utc_as_local.tm_isdst = -1;
  const std::time_t utc_value = std::mktime(&utc_as_local);
  if (verbose) {
    std::printf("%%utl_23-v-val, GMT = %4d-%02d-%02d %02d:%02d, tz_value(%d)\n", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_isdst);
  }

  std::tm local{};
  localtime_r(&now, &local);
  std::tm local_copy = local;
  const auto offset = static_cast<long>(std::difftime(std::mktime(&local_copy), utc_value));
  const int hours = static_cast<int>(offset / 3600);
  const int minutes = std::abs(static_cast<int>(offset % 3600 / 60));
  if (verbose) {
    std::printf("%%utl_23-v-val, Loc = %4d-%02d-%02d %02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                local.tm_mday, local.tm_hour, local.tm_min);
    std::printf(" %+03d%02d\n", hours, minutes);
  }

  char date[32];
  char time_of_day[32];
  std::snprintf(date, sizeof date, "%4d-%02d-%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  std::snprintf(time_of_day, sizeof time_of_day, "%02d:%02d %+03d%02d", local.tm_hour, local.tm_min, hours,
                minutes);
  switch (form) {
    case 1:
      std::sprintf(text, "%s", date);
      break;
    case 2:
      std::sprintf(text, "%s", time_of_day);
      break;
    default:
      std::sprintf(text, "%s %s", date, time_of_day);
  }
}

void FMD_uname(int mode, char* text) {
  // The name keeps its historic form; hosts compare it. The platform number is our own.
  const char* const name = "Windows_";
  const int platform = 3;
  text[0] = '\0';
  int major = 0;
  int minor = 0;
  utsname system_name{};
  if (uname(&system_name) == 0) {
    char* end = nullptr;
    major = static_cast<int>(std::strtol(system_name.release, &end, 10));
    if (*end == '.') minor = static_cast<int>(std::strtol(end + 1, nullptr, 10));
  }
  switch (mode) {
    case 2:
      std::sprintf(text, "%s %d_%d", name, major, minor);
      break;
    case 3:
      std::sprintf(text, "%s %d_%d %d", name, major, minor, platform);
      break;
    case 12:
      std::sprintf(text, "%s_%d_%d", name, major, minor);
      break;
    case 13:
      std::sprintf(text, "%s_%d_%d_%d", name, major, minor, platform);
      break;
    default:
      std::sprintf(text, "%s", name);
  }
}
