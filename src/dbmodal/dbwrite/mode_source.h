// Whole mode vectors for the writers: six values a node, as the two halves of FMD_Mode give them.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_MODE_SOURCE_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_MODE_SOURCE_H

#include "body/body.h"
#include "messages/memory.h"

namespace fmd {

// With the cache switched off a vector is used where the store loaded it; with the cache on the halves come
// through it and are put together here.
class ModeSource {
 public:
  // Room for the vectors of one mode info type; false when there is none, which is reported.
  bool open(FmdBody* body, int type);

  // The vector of a mode number, valid until the next call; null on failure. Number 0 of stress or strain is
  // the pre-stress or pre-strain.
  const double* fetch(int mode);

  int node_count() const { return node_count_; }

 private:
  bool is_broken(int mode) const;

  FmdBody* body_ = nullptr;
  int type_ = 0;
  int node_count_ = 0;
  CArray<double> half_;
  CArray<double> whole_;
};

}  // namespace fmd

#endif
