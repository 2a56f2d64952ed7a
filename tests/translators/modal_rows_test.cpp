// Load cases, monitor points and mass properties of a body after a translation.
#include "calculix/modal_rows.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "support/session.h"
#include "translators/frd_text.h"

using namespace fmdtest;

namespace {

struct ArrayRelease {
  void operator()(void* array) const { FMD_FreeMemory(array); }
};

}  // namespace

class ModalRowsTest : public SessionTest {
 protected:
  FmdBody* body_of(const std::string& steps, const std::vector<std::string>& monitor_nodes,
                   const std::string& frd = frd_text(cube())) {
    write_file("job.frd", frd);
    write_file("job.inp", cube_deck() + steps);
    calculix::Job job;
    job.results = "job.frd";
    job.deck = "job.inp";
    job.monitor_nodes = monitor_nodes;
    return calculix::make_body(calculix::read_model(job, nullptr), nullptr);
  }
};

TEST_F(ModalRowsTest, ProjectsLoadsOnTheModesAndKeepsThemByNode) {
  FmdBody* body = body_of(
      "*STEP\n*STATIC\n*CLOAD\n3, 1, 2\n6, 3, -5\n*END STEP\n"
      "*STEP, NAME=LAST\n*STATIC\n*CLOAD, OP=NEW\n1, 2, 10\n1, 4, 3\n*END STEP\n",
      {});
  ASSERT_NE(body, nullptr);
  ASSERT_EQ(FMD_GetModalLoadCaseCount(body), 2);
  char label[256];
  FMD_GetModalLoadCaseLabel(body, 0, label);
  EXPECT_STREQ(label, "Step 2");
  FMD_GetModalLoadCaseLabel(body, 1, label);
  EXPECT_STREQ(label, "Step 3: LAST");
  for (int mode = 1; mode <= 2; ++mode) {
    int count = 0;
    const std::unique_ptr<double[], ArrayRelease> first(FMD_GetModalLoad(body, 0, &count));
    ASSERT_EQ(count, 2);
    const std::size_t at = static_cast<std::size_t>(FMD_ModeIndex(body, mode));
    EXPECT_EQ(first[at], 2 * displacement_of(mode, 3, 0) - 5 * displacement_of(mode, 6, 2));
    const std::unique_ptr<double[], ArrayRelease> second(FMD_GetModalLoad(body, 1, &count));
    EXPECT_EQ(second[at], 10 * displacement_of(mode, 1, 1));
  }
  ASSERT_EQ(FMD_GetModalLoadNodalCaseCount(body), 2);
  ASSERT_EQ(FMD_GetModalLoadNodalCount(body, 1), 2);
  const std::unique_ptr<int[], ArrayRelease> nodes(FMD_GetModalLoadNodalNode(body, 0));
  EXPECT_EQ(FMD_NodeID(body, nodes[0]), 3);
  EXPECT_EQ(FMD_NodeID(body, nodes[1]), 6);
  const std::unique_ptr<int[], ArrayRelease> directions(FMD_GetModalLoadNodalCoord(body, 1));
  EXPECT_EQ(directions[0], 2);
  EXPECT_EQ(directions[1], 4);
  const std::unique_ptr<double[], ArrayRelease> values(FMD_GetModalLoadNodalLoad(body, 1));
  EXPECT_EQ(values[0], 10.0);
  EXPECT_EQ(values[1], 3.0);
}

