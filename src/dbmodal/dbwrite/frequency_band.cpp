#include "dbmodal/dbwrite/frequency_band.h"

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// The first mode strictly above the lower edge, or -1. Modes without eigenvalue are passed over.
int first_above(FmdBody* body, double edge) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double hertz = 0.0;
    if (FMD_Eigenvalue(body, FMD_ModeNumber(body, mode), nullptr, &hertz, nullptr, nullptr, nullptr) == 0) {
      continue;
    }
    if (hertz > edge) return mode;
  }
  return -1;
}

// The first mode without generalized mass or strictly above the upper edge; the mode count if there is none.
int end_of_band(FmdBody* body, double edge) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double hertz = 0.0;
    double mass = 0.0;
    if (FMD_Eigenvalue(body, FMD_ModeNumber(body, mode), nullptr, &hertz, nullptr, &mass, nullptr) == 0) {
      continue;
    }
    if (mass == 0.0 || hertz > edge) return mode;
  }
  return body->ModeCount;
}

void number_from_one(FmdBody* body, int first) {
  if (first >= body->ModeCount) return;
  // Numbers are the caller's and may be anything; unsigned arithmetic wraps instead of overflowing.
  const std::uint32_t shift = static_cast<std::uint32_t>(body->ModeNumbers[first]) - 1U;
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const std::uint32_t number = static_cast<std::uint32_t>(body->ModeNumbers[mode]) - shift;
    body->ModeNumbers[mode] = static_cast<std::int32_t>(number);
  }
}

}  // namespace

void select_frequency_band(WriteJob& job) {
  const double lower = job.options.lowest_frequency;
  const double upper = job.options.highest_frequency;
  FMD_Info("Exporting frequency range [%le,%le]\n", lower, upper);
  const int first = first_above(job.body, lower);
  const int end = end_of_band(job.body, upper);
  job.first_mode = first < 0 ? 0 : first;
  job.mode_count = first < 0 || end < first ? 0 : end - first;
  number_from_one(job.body, job.first_mode);
}

}  // namespace fmd
