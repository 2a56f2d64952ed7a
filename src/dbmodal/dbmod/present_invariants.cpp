#include "dbmodal/dbmod/present_invariants.h"

#include <algorithm>

#include "dbmodal/dbinvar/invariant_storage.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

struct MovedInvariant {
  int number;
  SummaryByte byte;
  bool per_mode;
  bool (*is_cached)(const FmdBody&);
  double* (*get)(FmdBody*);  // a copy of the whole or of a part, which fills the cache
  void (*drop)(FmdBody&);
};

constexpr MovedInvariant kMoved[] = {
    {2, kInvariant2, false, [](const FmdBody& b) { return b.Invar2 != nullptr; }, FMD_Invar2,
     [](FmdBody& b) { release(b.Invar2); }},
    {3, kInvariant3, true, [](const FmdBody& b) { return b.Invar3 != nullptr; }, FMD_Invar3,
     [](FmdBody& b) { release(b.Invar3); }},
    {4, kInvariant4, true, [](const FmdBody& b) { return b.Invar4 != nullptr; }, FMD_Invar4,
     [](FmdBody& b) { release(b.Invar4); }},
    {5, kInvariant5, true, [](const FmdBody& b) { return b.Invar5 != nullptr; },
     [](FmdBody* b) { return FMD_Invar5(b, 0); }, [](FmdBody& b) { release_value_rows(b.Invar5); }},
    {7, kInvariant7, false, [](const FmdBody& b) { return b.Invar7 != nullptr; }, FMD_Invar7,
     [](FmdBody& b) { release(b.Invar7); }},
    {8, kInvariant8, true, [](const FmdBody& b) { return b.Invar8 != nullptr; },
     [](FmdBody* b) { return FMD_Invar8(b, 0); }, [](FmdBody& b) { release_value_rows(b.Invar8); }},
    {9, kInvariant9, true, [](const FmdBody& b) { return b.Invar9 != nullptr; },
     [](FmdBody* b) { return FMD_Invar9(b, 0, 0); }, [](FmdBody& b) { release_tensor_rows(b.Invar9); }}};

bool fill(FmdBody* body, const MovedInvariant& invariant) {
  double* const copy = invariant.get(body);
  std::free(copy);
  return copy != nullptr;
}

}  // namespace

PresentInvariants::PresentInvariants(const FmdBody& body) {
  for (const MovedInvariant& invariant : kMoved) {
    const bool known = body.BlockExists[invariant.byte] != 0 || invariant.is_cached(body);
    present_[static_cast<std::size_t>(invariant.number)] =
        known && !(invariant.per_mode && body.ModeCount <= 0);
  }
}

bool PresentInvariants::settle(FmdBody* body, std::initializer_list<int> numbers) const {
  bool settled = true;
  for (const MovedInvariant& invariant : kMoved) {
    const bool wanted = std::find(numbers.begin(), numbers.end(), invariant.number) != numbers.end();
    if (wanted && has(invariant.number)) settled = settled && fill(body, invariant);
  }
  // Last, since a getter may fill more than its own.
  for (const MovedInvariant& invariant : kMoved) {
    if (!has(invariant.number) && invariant.is_cached(*body)) invariant.drop(*body);
  }
  return settled;
}

}  // namespace fmd
