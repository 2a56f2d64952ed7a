#include "body_reading.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace fmdtool {

namespace {

constexpr int first_block = 2;  // that has a place in a dataset of its own, counted from 0
constexpr int block_count = 35;

struct ModeKind {
  int type;
  const char* name;
};

constexpr std::array<ModeKind, 3> mode_kinds = {
    {{0, "mode shape"}, {1, "modal stress"}, {2, "modal strain"}}};

struct ArrayRelease {
  void operator()(double* array) const { FMD_FreeMemory(array); }
};
using Array = std::unique_ptr<double, ArrayRelease>;

void find_blocks(FmdBody* body, const Finding& tell) {
  for (int id = first_block + 1; id < block_count; ++id) {
    if (FMD_Exists(body, id) != 0 && FMD_goto_block(body, id) == 0) {
      tell("block " + std::to_string(id + 1) + " is not where it should be");
    }
  }
}

// One half: the toolkit reads a vector in whole.
void read_modes(FmdBody* body, const ModeKind& kind, const Finding& tell) {
  if (FMD_ModeExist(body, kind.type) == 0) return;
  std::vector<double> half(3 * static_cast<std::size_t>(std::max(FMD_ModeNodeCount(body, kind.type), 1)));
  for (int i = 0; i < FMD_ModeCount(body); ++i) {
    const int number = FMD_ModeNumber(body, i);
    if (FMD_Mode(body, number, kind.type, half.data(), 0) == 0) {
      tell(std::string(kind.name) + " " + std::to_string(number) + " cannot be read");
    }
  }
}

using OfBody = double* (*)(FmdBody*);
using OfMode = double* (*)(FmdBody*, int);

struct Invariant {
  int number;
  int id;  // of its block, counted from 0
  OfBody of_body;
  OfMode of_mode;
};

constexpr std::array<Invariant, 6> invariants = {{{2, 19, FMD_Invar2, nullptr},
                                                  {3, 20, FMD_Invar3, nullptr},
                                                  {4, 21, FMD_Invar4, nullptr},
                                                  {5, 22, nullptr, FMD_Invar5},
                                                  {7, 23, FMD_Invar7, nullptr},
                                                  {8, 24, nullptr, FMD_Invar8}}};

bool can_be_had(FmdBody* body, const Invariant& invariant) {
  if (invariant.of_body != nullptr) return Array(invariant.of_body(body)) != nullptr;
  for (int mode = 0; mode < FMD_ModeCount(body); ++mode) {
    if (Array(invariant.of_mode(body, mode)) == nullptr) return false;
  }
  return true;
}

bool pairs_can_be_had(FmdBody* body) {
  for (int i = 0; i < FMD_ModeCount(body); ++i) {
    for (int j = 0; j < FMD_ModeCount(body); ++j) {
      if (Array(FMD_Invar9(body, i, j)) == nullptr) return false;
    }
  }
  return true;
}

void read_invariants(FmdBody* body, const Finding& tell) {
  constexpr int mass_block = 18;
  constexpr int pair_block = 25;
  const auto missing = [&](int number) { tell("invariant " + std::to_string(number) + " cannot be read"); };
  if (FMD_Exists(body, mass_block) != 0) FMD_Invar1(body);  // a body may have no mass
  for (const Invariant& invariant : invariants) {
    if (FMD_Exists(body, invariant.id) != 0 && !can_be_had(body, invariant)) missing(invariant.number);
  }
  if (FMD_Exists(body, pair_block) != 0 && !pairs_can_be_had(body)) missing(9);
}

}  // namespace

void read_all(FmdBody* body, const Finding& tell) {
  FMD_SetKeepModesInMemory(body, 0);
  find_blocks(body, tell);
  for (const ModeKind& kind : mode_kinds) read_modes(body, kind, tell);
  read_invariants(body, tell);
}

}  // namespace fmdtool
