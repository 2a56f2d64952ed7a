#include "dbmodal/dbinvar/invariant_sets.h"

#include <algorithm>
#include <iterator>

#include "dbmodal/dbinvar/invariant_blocks.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Sets in ascending size. An invariant that is no member of the smallest set may still be filled by it.
enum Set : int { kRigid, kFast, kFull, kNone };

struct Invariant {
  Set required_from;  // the smallest set that cannot do without it
  Set filled_from;    // the smallest set that fills it
  int block;          // 0: has none
  bool (*is_cached)(const FmdBody&);
  void (*fill)(FmdBody*);
};

template <auto Field>
bool is_cached(const FmdBody& body) {
  return body.*Field != nullptr;
}

template <auto Getter, typename... Index>
void fill(FmdBody* body) {
  FMD_FreeMemory(Getter(body, Index{}...));
}

void fill_mass(FmdBody* body) {
  FMD_Invar1(body);
}

// In the order in which a set fills them.
constexpr Invariant kInvariants[] = {
    {kRigid, kRigid, kInvariant1Block, is_cached<&FmdBody::Invar1>, fill_mass},
    {kRigid, kRigid, kInvariant2Block, is_cached<&FmdBody::Invar2>, fill<FMD_Invar2>},
    {kFast, kRigid, kInvariant3Block, is_cached<&FmdBody::Invar3>, fill<FMD_Invar3>},
    {kFast, kFast, kInvariant4Block, is_cached<&FmdBody::Invar4>, fill<FMD_Invar4>},
    {kFull, kFull, kInvariant5Block, is_cached<&FmdBody::Invar5>, fill<FMD_Invar5, int>},
    {kNone, kFast, 0, nullptr, fill<FMD_Invar6>},
    {kRigid, kRigid, kInvariant7Block, is_cached<&FmdBody::Invar7>, fill<FMD_Invar7>},
    {kFast, kFast, kInvariant8Block, is_cached<&FmdBody::Invar8>, fill<FMD_Invar8, int>},
    {kFull, kFull, kInvariant9Block, is_cached<&FmdBody::Invar9>, fill<FMD_Invar9, int, int>},
};

// Whether a condition holds for all invariants that the set requires.
template <typename Condition>
bool holds_for_all(Set set, Condition condition) {
  return std::all_of(std::begin(kInvariants), std::end(kInvariants), [&](const Invariant& invariant) {
    return invariant.required_from > set || condition(invariant);
  });
}

bool is_computable(FmdBody* body, Set set) {
  if (holds_for_all(set, [&](const Invariant& invariant) { return invariant.is_cached(*body); })) return true;
  if (holds_for_all(set, [&](const Invariant& invariant) { return FMD_Exists(body, invariant.block) != 0; }))
    return true;
  return FMD_Exists(body, kNodalMassBlock) != 0 && (set == kRigid || body->ModeCount > 0);
}

void compute(FmdBody* body, Set set, const char* announcement) {
  if (CheckFMD(body) == 0) return;
  if (!is_computable(body, set)) {
    FMD_Error(
        "There is insufficient mass data to compute a %s set of mass invariants.\nSome or all mass "
        "invariants "
        "will be set to zero.",
        set == kFast ? "partial" : "full");
  }
  FMD_Info("%s", announcement);
  for (const Invariant& invariant : kInvariants) {
    if (invariant.filled_from <= set) invariant.fill(body);
  }
}

}  // namespace

void compute_rigid_invariants(FmdBody* body) {
  compute(body, kRigid, "Computing *rigid* invariants");
}

void compute_fast_invariants(FmdBody* body) {
  compute(body, kFast, "Computing fast set of invariants");
}

void compute_full_invariants(FmdBody* body) {
  compute(body, kFull, "Computing *all* invariants");
}

}  // namespace fmd
