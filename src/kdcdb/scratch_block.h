// A scratch datablock: its mark, and its words in an anonymous file.
#ifndef FMDTOOLKIT_KDCDB_SCRATCH_BLOCK_H
#define FMDTOOLKIT_KDCDB_SCRATCH_BLOCK_H

#include "kdcdb/datablock.h"
#include "kdcdb/scratch_file.h"

namespace kdcdb {

class ScratchBlock : public Datablock {
 public:
  explicit ScratchBlock(PageCache& cache) : file(cache) {}

  Status clear() override;
  Status read(std::int64_t position, void* to, std::int64_t count) override;
  Status write(std::int64_t position, const void* from, std::int64_t count) override;
  Status append(const void* from, std::int64_t count) override;
  Status append_zeros(std::int64_t count) override;
  void end_writing() override;

  std::int32_t highqual = 0;
  ScratchFile file;
};

}  // namespace kdcdb

#endif
