// What the version word of a body or a dataset says; for whoever writes, reads or lists one.
#ifndef FMDTOOLKIT_DBMODAL_VERSION_WORD_H
#define FMDTOOLKIT_DBMODAL_VERSION_WORD_H

#include <cstdint>

namespace fmd {

// How a version word says that numbers are stored; both look at the whole word.
bool is_single_precision(std::uint32_t word);
bool is_xdr(std::uint32_t word);

constexpr int format_level(std::uint32_t word) {
  return static_cast<int>(word & 0xFFU);
}

}  // namespace fmd

#endif
