// Which invariants a body knows before it is moved. Those are moved with it; one that only came into being on
// the way would describe the old place and is dropped, to be found anew when it is asked for.
#ifndef FMDTOOLKIT_DBMODAL_DBMOD_PRESENT_INVARIANTS_H
#define FMDTOOLKIT_DBMODAL_DBMOD_PRESENT_INVARIANTS_H

#include <bitset>
#include <initializer_list>

#include "body/body.h"

namespace fmd {

class PresentInvariants {
 public:
  // Notes those whose data a setter or a dataset has given, or whose cache is filled.
  explicit PresentInvariants(const FmdBody& body);

  // Invariant 2 to 5 or 7 to 9. One with an entry per mode is never present on a body without modes.
  bool has(int number) const { return present_[static_cast<std::size_t>(number)]; }

  // Has the getters fill the caches of those that are present among the numbers, at the body's number of
  // modes, and drops all others. False where one cannot be had.
  bool settle(FmdBody* body, std::initializer_list<int> numbers) const;

 private:
  std::bitset<10> present_;
};

}  // namespace fmd

#endif
