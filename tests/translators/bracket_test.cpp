// The sample part against numbers that another program worked out.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "calculix/faces.h"
#include "calculix/translate.h"

using calculix::Model;

namespace {

const std::string folder = std::string(FMD_EXAMPLES) + "/bracket/";

Model read(const std::string& job_name) {
  calculix::Job job;
  job.results = folder + job_name + ".frd.gz";
  job.deck = folder + job_name + ".inp";
  job.interface_nodes = {"IF_BASE", "P_HOLE_W1"};
  return calculix::read_model(job, nullptr);
}

const nlohmann::json& reference() {
  static const nlohmann::json json = nlohmann::json::parse(std::ifstream(folder + "reference.json"));
  return json;
}

}  // namespace

class BracketTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { model_ = new Model(read("bracket_free")); }
  static void TearDownTestSuite() { delete model_; }
  static const Model& model() { return *model_; }

 private:
  static Model* model_;
};

Model* BracketTest::model_ = nullptr;

TEST_F(BracketTest, HasTheMeshOfTheReference) {
  const auto& mesh = reference()["mesh"];
  EXPECT_EQ(model().contents.mesh.node_ids.size(), mesh["node_count"].get<std::size_t>());
  EXPECT_EQ(model().contents.mesh.elements.size(), mesh["element_count"].get<std::size_t>());
  EXPECT_EQ(model().interface_ids.size(), 161U);
  EXPECT_EQ(model().title, "bracket free-free modes");
}

TEST_F(BracketTest, HasTheMassesOfTheReferenceNodeByNode) {
  std::ifstream file(folder + "nodal_mass_hrz.txt");
  int compared = 0;
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    int id = 0;
    double mass = 0.0;
    std::istringstream(line) >> id >> mass;
    const int node = model().contents.node_index.find(id);
    ASSERT_GE(node, 0);
    EXPECT_NEAR(model().masses[static_cast<std::size_t>(node)] / mass, 1.0, 1e-6) << id;
    ++compared;
  }
  EXPECT_EQ(compared, 3833);
}

TEST_F(BracketTest, HasTheMassAndCentreOfTheReference) {
  double mass = 0.0;
  double moment[3] = {0, 0, 0};
  for (std::size_t i = 0; i < model().masses.size(); ++i) {
    mass += model().masses[i];
    for (std::size_t k = 0; k < 3; ++k) moment[k] += model().masses[i] * model().contents.mesh.points[i][k];
  }
  EXPECT_NEAR(mass / reference()["mass_properties"]["mass"].get<double>(), 1.0, 1e-6);
  EXPECT_NEAR(mass / reference()["hrz_lumped"]["mass"].get<double>(), 1.0, 1e-9);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(moment[k] / mass, reference()["hrz_lumped"]["com"][k].get<double>(), 1e-5);
  }
}

TEST_F(BracketTest, HasTheFrequenciesOfTheReferenceToTheirDigits) {
  const auto& hertz = reference()["free"]["hz_frd"];
  ASSERT_EQ(model().contents.modes.size(), hertz.size());
  for (std::size_t i = 0; i < hertz.size(); ++i) {
    EXPECT_EQ(model().contents.modes[i].number, static_cast<int>(i) + 1);
    EXPECT_EQ(model().contents.modes[i].hertz, hertz[i].get<double>());
  }
  const Model fixed = read("bracket_fixed");
  const auto& fixed_hertz = reference()["fixed"]["hz_frd"];
  ASSERT_EQ(fixed.contents.modes.size(), fixed_hertz.size());
  for (std::size_t i = 0; i < fixed_hertz.size(); ++i) {
    EXPECT_EQ(fixed.contents.modes[i].hertz, fixed_hertz[i].get<double>());
  }
}

TEST_F(BracketTest, HasAClosedSurfaceAroundItsCorners) {
  const calculix::Mesh& mesh = model().contents.mesh;
  const auto triple = [&](int i, int j, int k) {
    const auto& a = mesh.points[static_cast<std::size_t>(i)];
    const auto& b = mesh.points[static_cast<std::size_t>(j)];
    const auto& c = mesh.points[static_cast<std::size_t>(k)];
    return (a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
            a[2] * (b[0] * c[1] - b[1] * c[0])) /
           6.0;
  };
  const auto faces = calculix::outer_faces(mesh);
  EXPECT_EQ(faces.size(), reference()["mesh"]["exterior_faces"].get<std::size_t>());
  double enclosed = 0.0;
  for (const auto& face : faces) {
    ASSERT_EQ(face.corners, 3);
    enclosed += triple(face.nodes[0], face.nodes[1], face.nodes[2]);
  }
  double filled = 0.0;
  for (const auto& element : mesh.elements) {
    const int* n = mesh.nodes_of(element);
    filled += triple(n[1], n[2], n[3]) - triple(n[0], n[2], n[3]) + triple(n[0], n[1], n[3]) -
              triple(n[0], n[1], n[2]);
  }
  EXPECT_NEAR(enclosed / filled, 1.0, 1e-12);
}

// Lumped masses are not those of the analysis, so the modes are orthogonal in them only roughly, but rigid
// body translations have exact products: the translational masses of the elastic modes vanish.
TEST_F(BracketTest, HasModesThatAreNearlyOrthonormalInTheLumpedMasses) {
  const std::size_t nodes = model().masses.size();
  std::vector<std::vector<double>> shapes;
  double peak_stress = 0.0;
  calculix::read_mode_vectors(
      model().job.results, model().contents,
      [&](const calculix::ModeVector& vector) {
        ASSERT_EQ(vector.nodes.size(), nodes);
        if (vector.quantity == calculix::Quantity::displacement) {
          shapes.push_back(vector.values);
        } else if (vector.mode->number == 7) {
          for (const double value : vector.values) peak_stress = std::max(peak_stress, std::fabs(value));
        }
      },
      nullptr);
  ASSERT_EQ(shapes.size(), 20U);
  EXPECT_EQ(peak_stress, reference()["checks"]["free"]["peak_abs_stress_frd_elastic"][0].get<double>());
  const auto product = [&](const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < nodes; ++i) {
      for (std::size_t k = 0; k < 3; ++k) sum += model().masses[i] * a[6 * i + k] * b[6 * i + k];
    }
    return sum;
  };
  for (std::size_t r = 0; r < shapes.size(); ++r) {
    for (std::size_t c = 0; c < shapes.size(); ++c) {
      EXPECT_NEAR(product(shapes[r], shapes[c]), r == c ? 1.0 : 0.0, 0.05) << r << " " << c;
    }
  }
}
