// Meshes to coarsen: plates flat and folded, spheres, and what damages them.
#ifndef FMDTOOLKIT_TESTS_COARSEN_MESHES_H
#define FMDTOOLKIT_TESTS_COARSEN_MESHES_H

#include <random>

#include "dbmodal/coarsen_model.h"

namespace fmdtest {

// Squares of edge 1 in the plane z = 0, row by row; node x + (columns + 1) y stands at (x, y).
Mesh make_plate(int columns, int rows);

class MeshMaker {
 public:
  explicit MeshMaker(unsigned seed) : random_(seed) {}

  // A mesh of one of the kinds, with some of the rest done to it.
  Mesh make();
  CoarsenSettings make_settings(const Mesh& mesh);

  // Moves inner nodes of a plate within its plane, splits some faces, turns some over, numbers all anew.
  void disturb_in_plane(Mesh& mesh, int columns, int rows);

  int whole(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

 private:
  double real(double from, double to) { return std::uniform_real_distribution<double>(from, to)(random_); }
  bool once_in(int times) { return whole(1, times) == 1; }
  std::vector<int>& any_face(Mesh& mesh);

  Mesh sphere(int around, int up);
  void fold(Mesh& mesh);
  void shake(Mesh& mesh, double most);
  void split_faces(Mesh& mesh);
  void turn_faces(Mesh& mesh);
  void number_anew(Mesh& mesh);
  void repeat_nodes(Mesh& mesh);
  void add_tiny_faces(Mesh& mesh);
  void repeat_faces(Mesh& mesh);
  void join_points(Mesh& mesh);

  std::mt19937 random_;
};

}  // namespace fmdtest

#endif
