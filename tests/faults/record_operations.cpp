#include <cstdio>
#include <cstring>

#include "faults/operations.h"

namespace fmdtest {

namespace {

bool seeks_in_a_file(bool (*check)(std::FILE*)) {
  std::FILE* file = std::tmpfile();
  const bool done = file != nullptr && check(file);
  if (file != nullptr) std::fclose(file);
  return done;
}

// Reads go back to the start, so that a repeated call finds the same.
const FmdStream& rewound(Scene& s) {
  DB_FRESTORE(&s.start, s.stream);
  return s.stream;
}

}  // namespace

const std::vector<Operation> record_operations = {
    {"DB_ReadINTs", readable_stream, [](Scene& s) { return DB_ReadINTs(rewound(s), s.ints, 100) == 1; },
     Failure::kSilent},
    {"DB_ReadDOUBLEs", readable_stream,
     [](Scene& s) { return DB_ReadDOUBLEs(rewound(s), s.values, 50) == 1; }, Failure::kSilent},
    {"DB_ReadMODE", readable_stream, [](Scene& s) { return DB_ReadMODE(rewound(s), s.values, 50) == 1; },
     Failure::kSilent},
    {"DB_ReadCHARs", readable_stream, [](Scene& s) { return DB_ReadCHARs(rewound(s), s.text[0], 50) == 1; },
     Failure::kSilent},
    {"DB_WriteINTs", written_stream, [](Scene& s) { return DB_WriteINTs(s.stream, s.ints, 100) == 1; },
     Failure::kSilent},
    {"DB_WriteDOUBLEs", written_stream, [](Scene& s) { return DB_WriteDOUBLEs(s.stream, s.values, 50) == 1; },
     Failure::kSilent},
    {"DB_WriteCHARs", written_stream, [](Scene& s) { return DB_WriteCHARs(s.stream, "some text", 9) == 1; },
     Failure::kSilent},
    {"DB_WriteEOR", written_stream, [](Scene& s) { return DB_WriteEOR(s.stream) == 1; }, Failure::kSilent},
    {"DB_SkipRecord", readable_stream, [](Scene& s) { return DB_SkipRecord(rewound(s)) == 1; },
     Failure::kSilent},
    {"DB_FSAVE", readable_stream, [](Scene& s) { return DB_FSAVE(&s.start, s.stream) == 1; },
     Failure::kSilent},
    {"DB_FRESTORE", readable_stream, [](Scene& s) { return DB_FRESTORE(&s.start, s.stream) == 1; },
     Failure::kSilent},
    {"DB_REWIND", readable_stream, [](Scene& s) { return DB_REWIND(s.stream) == 1; }, Failure::kSilent},
    {"DB_SeekFWD", readable_stream, [](Scene& s) { return DB_SeekFWD(rewound(s), 20) == 1; },
     Failure::kSilent},
    {"DB_WriteTrailer", readable_stream,
     [](Scene& s) {
       const int trailer[7] = {s.stream.Block, 1, 2, 3, 4, 5, 6};
       return DB_WriteTrailer(trailer) == 1;
     },
     Failure::kSilent},
    {"DB_ReadTrailer", readable_stream,
     [](Scene& s) {
       s.ints[0] = s.stream.Block;
       return DB_ReadTrailer(s.ints) == 1;
     },
     Failure::kSilent},
    {"DB_OpenScratch", empty_body,
     [](Scene& s) {
       const int key = DB_OpenScratch(s.ints);
       return key != 0 && DB_CloseDatablk(key) == 1;
     }},
    {"DB_ReOpenScratch", written_stream, [](Scene& s) { return DB_ReOpenScratch(s.stream.Block) == 1; },
     Failure::kSilent},
    {"DB_CloseDatablk", written_stream,
     [](Scene& s) {
       const int key = s.stream.Block;
       s.stream.Block = 0;
       return DB_CloseDatablk(key) == 1;
     },
     Failure::kSilent},
    {"DB_StartBase", no_body, [](Scene&) { return DB_StartBase() == 1; }, Failure::kSilent},
    {"DB_TermBase", empty_body,
     [](Scene& s) {
       FMD_UnLink(s.body);
       s.body = nullptr;
       DB_TermBase();
       return true;
     }},
    {"FMD_goto_block", full_body, [](Scene& s) { return FMD_goto_block(s.body, 7) == 0; }},
    {"float2double", no_body,
     [](Scene& s) {
       s.floats[0] = 2.5F;
       return float2double(s.values, s.floats, 1)[0] == 2.5;
     }},
    {"double2float", no_body,
     [](Scene& s) {
       s.values[0] = 2.5;
       return double2float(s.floats, s.values, 1)[0] == 2.5F;
     }},
    {"FileSeek_Win32", no_body,
     [](Scene&) { return seeks_in_a_file([](std::FILE* file) { return FileSeek_Win32(file, 5, 0) == 0; }); }},
    {"FileTell_Win32", no_body,
     [](Scene&) { return seeks_in_a_file([](std::FILE* file) { return FileTell_Win32(file) == 0; }); }},
};

}  // namespace fmdtest
