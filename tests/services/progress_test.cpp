#include "services/progress.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "fmdtoolkit/extensions.h"

namespace {

std::vector<std::pair<int, int>> seen;

TEST(Progress, TellsTheHandlerOfEachStep) {
  seen.clear();
  FMDX_SetProgressHandler([](int done, int total) { seen.emplace_back(done, total); });
  fmd::time_monitor(2);
  fmd::time_monitor_stamp();
  fmd::time_monitor_stamp();
  FMDX_SetProgressHandler(nullptr);
  fmd::time_monitor(5);
  EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{0, 2}, {1, 2}, {2, 2}}));
}

}  // namespace
