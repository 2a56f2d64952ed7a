// Reflections of neighbouring rows and columns. Both run over whole columns: a row reflection takes two or
// three elements that lie together in each column, a column reflection runs down its columns side by side.
#include "qz/reflection.h"

namespace fmd::qz {

void reflect_rows(const Reflection2& h, const Matrix& m, int row, int first, int end) {
  for (int j = first; j < end; ++j) {
    double* const x = m.column(j) + row;
    const double t = x[0] + h.u2 * x[1];
    x[0] += t * h.v1;
    x[1] += t * h.v2;
  }
}

void reflect_rows(const Reflection3& h, const Matrix& m, int row, int first, int end) {
  for (int j = first; j < end; ++j) {
    double* const x = m.column(j) + row;
    const double t = x[0] + h.u2 * x[1] + h.u3 * x[2];
    x[0] += t * h.v1;
    x[1] += t * h.v2;
    x[2] += t * h.v3;
  }
}

void reflect_columns(const Reflection2& h, const Matrix& m, int column, int first, int end) {
  double* __restrict const x1 = m.column(column + 1);
  double* __restrict const x2 = m.column(column);
  for (int i = first; i < end; ++i) {
    const double t = x1[i] + h.u2 * x2[i];
    x1[i] += t * h.v1;
    x2[i] += t * h.v2;
  }
}

void reflect_columns(const Reflection3& h, const Matrix& m, int column, int first, int end) {
  double* __restrict const x1 = m.column(column + 2);
  double* __restrict const x2 = m.column(column + 1);
  double* __restrict const x3 = m.column(column);
  for (int i = first; i < end; ++i) {
    const double t = x1[i] + h.u2 * x2[i] + h.u3 * x3[i];
    x1[i] += t * h.v1;
    x2[i] += t * h.v2;
    x3[i] += t * h.v3;
  }
}

}  // namespace fmd::qz
