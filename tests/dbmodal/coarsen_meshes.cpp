#include "dbmodal/coarsen_meshes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace fmdtest {

namespace {

std::size_t at(int value) {
  return static_cast<std::size_t>(value);
}

int node_count(const Mesh& mesh) {
  return static_cast<int>(mesh.points.size());
}

}  // namespace

Mesh make_plate(int columns, int rows) {
  Mesh mesh;
  for (int y = 0; y <= rows; ++y)
    for (int x = 0; x <= columns; ++x) mesh.points.push_back({double(x), double(y), 0.0});
  for (int y = 0; y < rows; ++y)
    for (int x = 0; x < columns; ++x) {
      const int first = x + (columns + 1) * y;
      mesh.faces.push_back({first, first + 1, first + columns + 2, first + columns + 1});
    }
  return mesh;
}

std::vector<int>& MeshMaker::any_face(Mesh& mesh) {
  return mesh.faces[at(whole(0, static_cast<int>(mesh.faces.size()) - 1))];
}

// Circles of latitude with a pole at either end, around which there are triangles.
Mesh MeshMaker::sphere(int around, int up) {
  constexpr double kPi = 3.14159265358979323846;
  Mesh mesh;
  mesh.points.push_back({0, 0, -1});
  for (int level = 1; level < up; ++level)
    for (int k = 0; k < around; ++k) {
      const double latitude = kPi * level / up - kPi / 2;
      const double longitude = 2 * kPi * k / around;
      mesh.points.push_back({std::cos(latitude) * std::cos(longitude),
                             std::cos(latitude) * std::sin(longitude), std::sin(latitude)});
    }
  mesh.points.push_back({0, 0, 1});
  const int top = node_count(mesh) - 1;
  const auto node = [&](int level, int k) { return 1 + (level - 1) * around + k % around; };
  for (int k = 0; k < around; ++k) {
    mesh.faces.push_back({0, node(1, k + 1), node(1, k)});
    for (int level = 1; level < up - 1; ++level)
      mesh.faces.push_back({node(level, k), node(level, k + 1), node(level + 1, k + 1), node(level + 1, k)});
    mesh.faces.push_back({top, node(up - 1, k), node(up - 1, k + 1)});
  }
  return mesh;
}

void MeshMaker::fold(Mesh& mesh) {
  const double line = real(1, 4);
  const double slope = real(0.05, 1.0);
  for (auto& point : mesh.points) point[2] = slope * std::max(0.0, point[0] - line);
}

void MeshMaker::shake(Mesh& mesh, double most) {
  for (auto& point : mesh.points)
    for (double& coordinate : point) coordinate += real(-most, most);
}

void MeshMaker::split_faces(Mesh& mesh) {
  Faces split;
  const int rarity = whole(1, 4);
  for (const std::vector<int>& face : mesh.faces) {
    if (face.size() != 4 || !once_in(rarity)) {
      split.push_back(face);
    } else if (once_in(2)) {
      split.push_back({face[0], face[1], face[2]});
      split.push_back({face[0], face[2], face[3]});
    } else {
      split.push_back({face[1], face[2], face[3]});
      split.push_back({face[1], face[3], face[0]});
    }
  }
  mesh.faces = split;
}

void MeshMaker::turn_faces(Mesh& mesh) {
  for (std::vector<int>& face : mesh.faces) {
    if (once_in(3)) std::reverse(face.begin(), face.end());
    std::rotate(face.begin(), face.begin() + whole(0, static_cast<int>(face.size()) - 1), face.end());
  }
}

void MeshMaker::number_anew(Mesh& mesh) {
  std::vector<int> number(mesh.points.size());
  std::iota(number.begin(), number.end(), 0);
  std::shuffle(number.begin(), number.end(), random_);
  std::vector<std::array<double, 3>> points(mesh.points.size());
  for (std::size_t node = 0; node < points.size(); ++node) points[at(number[node])] = mesh.points[node];
  mesh.points = points;
  for (std::vector<int>& face : mesh.faces)
    for (int& corner : face) corner = number[at(corner)];
  std::shuffle(mesh.faces.begin(), mesh.faces.end(), random_);
}

void MeshMaker::disturb_in_plane(Mesh& mesh, int columns, int rows) {
  for (auto& point : mesh.points) {
    const bool on_rim = point[0] == 0 || point[0] == columns || point[1] == 0 || point[1] == rows;
    if (on_rim) continue;
    point[0] += real(-0.2, 0.2);
    point[1] += real(-0.2, 0.2);
  }
  split_faces(mesh);
  turn_faces(mesh);
  number_anew(mesh);
}

void MeshMaker::repeat_nodes(Mesh& mesh) {
  for (int times = whole(1, 8); times > 0; --times) {
    std::vector<int>& face = any_face(mesh);
    const int last = static_cast<int>(face.size()) - 1;
    const int node = face[at(whole(0, last))];
    if (once_in(2)) {
      face[at(whole(0, last))] = node;
    } else {
      face.insert(face.begin() + whole(0, last), node);
    }
  }
}

void MeshMaker::add_tiny_faces(Mesh& mesh) {
  const int last = node_count(mesh) - 1;
  for (int times = whole(1, 4); times > 0; --times) {
    std::vector<int> face(at(whole(0, 2)));
    for (int& corner : face) corner = whole(0, last);
    mesh.faces.insert(mesh.faces.begin() + whole(0, static_cast<int>(mesh.faces.size())), face);
  }
}

void MeshMaker::repeat_faces(Mesh& mesh) {
  for (int times = whole(1, 5); times > 0; --times) {
    const std::vector<int> face = any_face(mesh);
    mesh.faces.insert(mesh.faces.begin() + whole(0, static_cast<int>(mesh.faces.size())), face);
  }
}

void MeshMaker::join_points(Mesh& mesh) {
  const int last = node_count(mesh) - 1;
  for (int times = whole(1, 5); times > 0; --times)
    mesh.points[at(whole(0, last))] = mesh.points[at(whole(0, last))];
}

Mesh MeshMaker::make() {
  Mesh mesh = once_in(4) ? sphere(whole(3, 16), whole(3, 12)) : make_plate(whole(1, 14), whole(1, 9));
  if (once_in(3)) fold(mesh);
  if (once_in(2)) split_faces(mesh);
  if (once_in(2)) turn_faces(mesh);
  if (!once_in(3)) number_anew(mesh);
  if (once_in(2)) shake(mesh, real(0.0, 0.3));
  if (once_in(3)) repeat_faces(mesh);
  if (once_in(3)) repeat_nodes(mesh);
  if (once_in(4)) join_points(mesh);
  if (once_in(4)) add_tiny_faces(mesh);
  return mesh;
}

CoarsenSettings MeshMaker::make_settings(const Mesh& mesh) {
  CoarsenSettings settings;
  settings.resolution = real(0.05, 0.5);
  settings.angle = real(0.5, 45.0);
  settings.removes_colinear = once_in(2);
  if (once_in(2)) {
    for (int times = whole(0, 6); times > 0; --times)
      settings.preserved.insert(whole(0, node_count(mesh) - 1));
  }
  return settings;
}

}  // namespace fmdtest
