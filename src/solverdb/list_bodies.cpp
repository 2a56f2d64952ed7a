// What a database tells of all its bodies at once, for hosts that list them.
#include "fmdtoolkit/extensions.h"
#include "kdcdb/kdcdb.h"

namespace {

constexpr int kModesWord = 0;
constexpr int kNodesWord = 1;
constexpr long long kWordBytes = 4;

struct Listing {
  FmdxBodyReport report;
  void* context;
  int count;
};

void hand_on(const std::int32_t* trailer, std::int64_t words, void* context) {
  auto* const listing = static_cast<Listing*>(context);
  ++listing->count;
  if (listing->report == nullptr) return;
  listing->report(trailer[kNodesWord], trailer[kModesWord], kWordBytes * words, listing->context);
}

}  // namespace

int FMDX_ListBodies(const char* path, FmdxBodyReport report, void* context) {
  Listing listing = {report, context, 0};
  return kdcdb::ListStored(path, hand_on, &listing) == kdcdb::kOk ? listing.count : -1;
}
