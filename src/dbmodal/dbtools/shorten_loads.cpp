#include <algorithm>

#include "dbmodal/dbtools/shorten.h"

namespace fmd {

namespace {

void release_arrays(FmdNodalLoadCase& loads) {
  release(loads.Nodes);
  release(loads.Coordinates);
  release(loads.Values);
}

bool provide_arrays(FmdNodalLoadCase& loads, std::int32_t count) {
  loads.Nodes = allocate<std::int32_t>(count, "dbtools").release();
  if (loads.Nodes == nullptr) return false;
  loads.Coordinates = allocate<std::int32_t>(count, "dbtools").release();
  if (loads.Coordinates == nullptr) return false;
  loads.Values = allocate<double>(count, "dbtools").release();
  loads.Capacity = count;
  return loads.Values != nullptr;
}

bool copy_kept_loads(const FmdNodalLoadCase& loads, const std::int32_t* places, FmdNodalLoadCase& kept) {
  const auto count = static_cast<std::int32_t>(std::count_if(
      loads.Nodes, loads.Nodes + loads.Count, [=](std::int32_t node) { return places[node] >= 0; }));
  if (count == 0) return true;
  if (!provide_arrays(kept, count)) return false;
  for (std::int32_t entry = 0; entry < loads.Count; ++entry) {
    const std::int32_t place = places[loads.Nodes[entry]];
    if (place < 0) continue;
    kept.Nodes[kept.Count] = place;
    kept.Coordinates[kept.Count] = loads.Coordinates[entry];
    kept.Values[kept.Count] = loads.Values[entry];
    ++kept.Count;
  }
  return true;
}

}  // namespace

ShortenedLoads::~ShortenedLoads() {
  for (std::int32_t load_case = 0; load_case < count_; ++load_case)
    release_arrays(cases_[static_cast<std::size_t>(load_case)]);
}

bool ShortenedLoads::ShortenModalLoads(const FmdBody& body, const std::int32_t* places) {
  if (body.NodalLoadCaseCount == 0) return true;
  cases_ = allocate<FmdNodalLoadCase>(body.NodalLoadCaseCount, "dbtools");
  if (cases_ == nullptr) return false;
  count_ = body.NodalLoadCaseCount;
  for (std::int32_t load_case = 0; load_case < count_; ++load_case) {
    if (!copy_kept_loads(body.NodalLoadCases[load_case], places, cases_[static_cast<std::size_t>(load_case)]))
      return false;
  }
  return true;
}

void ShortenedLoads::install(FmdBody& body) {
  for (std::int32_t load_case = 0; load_case < count_; ++load_case) {
    FmdNodalLoadCase& loads = body.NodalLoadCases[load_case];
    release_arrays(loads);
    loads = cases_[static_cast<std::size_t>(load_case)];
    cases_[static_cast<std::size_t>(load_case)] = {};
  }
}

}  // namespace fmd
