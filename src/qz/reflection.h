// What the stages of the generalized eigensolver share: matrices stored by columns, and the Householder
// reflections of two and three rows or columns of which the stages after the triangular form are made.
//
// The solver is the QZ algorithm of C. B. Moler and G. W. Stewart, "An algorithm for generalized matrix
// eigenvalue problems", SIAM J. Numer. Anal. 10 (1973). It works in place and allocates nothing; indices
// count from 0 inside it.
#ifndef FMDTOOLKIT_QZ_REFLECTION_H
#define FMDTOOLKIT_QZ_REFLECTION_H

#include <cmath>
#include <cstddef>
#include <optional>

namespace fmd::qz {

// Element (i, j) stands at data[j stride + i].
class Matrix {
 public:
  Matrix(double* data, int stride) : data_(data), stride_(static_cast<std::size_t>(stride)) {}
  double* column(int j) const { return data_ + static_cast<std::size_t>(j) * stride_; }
  double& operator()(int i, int j) const { return column(j)[i]; }

 private:
  double* data_;
  std::size_t stride_;
};

// I + v u^T with u1 = 1, which carries its vector to a multiple of the first axis.
struct Reflection2 {
  double u2, v1, v2;
};
struct Reflection3 {
  double u2, u3, v1, v2, v3;
};

// The reflection that carries (x1, x2) to (-r, 0) with |r| its length and the sign of x1; none for a null
// vector. The sum of magnitudes keeps the squares in range.
inline std::optional<Reflection2> reflection_of(double x1, double x2) {
  const double scale = std::fabs(x1) + std::fabs(x2);
  if (scale == 0.0) return std::nullopt;
  const double u1 = x1 / scale;
  const double u2 = x2 / scale;
  const double r = std::copysign(std::sqrt(u1 * u1 + u2 * u2), u1);
  const double v1 = -(u1 + r) / r;
  const double v2 = -u2 / r;
  return Reflection2{v2 / v1, v1, v2};
}

inline std::optional<Reflection3> reflection_of(double x1, double x2, double x3) {
  const double scale = std::fabs(x1) + std::fabs(x2) + std::fabs(x3);
  if (scale == 0.0) return std::nullopt;
  const double u1 = x1 / scale;
  const double u2 = x2 / scale;
  const double u3 = x3 / scale;
  const double r = std::copysign(std::sqrt(u1 * u1 + u2 * u2 + u3 * u3), u1);
  const double v1 = -(u1 + r) / r;
  const double v2 = -u2 / r;
  const double v3 = -u3 / r;
  return Reflection3{v2 / v1, v3 / v1, v1, v2, v3};
}

// Rows row, row + 1 (and row + 2) in the columns from first until end.
void reflect_rows(const Reflection2& h, const Matrix& m, int row, int first, int end);
void reflect_rows(const Reflection3& h, const Matrix& m, int row, int first, int end);

// Columns column, column + 1 (and column + 2) in the rows from first until end. The last of the columns is
// the first axis of the reflection, as an element left of the diagonal is what it removes.
void reflect_columns(const Reflection2& h, const Matrix& m, int column, int first, int end);
void reflect_columns(const Reflection3& h, const Matrix& m, int column, int first, int end);

}  // namespace fmd::qz

#endif
