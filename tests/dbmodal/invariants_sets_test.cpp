// The rigid, fast and full sets: what they announce, what they fill, what they miss.
#include <gtest/gtest.h>

#include "dbmodal/dbinvar/invariant_sets.h"
#include "dbmodal/invariants_model.h"

namespace {

using fmdtest::InvariantsModel;

const std::string kTooLittleForFull =
    "E:There is insufficient mass data to compute a full set of mass invariants.\nSome or all mass "
    "invariants "
    "will be set to zero.";
const std::string kTooLittleForFast =
    "E:There is insufficient mass data to compute a partial set of mass invariants.\nSome or all mass "
    "invariants will be set to zero.";
const std::string kRigid = "I:Computing *rigid* invariants";
const std::string kFast = "I:Computing fast set of invariants";
const std::string kFull = "I:Computing *all* invariants";

using Lines = std::vector<std::string>;

class InvariantSets : public fmdtest::InvariantsTest {
 protected:
  // One digit per filled cache.
  static std::string filled(const FmdBody* body) {
    std::string digits;
    const void* const caches[] = {body->Invar1, body->Invar2, body->Invar3, body->Invar4,
                                  body->Invar5, body->Invar7, body->Invar8, body->Invar9};
    for (std::size_t k = 0; k < 8; ++k)
      if (caches[k] != nullptr) digits += "12345789"[k];
    return digits;
  }
};

TEST_F(InvariantSets, EachFillsItsCaches) {
  const InvariantsModel model = InvariantsModel::random(6, 2);
  FmdBody* body = make_body(model);
  fmd::compute_rigid_invariants(body);
  EXPECT_EQ(filled(body), "1237");
  fmd::compute_fast_invariants(body);
  EXPECT_EQ(filled(body), "123478");
  fmd::compute_full_invariants(body);
  EXPECT_EQ(filled(body), "12345789");
  EXPECT_EQ(log.all, (Lines{kRigid, kFast, kFull}));
}

TEST_F(InvariantSets, WithoutMassEachSaysSoAndGoesOnWithZeros) {
  FmdBody* body = make_body(InvariantsModel::random(6, 2), false);
  fmd::compute_rigid_invariants(body);
  EXPECT_EQ(log.all, (Lines{kTooLittleForFull, kRigid}));
  EXPECT_EQ(filled(body), "1237");
  FmdBody* fast = make_body(InvariantsModel::random(6, 2), false);
  fmd::compute_fast_invariants(fast);
  EXPECT_EQ(log.all, (Lines{kTooLittleForFast, kFast}));
  EXPECT_EQ(filled(fast), "123478");
  FmdBody* full = make_body(InvariantsModel::random(6, 2), false);
  fmd::compute_full_invariants(full);
  EXPECT_EQ(log.all, (Lines{kTooLittleForFull, kFull}));
  EXPECT_EQ(filled(full), "12345789");
  EXPECT_EQ(taken(FMD_Invar9(full, 0, 1), 9), std::vector<double>(9, 0.0));
}

TEST_F(InvariantSets, MassWithoutModesIsEnoughForTheRigidSetAlone) {
  FmdBody* body = FMD_Create(1, 1);
  FMD_SetNodalMass(body, 1, 2.0);
  fmd::compute_rigid_invariants(body);
  fmd::compute_fast_invariants(body);
  fmd::compute_full_invariants(body);
  EXPECT_EQ(log.all, (Lines{kRigid, kTooLittleForFast, kFast, kTooLittleForFull, kFull}));
  EXPECT_EQ(filled(body), "127");
}

TEST_F(InvariantSets, FilledCachesAreEnoughWithoutMarksAndMass) {
  FmdBody* body = make_body(InvariantsModel::random(6, 2));
  fmd::compute_rigid_invariants(body);
  fmd::compute_fast_invariants(body);
  body->BlockExists[fmd::kNodalMasses] = 0;
  log.clear();
  fmd::compute_rigid_invariants(body);
  fmd::compute_fast_invariants(body);
  EXPECT_EQ(log.all, (Lines{kRigid, kFast}));
  log.clear();
  fmd::compute_full_invariants(body);
  EXPECT_EQ(log.all, (Lines{kTooLittleForFull, kFull}));
}

TEST_F(InvariantSets, TheThirdIsNoMemberOfTheRigidSet) {
  FmdBody* body = make_body(InvariantsModel::random(6, 2), false);
  double values[6] = {1.0, 1.0, 1.0};
  FMD_SetInvar1(body, 1.0);
  FMD_SetInvar2(body, values);
  FMD_SetInvar7(body, values);
  fmd::compute_rigid_invariants(body);
  EXPECT_EQ(log.all, Lines{kRigid});
  EXPECT_EQ(taken(FMD_Invar3(body), 6), std::vector<double>(6, 0.0));
}

TEST_F(InvariantSets, EachMemberIsRequired) {
  struct Case {
    void (*compute)(FmdBody*);
    std::vector<fmd::SummaryByte> members;
  };
  using namespace fmd;
  const Case cases[] = {{compute_rigid_invariants, {kInvariant1, kInvariant2, kInvariant7}},
                        {compute_fast_invariants,
                         {kInvariant1, kInvariant2, kInvariant3, kInvariant4, kInvariant7, kInvariant8}},
                        {compute_full_invariants,
                         {kInvariant1, kInvariant2, kInvariant3, kInvariant4, kInvariant5, kInvariant7,
                          kInvariant8, kInvariant9}}};
  for (const Case& set : cases) {
    for (std::size_t missing = 0; missing <= set.members.size(); ++missing) {
      FmdBody* body = make_body(InvariantsModel::random(3, 1), false);
      for (std::size_t k = 0; k < set.members.size(); ++k)
        body->BlockExists[set.members[k]] = k == missing ? 0 : 1;
      set.compute(body);
      EXPECT_EQ(log.errors.size(), missing < set.members.size() ? 1U : 0U) << missing;
      FMD_UnLink(body);
    }
  }
}

TEST_F(InvariantSets, RefuseANullBody) {
  fmd::compute_rigid_invariants(nullptr);
  fmd::compute_fast_invariants(nullptr);
  fmd::compute_full_invariants(nullptr);
  EXPECT_EQ(log.all, Lines(3, "E:The database has not been initialized."));
}

}  // namespace
