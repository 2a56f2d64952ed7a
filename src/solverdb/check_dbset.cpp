// The reason why a file cannot be used as a database, in words.
#include "fmdtoolkit/fmdtoolkit.h"
#include "solverdb/dbset_header.h"

namespace {

void report_foreign_format(const fmd::DBsetHeaderInfo& info) {
  FMD_Error("%s\n%s\nCurrent Platform: %s/%s/%s \nKD DB file      : %s/%s/%s.  ",
            "The specified KD DB file is valid but its numeric format ",
            "is not compatible with this platform.", fmd::word_size_name(info.platform),
            fmd::byte_order_name(info.platform), fmd::float_format_name(info.platform),
            fmd::word_size_name(info.file), fmd::byte_order_name(info.file),
            fmd::float_format_name(info.file));
}

void report_bad_header(const char* reason) {
  FMD_Error("%s\n%s\n%s", "The specified KD DB file exists.",
            "However, the timestamp header could not be validated.", reason);
}

void report(fmd::DBsetStatus status, const char* path, const fmd::DBsetHeaderInfo& info) {
  switch (status) {
    case fmd::kDBsetUsable:
      return;
    case fmd::kDBsetForeignFormat:
      return report_foreign_format(info);
    case fmd::kDBsetNotFound:
      return FMD_Error("The KD DB file %s could not be found.", path);
    case fmd::kDBsetNoPermission:
      return FMD_Warning("KD DB file %s could be read-only.", path);
    case fmd::kDBsetNotRegular:
      return FMD_Error("Specified KD DB file %s not a normal/regular file.", path);
    case fmd::kDBsetNotOpened:
      return FMD_Error("Unable to open the KD DB file %s.", path);
    case fmd::kDBsetTooShort:
      return FMD_Error("KD DB file %s is too short.", path);
    case fmd::kDBsetReadError:
      return FMD_Error("Read failed for the KD DB file %s.", path);
    case fmd::kDBsetUnknownError:
      return FMD_Error("An unknown error was encountered while opening KD DB file %s.", path);
    case fmd::kDBsetBadOffset:
      return report_bad_header("Reason: Timestamp signature offset is invalid.");
    case fmd::kDBsetBadSignature:
      return report_bad_header("Reason: Timestamp signature is invalid.");
    case fmd::kDBsetBadFormat:
      return report_bad_header("Reason: Floating point, endian word length invalid for this platform.");
    case fmd::kDBsetBadBuffsize:
      return report_bad_header("Reason: DBset record length (BUFFSIZE) is out of range. ");
  }
  FMD_Error("Unkown Error code?");
}

}  // namespace

int DB_CheckDBset(char* path) {
  fmd::DBsetHeaderInfo info;
  const fmd::DBsetStatus status = fmd::ReadDBsetHeader(path, info);
  report(status, path, info);
  return status;
}
