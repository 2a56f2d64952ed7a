#include "dbmodal/block_table.h"
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

void print_banner(std::FILE* out, int block, const char* title) {
  constexpr char kRule[] = "--------------------------------------------------------------------------\n";
  constexpr char kEmpty[] = "|                                                                        |\n";
  std::fprintf(out, "\n\n%s%s|    Block %3d:      %-30s                      |\n%s%s\n\n", kRule, kEmpty,
               block, title, kEmpty, kRule);
}

}  // namespace fmd

void FMD_Contents(FmdBody* body, int block, FILE* out) {
  if (CheckFMD(body) == 0 || out == nullptr || block < 1 || block > fmd::kBlockCount) return;
  // Asked for one node or another, the sorted node table comes into being.
  FMD_NodeIndex(body, 1);
  const fmd::Block& row = fmd::block_table()[static_cast<std::size_t>(block - 1)];
  if (row.title != nullptr) fmd::print_banner(out, block, row.title);
  row.list(body, out);
}
