// Stripping the common faces of a solid mesh, beside std::sort of as many records of 48 bytes; and the
// nearest node by position, beside a plain sum of the coordinates in a table of the same layout.
//
// bench_geometry [elements along an edge] [nodes] [rounds]
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

// A cube of hexahedra, each with its six faces.
class SolidMesh {
 public:
  explicit SolidMesh(int elements) : edge_(elements) {}

  int face_count() const { return 6 * edge_ * edge_ * edge_; }
  int outer_faces() const { return 6 * edge_ * edge_; }
  int node_count() const { return (edge_ + 1) * (edge_ + 1) * (edge_ + 1); }

  // Corners by node id, four a face, in the order of the elements or in random order.
  std::vector<int> faces(bool shuffled) const {
    std::vector<std::vector<int>> all;
    for (int z = 0; z < edge_; ++z)
      for (int y = 0; y < edge_; ++y)
        for (int x = 0; x < edge_; ++x) add_element(x, y, z, all);
    if (shuffled) std::shuffle(all.begin(), all.end(), std::mt19937(3));
    std::vector<int> flat;
    for (const std::vector<int>& face : all) flat.insert(flat.end(), face.begin(), face.end());
    return flat;
  }

 private:
  int id(int x, int y, int z) const { return 1 + x + (edge_ + 1) * (y + (edge_ + 1) * z); }

  void add_element(int x, int y, int z, std::vector<std::vector<int>>& all) const {
    const int c[8] = {id(x, y, z),     id(x + 1, y, z),     id(x + 1, y + 1, z),     id(x, y + 1, z),
                      id(x, y, z + 1), id(x + 1, y, z + 1), id(x + 1, y + 1, z + 1), id(x, y + 1, z + 1)};
    constexpr int kFaces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                  {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    for (const auto& face : kFaces) all.push_back({c[face[0]], c[face[1]], c[face[2]], c[face[3]]});
  }

  int edge_;
};

double strip_faces(const SolidMesh& mesh, std::vector<int>& faces) {
  FmdBody* body = FMD_Create(mesh.node_count(), 1);
  for (int node = 1; node <= mesh.node_count(); ++node) FMD_AddNode(body, node);
  for (std::size_t corner = 0; corner < faces.size(); corner += 4) FMD_SetFaceList(body, 4, &faces[corner]);
  const double time = seconds([&] { FMD_StripCommonFaces(body); });
  int count = 0;
  int length = 0;
  FMD_FaceListSize(body, &count, &length);
  require(count == mesh.outer_faces() && length == 5 * count, "the outer faces are left");
  FMD_UnLink(body);
  return time;
}

struct Record {
  std::uint64_t key;
  std::uint64_t rest[5];
};
static_assert(sizeof(Record) == 48, "the size that is told");

double sort_records(int count) {
  std::mt19937_64 random(1);
  std::vector<Record> records(static_cast<std::size_t>(count));
  for (Record& record : records) record.key = random();
  const auto before = [](const Record& left, const Record& right) { return left.key < right.key; };
  const double time = seconds([&] { std::sort(records.begin(), records.end(), before); });
  require(std::is_sorted(records.begin(), records.end(), before), "the records are sorted");
  return time;
}

// A node as the library keeps it: its coordinates among its other data.
struct NodeRecord {
  std::int32_t id;
  double coordinates[3];
  double mass;
  double* inertia;
};
static_assert(sizeof(NodeRecord) == 48, "as large as a node of the library");

// Two nodes at a time, so that memory is what the time goes to and no chain of additions.
double sum_coordinates(const std::vector<NodeRecord>& nodes, double expected) {
  double total = 0.0;
  const double time = seconds([&] {
    const NodeRecord* end = nodes.data() + nodes.size();
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double other_x = 0.0;
    double other_y = 0.0;
    double other_z = 0.0;
    for (const NodeRecord* node = nodes.data(); node != end; node += 2) {
      x += node[0].coordinates[0];
      y += node[0].coordinates[1];
      z += node[0].coordinates[2];
      other_x += node[1].coordinates[0];
      other_y += node[1].coordinates[1];
      other_z += node[1].coordinates[2];
    }
    total = x + y + z + other_x + other_y + other_z;
  });
  require(std::fabs(total - expected) <= 1e-6 * expected, "the sum is right");
  return time;
}

void compare_stripping(int elements, int rounds) {
  const SolidMesh mesh(elements);
  for (const bool shuffled : {false, true}) {
    std::vector<int> faces = mesh.faces(shuffled);
    const fmdbench::Comparison comparison = fmdbench::compare(
        rounds, [&] { return sort_records(mesh.face_count()); }, [&] { return strip_faces(mesh, faces); });
    std::printf("job       stripping %d quadrilaterals, %s; peer: std::sort of as many records\n",
                mesh.face_count(), shuffled ? "in random order" : "element by element");
    fmdbench::report_time("common faces, against a sort", comparison, 4.0);
  }
}

void compare_search(int count, int rounds) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> place(0.0, 1.0);
  std::vector<NodeRecord> nodes(static_cast<std::size_t>(count));
  double total = 0.0;
  FmdBody* body = FMD_Create(count, 1);
  for (int node = 0; node < count; ++node) {
    NodeRecord& record = nodes[static_cast<std::size_t>(node)];
    for (double& coordinate : record.coordinates) total += coordinate = place(random);
    FMD_SetNodeCoordinates(body, node + 1, record.coordinates[0], record.coordinates[1],
                           record.coordinates[2]);
  }
  double point[3] = {-0.5, 0.3, 0.7};
  const auto distance = [&](const NodeRecord& node) {
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) sum += (node.coordinates[k] - point[k]) * (node.coordinates[k] - point[k]);
    return sum;
  };
  const auto nearest = std::min_element(nodes.begin(), nodes.end(), [&](const auto& left, const auto& right) {
    return distance(left) < distance(right);
  });
  const auto search = [&] {
    int found = -1;
    const double time = seconds([&] { found = FMD_ClosestNode(body, point, 0); });
    require(found == nearest - nodes.begin(), "the nearest node is found");
    return time;
  };
  const fmdbench::Comparison comparison = fmdbench::compare(
      rounds, [&] { return sum_coordinates(nodes, total); }, search);
  std::printf("job       nearest of %d nodes; peer: a sum of the coordinates of as many\n", count);
  const double bytes = 48.0 * count;
  fmdbench::report_rate("nearest node, against a sum", comparison, bytes, bytes, 0.5);
  FMD_UnLink(body);
}

}  // namespace

int main(int argc, char** argv) {
  const int elements = fmdbench::argument(argc, argv, 1, 55);
  const int nodes = fmdbench::argument(argc, argv, 2, 1000000);
  const int rounds = fmdbench::argument(argc, argv, 3, 7);
  fmdbench::print_environment();
  const fmdbench::Environment environment;
  compare_stripping(elements, rounds);
  compare_search(nodes / 2 * 2, 5 * rounds);
  return 0;
}
