#include "dbmodal/dbwrite/mode_source.h"

#include "dbmodal/dbdata/mode_vector.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

bool ModeSource::open(FmdBody* body, int type) {
  body_ = body;
  type_ = type;
  node_count_ = body->ModeNodeCount[type];
  if (body->KeepModesInMemory == 0) {
    // A vector of no nodes counts as one that cannot be had, here as everywhere.
    if (node_count_ < 1) report_allocation_failure("dbwrite");
    return node_count_ > 0;
  }
  half_ = allocate<double>(3LL * node_count_, "dbwrite");
  if (half_ == nullptr) return false;
  whole_ = allocate<double>(6LL * node_count_, "dbwrite");
  return whole_ != nullptr;
}

// A getter may answer with what a failed read left; a dataset must not hold that.
bool ModeSource::is_broken(int mode) const {
  if (body_->ModeBufferBroken[type_] == 0) return false;
  const int index = is_pseudo_mode(mode, type_) ? body_->ModeCount : FMD_ModeIndex(body_, mode);
  return body_->LoadedModeIndex[type_] == index;
}

const double* ModeSource::fetch(int mode) {
  if (whole_ == nullptr) {
    if (load_mode_vector(body_, mode, type_) == 0 || is_broken(mode)) return nullptr;
    return body_->ModeBuffer[type_];
  }
  for (int part = 0; part < 2; ++part) {
    if (FMD_Mode(body_, mode, type_, half_.get(), part) == 0) return nullptr;
    const double* from = half_.get();
    double* to = whole_.get() + 3L * part;
    for (int node = 0; node < node_count_; ++node, from += 3, to += kValuesPerNode) {
      for (int k = 0; k < 3; ++k) to[k] = from[k];
    }
  }
  return is_broken(mode) ? nullptr : whole_.get();
}

}  // namespace fmd
