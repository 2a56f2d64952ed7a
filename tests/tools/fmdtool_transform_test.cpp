// fmdtool transform: what it writes is held against motions worked out here.
#include <cmath>

#include "dataset_reader/dataset_reader.h"
#include "support/sample_body.h"
#include "tools/fmdtool_database_support.h"

using namespace fmdtest;
using dataset_reader::Dataset;
using dataset_reader::read_dataset_file;

namespace {

using Vector = std::array<double, 3>;
using Motion = Vector (*)(const Vector&);

}  // namespace

class FmdtoolTransformTest : public FmdtoolDatabaseTest {
 protected:
  FmdtoolTransformTest() {
    expect_stored("parts.MASTER", "arm", {"--monitor", "CORNER"});
    expect_done({"export", "parts.MASTER", "-o", "before.fmd"});
  }

  Dataset transformed(std::vector<std::string> steps) const {
    steps.insert(steps.begin(), {"transform", "parts.MASTER", "-o", "after.fmd"});
    expect_done(steps);
    return read_dataset_file("after.fmd");
  }

  // Places and displacements after the steps, each displacement being turned as a vector.
  void expect_motion(const std::vector<std::string>& steps, Motion place, Motion vector) const {
    const Dataset before = read_dataset_file("before.fmd");
    const Dataset after = transformed(steps);
    ASSERT_EQ(after.nodes->size(), before.nodes->size());
    for (std::size_t node = 0; node < before.nodes->size(); ++node) {
      expect_near((*after.nodes)[node].xyz, place((*before.nodes)[node].xyz));
      for (std::size_t mode = 0; mode < 2; ++mode) {
        expect_near(first_half(after, mode, node), vector(first_half(before, mode, node)));
      }
    }
    EXPECT_EQ((*after.eigenvalues)[1].hertz, (*before.eigenvalues)[1].hertz);
  }

  static Vector first_half(const Dataset& dataset, std::size_t mode, std::size_t node) {
    const auto row = dataset.mode_shapes->at(mode, node);
    return {row[0], row[1], row[2]};
  }
  static void expect_near(const Vector& found, const Vector& expected) {
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(found[k], expected[k], 1e-12 * (1.0 + std::fabs(expected[k])));
  }
};

TEST_F(FmdtoolTransformTest, MovesABody) {
  expect_motion(
      {"--translate", "-1,2,0.5"},
      [](const Vector& r) {
        return Vector{r[0] - 1, r[1] + 2, r[2] + 0.5};
      },
      [](const Vector& v) { return v; });
}

TEST_F(FmdtoolTransformTest, StaysWhereItIsMovedByNothing) {
  expect_motion(
      {"--translate", "0,0,0"}, [](const Vector& r) { return r; }, [](const Vector& v) { return v; });
}

TEST_F(FmdtoolTransformTest, TurnsABodyByTheRightHandRule) {
  expect_motion(
      {"--rotate", "0,0,2,90"},
      [](const Vector& r) {
        return Vector{-r[1], r[0], r[2]};
      },
      [](const Vector& v) {
        return Vector{-v[1], v[0], v[2]};
      });
}

TEST_F(FmdtoolTransformTest, TurnsAndReflectsAboutAPoint) {
  expect_motion(
      {"--rotate", "0,0,1,180,1,0,0"},
      [](const Vector& r) {
        return Vector{2 - r[0], -r[1], r[2]};
      },
      [](const Vector& v) {
        return Vector{-v[0], -v[1], v[2]};
      });
  expect_motion(
      {"--mirror", "1,0,0,3,0,0"},
      [](const Vector& r) {
        return Vector{6 - r[0], r[1], r[2]};
      },
      [](const Vector& v) {
        return Vector{-v[0], v[1], v[2]};
      });
}

