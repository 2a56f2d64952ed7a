// The inertia invariants. Modes are named by number.
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

using Values = CArray<double>;

// Three components per mode out of three rows over the modes.
void print_columns(const FmdBody& body, std::FILE* out, const double* rows) {
  const int modes = body.ModeCount;
  for (int mode = 0; mode < modes; ++mode) {
    std::fprintf(out, "%5d, %18.10le%18.10le%18.10le \n", body.ModeNumbers[mode], rows[mode],
                 rows[modes + mode], rows[2L * modes + mode]);
  }
}

void print_tensor(std::FILE* out, const double* tensor) {
  for (int row = 0; row < 3; ++row, tensor += 3) {
    std::fprintf(out, "   %18.10le%18.10le%18.10le \n", tensor[0], tensor[1], tensor[2]);
  }
}

// These fetch first, so that the line for a missing invariant stands without a banner.
void list_columns(FmdBody* body, std::FILE* out, int block, const char* title, double* fetched,
                  const char* absent) {
  const Values rows(fetched);
  if (rows == nullptr) {
    std::fputs(absent, out);
    return;
  }
  print_banner(out, block, title);
  print_columns(*body, out, rows.get());
  std::fprintf(out, "\n");
}

}  // namespace

void list_invariant_1(FmdBody* body, std::FILE* out) {
  std::fprintf(out, "\t%f \n\n", FMD_Invar1(body));
}

void list_invariant_2(FmdBody* body, std::FILE* out) {
  const Values moment(FMD_Invar2(body));
  if (moment == nullptr) {
    std::fprintf(out, "\tNo Invariant 2 information\n\n");
    return;
  }
  print_banner(out, 20, "Invariant 2:");
  std::fprintf(out, "\t%f\t%f\t%f \n\n", moment[0], moment[1], moment[2]);
}

void list_invariant_3(FmdBody* body, std::FILE* out) {
  list_columns(body, out, 21, "Invariant 3:", FMD_Invar3(body), "\tNo Invariant 3 information\n\n");
}

void list_invariant_4(FmdBody* body, std::FILE* out) {
  list_columns(body, out, 22, "Invariant 4:", FMD_Invar4(body), "\tNo Invariant 4 information\n\n");
}

void list_invariant_5(FmdBody* body, std::FILE* out) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const Values rows(FMD_Invar5(body, mode));
    if (rows == nullptr) {
      std::fprintf(out, "\tNo Invariant 5 information for mode %d.\n\n", body->ModeNumbers[mode]);
      continue;
    }
    std::fprintf(out, "\nMode: %d \n", body->ModeNumbers[mode]);
    print_columns(*body, out, rows.get());
  }
  std::fprintf(out, "\n");
}

void list_invariant_7(FmdBody* body, std::FILE* out) {
  const Values tensor(FMD_Invar7(body));
  if (tensor == nullptr) {
    std::fprintf(out, "\tNo Invariant 7 information.\n\n");
    return;
  }
  print_tensor(out, tensor.get());
  std::fprintf(out, "\n");
}

void list_invariant_8(FmdBody* body, std::FILE* out) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const Values tensor(FMD_Invar8(body, mode));
    if (tensor == nullptr) {
      std::fprintf(out, "\tNo Invariant 8 information for mode %d.\n\n", body->ModeNumbers[mode]);
      continue;
    }
    std::fprintf(out, "\nMode: %d\n", body->ModeNumbers[mode]);
    print_tensor(out, tensor.get());
  }
  std::fprintf(out, "\n");
}

void list_invariant_9(FmdBody* body, std::FILE* out) {
  for (int i = 0; i < body->ModeCount; ++i) {
    for (int j = 0; j < body->ModeCount; ++j) {
      const int first = body->ModeNumbers[i];
      const int second = body->ModeNumbers[j];
      const Values tensor(FMD_Invar9(body, i, j));
      if (tensor == nullptr) {
        std::fprintf(out, "\tNo Invariant 9 information for mode pair (%d, %d).\n\n", first, second);
        continue;
      }
      std::fprintf(out, "\nModes: %d %d\n", first, second);
      print_tensor(out, tensor.get());
    }
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
