#include "dbmodal/invariants_model.h"

#include <cstring>
#include <random>

namespace fmdtest {

Nine skew(const Three& x) {
  return {0.0, -x[2], x[1], x[2], 0.0, -x[0], -x[1], x[0], 0.0};
}

Nine product(const Nine& a, const Nine& b) {
  Nine c{};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      for (std::size_t k = 0; k < 3; ++k) c[3 * i + j] += a[3 * i + k] * b[3 * k + j];
  return c;
}

Three product(const Nine& a, const Three& x) {
  Three y{};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t k = 0; k < 3; ++k) y[i] += a[3 * i + k] * x[k];
  return y;
}

Nine transposed(const Nine& a) {
  return {a[0], a[3], a[6], a[1], a[4], a[7], a[2], a[5], a[8]};
}

void add(Nine& a, double s, const Nine& b) {
  for (std::size_t k = 0; k < 9; ++k) a[k] += s * b[k];
}

void add(Three& a, double s, const Three& b) {
  for (std::size_t k = 0; k < 3; ++k) a[k] += s * b[k];
}

InvariantsModel InvariantsModel::random(int nodes, int modes) {
  std::mt19937 generator(static_cast<unsigned>(97 * nodes + modes));
  std::uniform_real_distribution<double> any(-2.0, 2.0);
  const auto three = [&] { return Three{any(generator), any(generator), any(generator)}; };
  InvariantsModel model;
  for (int node = 0; node < nodes; ++node) {
    Nine inertia{};
    for (const auto& [row, column] : {std::pair(0, 0), {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}}) {
      const double value = any(generator);
      inertia[static_cast<std::size_t>(3 * row + column)] = value;
      inertia[static_cast<std::size_t>(3 * column + row)] = value;
    }
    const int id = node % 2 == 0 ? 10 * nodes - node : node + 1;
    model.nodes.push_back({id, node % 5 == 4 ? 0.0 : any(generator) + 2.5, three(), node % 3 == 1, inertia});
  }
  for (int mode = 0; mode < modes; ++mode) {
    ModelMode shape{mode % 2 == 0 ? 5 * modes - mode : mode + 3, {}, {}};
    for (int node = 0; node < nodes; ++node) {
      shape.translations.push_back(three());
      shape.rotations.push_back(three());
    }
    model.modes.push_back(std::move(shape));
  }
  return model;
}

Three InvariantsModel::invariant3(std::size_t mode) const {
  Three sum{};
  for (std::size_t p = 0; p < nodes.size(); ++p) add(sum, nodes[p].mass, modes[mode].translations[p]);
  return sum;
}

Three InvariantsModel::invariant4(std::size_t mode) const {
  Three sum{};
  for (std::size_t p = 0; p < nodes.size(); ++p) {
    add(sum, nodes[p].mass, product(skew(nodes[p].place), modes[mode].translations[p]));
    if (nodes[p].has_inertia) add(sum, 1.0, product(nodes[p].inertia, modes[mode].rotations[p]));
  }
  return sum;
}

Three InvariantsModel::invariant5(std::size_t i, std::size_t j) const {
  Three sum{};
  for (std::size_t p = 0; p < nodes.size(); ++p)
    add(sum, nodes[p].mass, product(skew(modes[i].translations[p]), modes[j].translations[p]));
  return sum;
}

Nine InvariantsModel::invariant8(std::size_t mode) const {
  Nine sum{};
  for (std::size_t p = 0; p < nodes.size(); ++p)
    add(sum, nodes[p].mass, product(skew(nodes[p].place), skew(modes[mode].translations[p])));
  return sum;
}

Nine InvariantsModel::invariant9(std::size_t i, std::size_t j) const {
  Nine sum{};
  for (std::size_t p = 0; p < nodes.size(); ++p)
    add(sum, nodes[p].mass, product(skew(modes[i].translations[p]), skew(modes[j].translations[p])));
  return sum;
}

void InvariantsTest::set_mode(FmdBody* body, const InvariantsModel& model, std::size_t mode) {
  const ModelMode& shape = model.modes[mode];
  for (std::size_t p = 0; p < model.nodes.size(); ++p) {
    const Three& t = shape.translations[p];
    const Three& r = shape.rotations[p];
    ASSERT_EQ(FMD_SetMode(body, shape.number, model.nodes[p].id, 0, t[0], t[1], t[2], r[0], r[1], r[2]), 1);
  }
}

FmdBody* InvariantsTest::make_body(const InvariantsModel& model, bool masses) {
  FmdBody* body = FMD_Create(static_cast<int>(model.nodes.size()), static_cast<int>(model.modes.size()) + 4);
  for (const ModelNode& node : model.nodes) {
    FMD_SetNodeCoordinates(body, node.id, node.place[0], node.place[1], node.place[2]);
    if (!masses) continue;
    if (node.mass != 0.0) FMD_SetNodalMass(body, node.id, node.mass);
    const Nine& i = node.inertia;
    if (node.has_inertia) FMD_SetNodalInertia(body, node.id, i[0], i[4], i[8], i[1], i[2], i[5]);
  }
  for (std::size_t mode = 0; mode < model.modes.size(); ++mode) set_mode(body, model, mode);
  log.clear();
  return body;
}

std::vector<double> InvariantsTest::taken(double* values, std::size_t count) {
  const std::unique_ptr<double, decltype(&FMD_FreeMemory)> owned(values, FMD_FreeMemory);
  return values == nullptr ? std::vector<double>() : std::vector<double>(values, values + count);
}

Nine InvariantsTest::taken_tensor(double* values) {
  Nine tensor{};
  const std::vector<double> list = taken(values, 9);
  EXPECT_EQ(list.size(), 9U);
  for (std::size_t k = 0; k < list.size(); ++k) tensor[k] = list[k];
  return tensor;
}

Three InvariantsTest::column(const std::vector<double>& rows, std::size_t column) {
  const std::size_t modes = rows.size() / 3;
  if (rows.empty()) return {};
  return {rows[column], rows[modes + column], rows[2 * modes + column]};
}

void expect_near(const double* found, const double* expected, std::size_t count, double scale,
                 const std::string& what) {
  for (std::size_t k = 0; k < count; ++k)
    EXPECT_NEAR(found[k], expected[k], 1e-13 * scale) << what << ", entry " << k;
}

bool same_bits(const double* a, const double* b, std::size_t count) {
  return std::memcmp(a, b, count * sizeof(double)) == 0;
}

}  // namespace fmdtest
