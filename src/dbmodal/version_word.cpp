#include "dbmodal/version_word.h"

#include "body/body.h"

namespace fmd {

bool is_single_precision(std::uint32_t word) {
  return word == 50 || word == 51 || (word & kVersionSingle) != 0;
}

bool is_xdr(std::uint32_t word) {
  return word == 31 || word == 41 || word == 51 || (word & kVersionXdr) != 0;
}

}  // namespace fmd
