// Texts: the commands and selections of the database, write options, coarsening options, sketch files.
#include "kdcdb/commands.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include "dbmodal/dbcoarse/trim_options.h"
#include "dbmodal/dbwrite/options.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "fuzz/full_body.h"
#include "fuzz/fuzzing.h"
#include "kdcdb/kdcdb.h"

namespace {

using fuzz::Bytes;
using fuzz::Random;

constexpr const char* kTexts[] = {
    "init dbfmd;dbsetdel dball",
    "assign dbalc1='seed.MASTER';dblocate logical=dbalc1 datablk=(fmddb) where(projno=* and version=*) "
    "convert(projno=projno;version=version;highqual=-3)",
    "dblocate logical=dbtmp1 datablk=(fmdtmp) where(highqual=1001 and wildcard=true) copy",
    "undblocate logical=*",
    "restart;assign dbalc2='a'b.MASTER'",
    "datablk=(fmdtmp) where(projno=* and version=* and highqual=1002 and wildcard=true)",
    "dbcreate datablk=(fmdtmp) quals(highqual=1001)",
    "dbcreate datablk=(fmddb) quals(selabel='arm';projno=2;version=1;peid=7;desiter=0;stepcur=-1)",
    "dbdict datablk(fmddb) where(highqual=0) select(selabel,projno='projno',version='version',peid)",
    "SELABEL='left, arm',PROJNO=2,VERSION=1,PEID=0,DESITER=0,STEPCUR=0",
    "sketch('lines.txt'),coarsen(0.1,20.0,1,21,22,preserve_str),lowpass(1.5e3),highpass(-1)",
    "0.25,20,1,20,21,0,preserve_str",
    "1 20 21 22 -1 20 23 99999999999 -5"};

constexpr const char* kTokens[] = {"'",           "''",
                                   "(",           ")",
                                   "()",          ";",
                                   ",",           "=",
                                   " ",           "*",
                                   "and",         "\n",
                                   "\t",          "-",
                                   "+",           "e",
                                   ".",           "0",
                                   "-1",          "2147483648",
                                   "-2147483649", "99999999999999999999",
                                   "1e400",       "where(",
                                   "quals(",      "select(",
                                   "convert(",    "datablk=(",
                                   "logical=",    "highqual=",
                                   "copy",        "fmddb",
                                   "fmdtmp",      "\x80\xff",
                                   "\x7f"};

void nothing() {}

Bytes bytes_of(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

Bytes make(Random& random) {
  Bytes text = bytes_of(kTexts[random.below(std::size(kTexts))]);
  for (std::size_t times = random.below(5); times > 0; --times) {
    switch (random.below(4)) {
      case 0:
        fuzz::change_value(random, text, 0, text.size());
        break;
      case 1:
        fuzz::change_length(random, text, bytes_of(kTexts[random.below(std::size(kTexts))]));
        break;
      default:
        const Bytes token = bytes_of(kTokens[random.below(std::size(kTokens))]);
        const std::size_t repeats = random.one_in(50) ? 5000 : 1;
        const auto at = static_cast<std::ptrdiff_t>(random.below(text.size() + 1));
        for (std::size_t i = 0; i < repeats; ++i) text.insert(text.begin() + at, token.begin(), token.end());
    }
  }
  return text;
}

void give_to_store(const char* text) {
  int key = 0;
  int matches = 0;
  char listing[64];
  std::vector<kdcdb::Command> commands;
  kdcdb::parse_commands(text, commands);
  DB_StartBase();
  kdcdb::FMSCommand(text);
  if (kdcdb::AllocDatablk(text, &key, &matches) == kdcdb::kOk && key != 0)
    kdcdb::Gopen(key, kdcdb::kOpenExisting);
  if (kdcdb::CreateDatablk(text, &key) == kdcdb::kOk) kdcdb::ReleaseDatablk(key);
  kdcdb::GetDbdict(text, listing, sizeof listing);
}

void give_to_options(const std::string& text) {
  const fmd::WriteOptions options = fmd::parse_write_options(text.c_str());
  fmd::choose_version(options);
  const fmd::TrimOptions trim = fmd::parse_trim_options(text);
  std::string_view preserved = trim.preserved;
  while (fmd::take_preserved_id(preserved) != 0) {
  }
  fmd::preserves_stress_nodes(preserved);
}

// Of a datablock that is dropped before it is stored.
void give_as_qualifiers(std::string text) {
  if (const int block = DB_CreateFMDblk(text.data()); block != 0) DB_CloseDatablk(block);
}

void give_as_sketch(const std::string& text) {
  char path[] = "sketch.txt";
  std::ofstream(path, std::ios::binary) << text;
  FmdBody* const body = fuzz::make_full_body(true);
  FMD_SketchGrid(body, path);
  std::string options = text;
  FMD_TrimGeometry(body, options.data());
  FMD_UnLink(body);
}

void run(const Bytes& bytes) {
  const std::string text(bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0'));
  give_to_options(text);
  give_to_store(text.c_str());
  give_as_qualifiers(text);
  if (text.size() % 8 == 0) give_as_sketch(text);
  FMD_Terminate();
}

}  // namespace

int main(int argc, char** argv) {
  return fuzz::fuzz_main(argc, argv, {"commands", nothing, make, run});
}
