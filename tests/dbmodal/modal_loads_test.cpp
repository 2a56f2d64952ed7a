#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class ModalLoads : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(3, 4);
    ASSERT_NE(body, nullptr);
    for (const int mode : {7, 8, 9}) FMD_AddMode(body, mode);
  }

  template <typename T>
  static std::vector<T> taken(T* values, int count) {
    const std::vector<T> copy = values == nullptr ? std::vector<T>() : std::vector<T>(values, values + count);
    FMD_FreeMemory(values);
    return copy;
  }

  std::string label(int load_case) const {
    char text[256] = "untouched";
    FMD_GetModalLoadCaseLabel(body, load_case, text);
    return text;
  }

  FmdBody* body = nullptr;
};

TEST_F(ModalLoads, PreloadHoldsOneValuePerMode) {
  int count = 5;
  EXPECT_EQ(FMD_GetModalPreload(body, &count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(FMD_ModalPreloadExist(body), 0);
  EXPECT_EQ(FMD_SetModalPreload(body, 8, 2.5), 1);
  EXPECT_EQ(FMD_ModalPreloadExist(body), 1);
  EXPECT_EQ(FMD_Exists(body, 26), 1);
  EXPECT_EQ(taken(FMD_GetModalPreload(body, &count), 3), (std::vector<double>{0.0, 2.5, 0.0}));
  EXPECT_EQ(count, 3);
}

TEST_F(ModalLoads, AModeAddedAfterThePreloadHasNoPlaceInIt) {
  FMD_SetModalPreload(body, 7, 1.0);
  EXPECT_EQ(FMD_SetModalPreload(body, 55, 2.0), 0);
  int count = 0;
  EXPECT_EQ(taken(FMD_GetModalPreload(body, &count), 4), (std::vector<double>{1.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(FMD_SetModalPreload(body, 56, 2.0), 0);
  EXPECT_EQ(log.errors.size(), 1U);  // the temporary file has room for four modes
}

TEST_F(ModalLoads, TheProcessedMarkNeedsAPreload) {
  FMD_SetModalPreloadProcessed(body, 1);
  EXPECT_EQ(FMD_ModalPreloadProcessed(body), 0);
  FMD_SetModalPreload(body, 7, 1.0);
  EXPECT_EQ(FMD_ModalPreloadProcessed(body), 0);
  FMD_SetModalPreloadProcessed(body, 1);
  EXPECT_EQ(FMD_ModalPreloadProcessed(body), 1);
}

TEST_F(ModalLoads, CasesInBetweenComeIntoBeing) {
  EXPECT_EQ(FMD_SetModalLoad(body, 2, 9, -4.0), 1);
  EXPECT_EQ(FMD_GetModalLoadCaseCount(body), 3);
  EXPECT_EQ(label(0), "Load Case 1");
  EXPECT_EQ(label(1), "Load Case 2");
  EXPECT_EQ(label(2), "Load Case 3");
  int count = 0;
  EXPECT_EQ(taken(FMD_GetModalLoad(body, 1, &count), 3), (std::vector<double>(3, 0.0)));
  EXPECT_EQ(taken(FMD_GetModalLoad(body, 2, &count), 3), (std::vector<double>{0.0, 0.0, -4.0}));
  EXPECT_EQ(FMD_Exists(body, 27), 1);
}

TEST_F(ModalLoads, ANegativeCaseIsIllegal) {
  const std::string message = "The load case index -1 is illegal.\nThe load case index must be non-negative.";
  EXPECT_EQ(FMD_SetModalLoad(body, -1, 7, 1.0), 0);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, -1, 1, 1, 1.0), 0);
  EXPECT_EQ(log.errors, (std::vector<std::string>{message, message}));
  EXPECT_EQ(FMD_SetModalLoadLabel(body, -1, nullptr), 0);
}

TEST_F(ModalLoads, LabelsAreKeptCutOrNumbered) {
  std::string text = "gravity";
  EXPECT_EQ(FMD_SetModalLoadLabel(body, 1, text.data()), 1);
  EXPECT_EQ(label(1), "gravity");
  EXPECT_EQ(FMD_GetModalLoadCaseCount(body), 2);
  std::string empty;
  EXPECT_EQ(FMD_SetModalLoadLabel(body, 0, empty.data()), 1);
  EXPECT_EQ(label(0), "1");
  std::string fits(255, 'a');
  FMD_SetModalLoadLabel(body, 0, fits.data());
  EXPECT_EQ(label(0), fits);
  EXPECT_TRUE(log.warnings.empty());
  std::string longer(256, 'b');
  EXPECT_EQ(FMD_SetModalLoadLabel(body, 0, longer.data()), 1);
  EXPECT_EQ(label(0), std::string(255, 'b'));
  EXPECT_EQ(log.warnings,
            std::vector<std::string>{
                "Modal load label too big: max size 255, specified size 256.  Truncating label."});
}

TEST_F(ModalLoads, BadCasesAreAnsweredSilently) {
  int count = 7;
  EXPECT_EQ(FMD_GetModalLoad(body, 0, &count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(FMD_ModalLoadProcessed(body, 3), 0);
  FMD_SetModalLoadProcessed(body, 3, 1);
  EXPECT_EQ(label(0), "untouched");
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 0), 0);
  EXPECT_EQ(FMD_GetModalLoadNodalNode(body, -1), nullptr);
  EXPECT_EQ(FMD_GetModalLoadNodalCoord(body, 0), nullptr);
  EXPECT_EQ(FMD_GetModalLoadNodalLoad(body, 0), nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(ModalLoads, ProcessedMarksAreKeptByCase) {
  FMD_SetModalLoad(body, 1, 7, 1.0);
  FMD_SetModalLoadProcessed(body, 1, 1);
  EXPECT_EQ(FMD_ModalLoadProcessed(body, 0), 0);
  EXPECT_EQ(FMD_ModalLoadProcessed(body, 1), 1);
}

TEST_F(ModalLoads, ACaseBeyondTheLimitOfMemoryIsRefused) {
  EXPECT_EQ(FMD_SetModalLoad(body, std::numeric_limits<int>::max(), 7, 1.0), 0);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, std::numeric_limits<int>::max(), 1, 1, 1.0), 0);
  EXPECT_EQ(FMD_GetModalLoadCaseCount(body), 0);
  EXPECT_EQ(FMD_GetModalLoadNodalCaseCount(body), 0);
  ASSERT_EQ(log.errors.size(), 2U);
  for (const std::string& error : log.errors) EXPECT_TRUE(fmdtest::is_allocation_failure(error, "dbset"));
}

TEST_F(ModalLoads, NodalEntriesAreAllKeptInOrder) {
  for (int entry = 0; entry < 11; ++entry) {
    EXPECT_EQ(FMD_SetModalLoadNodal(body, 1, 40 + entry % 2, 1 + entry % 6, entry * 1.5), 1);
  }
  EXPECT_EQ(FMD_GetModalLoadNodalCaseCount(body), 2);
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 0), 0);
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 1), 11);
  EXPECT_EQ(FMD_NodeCount(body), 2);
  const auto nodes = taken(FMD_GetModalLoadNodalNode(body, 1), 11);
  const auto coordinates = taken(FMD_GetModalLoadNodalCoord(body, 1), 11);
  const auto values = taken(FMD_GetModalLoadNodalLoad(body, 1), 11);
  for (std::size_t entry = 0; entry < 11; ++entry) {
    EXPECT_EQ(nodes[entry], static_cast<int>(entry % 2));
    EXPECT_EQ(FMD_NodeID(body, nodes[entry]), static_cast<int>(40 + entry % 2));
    EXPECT_EQ(coordinates[entry], static_cast<int>(1 + entry % 6));
    EXPECT_EQ(values[entry], static_cast<double>(entry) * 1.5);
  }
  EXPECT_EQ(FMD_Exists(body, 34), 1);
}