TEST_F(ModalRowsTest, GivesOneMonitorPointForEachNodeNamed) {
  write_file("ids.txt", "2 6\n");
  FmdBody* body = body_of("", {"corner", "ids.txt", "TOP"});
  ASSERT_NE(body, nullptr);
  const std::pair<int, const char*> expected[] = {{1, "node 1 of corner"},  {2, "node 2 of ids.txt"},
                                                  {6, "node 6 of ids.txt"}, {5, "node 5 of TOP"},
                                                  {7, "node 7 of TOP"},     {8, "node 8 of TOP"}};
  ASSERT_EQ(FMD_GetMonitorPointCount(body), static_cast<int>(std::size(expected)));
  for (int i = 0; i < FMD_GetMonitorPointCount(body); ++i) {
    const int id = expected[i].first;
    char name[9], label[57];
    ASSERT_EQ(FMD_GetMonitorPointNameLabel(body, i, name, label), 0);
    EXPECT_EQ(name, "N" + std::to_string(id));
    EXPECT_STREQ(label, expected[i].second);
    EXPECT_EQ(FMD_GetMonitorPointType(body, i), 1);
    EXPECT_EQ(FMD_GetMonitorPointResultType(body, i), 1);
    EXPECT_EQ(FMD_GetMonitorPointComponent(body, i), 123);
    EXPECT_EQ(FMD_MonitorPointHasOperator(body, i, 1), 1);
    EXPECT_EQ(FMD_MonitorPointHasOperator(body, i, 2), 0);
    double at[3];
    FMD_GetMonitorPointLocation(body, i, at);
    const auto place = cube().nodes[static_cast<std::size_t>(id - 1)].at;
    for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(at[k], place[k]);
    int rows = 0, columns = 0;
    FMD_GetMonitorPointOperatorSize(body, i, &rows, &columns);
    ASSERT_EQ(rows * columns, 6);
    double values[6];
    ASSERT_EQ(FMD_GetMonitorPointOperator(body, i, 1, values), 0);
    for (int k = 0; k < 3; ++k) {
      for (int mode = 1; mode <= 2; ++mode) {
        EXPECT_EQ(values[2 * k + mode - 1], displacement_of(mode, id, k)) << id;
      }
    }
  }
}

TEST_F(ModalRowsTest, NamesWhatMonitorPointsWereExpectedAt) {
  EXPECT_EQ(input_error_of([&] { body_of("", {"SIDE"}); }),
            "job.inp: expected a node set of the deck or a file for the monitor points, found neither of the "
            "name \"SIDE\" (sets: CORNER, NALL, TOP)");
  write_file("ids.txt", "1\n12\n");
  EXPECT_EQ(input_error_of([&] { body_of("", {"ids.txt"}); }),
            "ids.txt:2: expected a node of the results, found unknown node 12");
}

TEST_F(ModalRowsTest, CutsLongIdsInNamesToTheirLastSevenDigits) {
  EXPECT_EQ(calculix::monitor_name(7), "N7");
  EXPECT_EQ(calculix::monitor_name(1234567), "N1234567");
  EXPECT_EQ(calculix::monitor_name(2147483647), "N7483647");
}

TEST_F(ModalRowsTest, RefusesLoadsOfInfiniteWork) {
  const std::string huge =
      exchange(frd_text(cube()), " -1         3 1.02750E+02", " -1         31.02750E+307");
  EXPECT_EQ(input_error_of([&] { body_of("*STEP\n*STATIC\n*CLOAD\n3, 1, 1e9\n*END STEP\n", {}, huge); }),
            "job.inp: expected loads of finite work in mode 1");
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}

// A cube of eight equal masses at its corners: the inertia about an edge is that of four masses at 1 and two
// at the root of 2, so m / 8 (4 + 4); products are m / 8 times the two corners with both coordinates 1.
TEST_F(ModalRowsTest, GivesMassCentreAndInertiaWithoutAWarning) {
  FmdBody* body = body_of("", {});
  ASSERT_NE(body, nullptr);
  double mass = 0.0, inertia[9], centre[3];
  ASSERT_EQ(FMD_TotalMassInertia(body, &mass, inertia, centre), 1);
  EXPECT_NEAR(mass, 7.85, 1e-14);
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(centre[k], 0.5, 1e-15);
  for (int k = 0; k < 9; ++k) EXPECT_NEAR(inertia[k], k % 4 == 0 ? 7.85 : 7.85 / 4, 1e-13) << k;
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const listing = open_memstream(&text, &size);
  FMD_Contents(body, 6, listing);
  std::fclose(listing);
  EXPECT_NE(std::string(text).find("\nMass:      7.8500000000\n"), std::string::npos) << text;
  std::free(text);
  EXPECT_TRUE(log.warnings.empty());
  EXPECT_TRUE(log.errors.empty());
}