TEST_F(FmdtoolTransformTest, TakesStepsInTheOrderGiven) {
  const auto turned = [](const Vector& v) { return Vector{-v[1], v[0], v[2]}; };
  expect_motion(
      {"--translate", "1,0,0", "--rotate", "0,0,1,90", "--translate", "0,0,5"},
      [](const Vector& r) {
        return Vector{-r[1], r[0] + 1, r[2] + 5};
      },
      turned);
  expect_motion(
      {"--rotate", "0,0,1,90", "--translate", "1,0,0", "--translate", "0,0,5"},
      [](const Vector& r) {
        return Vector{-r[1] + 1, r[0], r[2] + 5};
      },
      turned);
}

TEST_F(FmdtoolTransformTest, ChangesUnitsBeforeOrAfterAMotion) {
  const Dataset before = read_dataset_file("before.fmd");
  const std::string units = "KILOGRAM,METER,SECOND,NEWTON";
  const Dataset after = transformed({"--units", units, "--translate", "1,0,0"});
  EXPECT_EQ(dataset_reader::trimmed(after.units->length), "METER");
  for (std::size_t node = 0; node < before.nodes->size(); ++node) {
    const Vector& r = (*before.nodes)[node].xyz;
    expect_near((*after.nodes)[node].xyz, {r[0] / 1000 + 1, r[1] / 1000, r[2] / 1000});
  }
  EXPECT_NEAR(after.global_properties->mass, 1000 * before.global_properties->mass, 1e-9);
  const Dataset other = transformed({"--translate", "1,0,0", "--units", units});
  EXPECT_NEAR((*other.nodes)[0].xyz[0], ((*before.nodes)[0].xyz[0] + 1) / 1000, 1e-15);
}

TEST_F(FmdtoolTransformTest, StoresTheBodyInAnotherDatabase) {
  expect_done({"transform", "parts.MASTER", "--mirror", "0,1,0", "--database", "left.MASTER", "--qualifiers",
               "left arm"});
  expect_done({"transform", "parts.MASTER", "--translate", "1,0,0", "--database", "left.MASTER"});
  EXPECT_EQ(labels("left.MASTER"), (std::vector<std::string>{"left arm", "arm"}));
  expect_done({"transform", "left.MASTER", "--select", "left arm", "--mirror", "0,1,0", "-o", "back.fmd"});
  const Dataset before = read_dataset_file("before.fmd");
  const Dataset back = read_dataset_file("back.fmd");
  for (std::size_t node = 0; node < before.nodes->size(); ++node) {
    expect_near((*back.nodes)[node].xyz, (*before.nodes)[node].xyz);
    expect_near(first_half(back, 1, node), first_half(before, 1, node));
  }
  EXPECT_EQ(made(), (std::set<std::string>{"parts.MASTER", "left.MASTER", "before.fmd", "back.fmd"}));
}

TEST_F(FmdtoolTransformTest, KeepsTheFormOfABodyThatIsStoredAgain) {
  expect_stored("single.MASTER", "arm", {"--option", "single"});
  expect_done({"transform", "single.MASTER", "--translate", "1,0,0", "-d", "moved.MASTER"});
  const auto size = [&](const std::string& database) { return list(database)["bodies"][0]["bytes"]; };
  EXPECT_EQ(size("moved.MASTER"), size("single.MASTER"));
}

// The first moment of a body without mass cannot follow.
TEST_F(FmdtoolTransformTest, TellsOfABodyThatCannotFollow) {
  store_past_the_program("light.MASTER", nullptr, [] {
    FmdBody* const body = make_nodes({1, 2}, 0);
    double moment[3] = {1.0, 2.0, 3.0};
    FMD_SetInvar2(body, moment);
    return body;
  });
  const Outcome outcome = run({"transform", "light.MASTER", "--translate", "1,0,0", "-o", "none.fmd"});
  EXPECT_EQ(outcome.exit_code, 1) << outcome.errors;
  const std::string last = "fmdtool: error: light.MASTER, body 1: cannot be transformed\n";
  ASSERT_GE(outcome.errors.size(), last.size());
  EXPECT_EQ(outcome.errors.substr(outcome.errors.size() - last.size()), last);
  EXPECT_EQ(made().count("none.fmd"), 0U);
}