TEST_F(ModalLoads, CoordinatesRunFromOneToSix) {
  EXPECT_EQ(FMD_SetModalLoadNodal(body, 0, 1, 0, 1.0), 0);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, 0, 1, 7, 1.0), 0);
  EXPECT_EQ(log.errors, (std::vector<std::string>{
                            "The coordinate number 0 is illegal.\nThe coordinate number must be 1 to 6.",
                            "The coordinate number 7 is illegal.\nThe coordinate number must be 1 to 6."}));
  EXPECT_EQ(FMD_NodeCount(body), 0);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, 0, 1, 1, 1.0), 1);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, 0, 1, 6, 1.0), 1);
}

TEST_F(ModalLoads, ABodyWithoutModesCannotHaveACase) {
  FmdBody* const empty = FMD_Create(1, 1);
  std::string text = "x";
  EXPECT_EQ(FMD_SetModalLoadLabel(empty, 0, text.data()), 0);
  EXPECT_EQ(FMD_GetModalLoadCaseCount(empty), 0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
}

TEST_F(ModalLoads, EachFailedAllocationLeavesTheBodyUsable) {
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_SetModalLoad(body, 2, 7, 1.0);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      EXPECT_EQ(nth, 5);  // the table and three vectors before it
      break;
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(FMD_GetModalLoadCaseCount(body), 0);
  }
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_SetModalLoadNodal(body, 0, 1, 1, 1.0);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      break;
    }
    EXPECT_EQ(result, 0);
  }
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 0), 1);
}

}  // namespace
