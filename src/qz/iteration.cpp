// Second stage: QZ steps with implicit single and double shifts, which carry the Hessenberg matrix A to
// quasi-triangular form while B stays triangular.
//
// A block of rows top..last is worked on at a time, split off the rest by negligible elements below the
// diagonal of A. It shrinks from its bottom: a block of one or two rows is left behind and last moves up.
#include <fmdtoolkit/fmdtoolkit.h>

#include <algorithm>
#include <cstdint>

#include "qz/reflection.h"

namespace {

using fmd::qz::Matrix;
using fmd::qz::reflect_columns;
using fmd::qz::reflect_rows;
using fmd::qz::reflection_of;

// The largest sum of magnitudes over the rows of a triangle with so many diagonals below the main one.
double largest_row_sum(const Matrix& m, int n, int diagonals_below) {
  double largest = 0.0;
  for (int i = 0; i < n; ++i) {
    double sum = 0.0;
    for (int j = std::max(0, i - diagonals_below); j < n; ++j) sum += std::fabs(m(i, j));
    if (sum > largest) largest = sum;
  }
  return largest == 0.0 ? 1.0 : largest;
}

// Where a step begins and the first column of the shifted product there, three elements of it for a double
// shift and two for a single one.
struct Start {
  int row;
  bool is_double;
  double x1, x2, x3;
};

// The last two rows of A B^-1, which give the shifts.
struct Corner {
  double a33, a34, a43, a44, b34;
};

class Iteration {
 public:
  Iteration(const Matrix& a, const Matrix& b, const Matrix* z, int n, double tolerance)
      : a_(a),
        b_(b),
        z_(z),
        n_(n),
        last_(n - 1),
        small_a_(tolerance * largest_row_sum(a, n, 1)),
        small_b_(tolerance * largest_row_sum(b, n, 0)),
        budget_(std::int64_t{30} * n) {}

  // 0, or the number from 1 of the eigenvalue at which the budget was spent.
  int run() {
    while (last_ > 1)
      if (!split_bottom()) return last_ + 1;
    return 0;
  }

  double small_b() const { return small_b_; }

 private:
  bool split_bottom();
  int unreduced_top() const;
  int settle_top(int top);
  void remove_top_of_b(int row);
  bool is_split(int top) const { return top >= last_ - 1; }
  bool choose_start(int* top, int step, Start* start);
  Corner corner() const;
  double diagonal_of_b(int i) const { return std::fabs(b_(i, i)) < small_b_ ? small_b_ : b_(i, i); }
  int single_shift_row(int top, double shift) const;
  Start double_shift(int top, const Corner& corner) const;
  void sweep(int top, const Start& start);
  bool reflect_three(int k, const Start& start, int first_row);
  bool reflect_two(int k, const Start& start);
  void remove_below_diagonal(int k, int first_row, int end_row);
  // Without vectors only the block itself matters.
  int end_column() const { return z_ != nullptr ? n_ : last_ + 1; }

  Matrix a_;
  Matrix b_;
  const Matrix* z_;  // null without vectors
  int n_;
  int last_;
  double small_a_;
  double small_b_;
  std::int64_t budget_;  // steps left for the whole matrix
};

// Works until one or two rows split off at the bottom; false when the budget is spent.
bool Iteration::split_bottom() {
  for (int step = 0;; ++step) {
    int top = settle_top(unreduced_top());
    if (!is_split(top)) {
      if (budget_ == 0) return false;
      Start start;
      if (choose_start(&top, step, &start)) {
        --budget_;
        sweep(top, start);
        continue;
      }
    }
    last_ = top - 1;
    return true;
  }
}

// The first row of the block that ends at the last row.
int Iteration::unreduced_top() const {
  int top = last_;
  while (top > 0 && !(std::fabs(a_(top, top - 1)) <= small_a_)) --top;
  return top;
}

// Cuts the block at its top, and further down for as long as its first diagonal element of B is negligible.
// The new top; the block is finished if it leaves two rows or less.
int Iteration::settle_top(int top) {
  for (;; ++top) {
    if (top > 0) a_(top, top - 1) = 0.0;
    if (is_split(top)) return top;
    if (std::fabs(b_(top, top)) > small_b_) return top;
    remove_top_of_b(top);
  }
}

// An infinite eigenvalue: with b(row, row) zero the two rows can be combined so that a(row + 1, row)
// vanishes.
void Iteration::remove_top_of_b(int row) {
  b_(row, row) = 0.0;
  if (const auto h = reflection_of(a_(row, row), a_(row + 1, row))) {
    reflect_rows(*h, a_, row, row, end_column());
    reflect_rows(*h, b_, row, row, end_column());
  }
  if (row > 0) a_(row, row - 1) = -a_(row, row - 1);
}

Corner Iteration::corner() const {
  const int en = last_;
  const int na = last_ - 1;
  const double b33 = diagonal_of_b(na);
  const double b44 = diagonal_of_b(en);
  return {a_(na, na) / b33, a_(na, en) / b44, a_(en, na) / b33, a_(en, en) / b44, b_(na, en) / b44};
}

// False when looking for the row to begin at has split the block, whose new top is then in *top.
bool Iteration::choose_start(int* top, int step, Start* start) {
  if (step == 10) {
    *start = {*top, true, 0.0, 1.0, 1.1605};
    return true;
  }
  const Corner c = corner();
  const double t = 0.5 * (c.a43 * c.b34 - c.a33 - c.a44);
  const double r = t * t + c.a34 * c.a43 - c.a33 * c.a44;
  if (r < 0.0) {
    *start = double_shift(*top, c);
    return true;
  }
  // Both shifts are real: the one nearer to the last element.
  const double root = std::sqrt(r);
  double shift = -t + root;
  const double other = -t - root;
  if (std::fabs(other - c.a44) < std::fabs(shift - c.a44)) shift = other;

  int row = single_shift_row(*top, shift);
  if (row != *top && !(std::fabs(b_(row, row)) > small_b_)) {
    remove_top_of_b(row);
    row = *top = settle_top(row + 1);
    if (is_split(row)) return false;
  }
  const double b11 = b_(row, row);
  *start = {row, false, a_(row, row) / b11 - shift, a_(row + 1, row) / b11, 0.0};
  return true;
}

// The lowest row at which two small elements of A in succession let a single-shift step begin.
int Iteration::single_shift_row(int top, double shift) const {
  for (int row = last_ - 2; row > top; --row) {
    double t = a_(row, row);
    if (std::fabs(b_(row, row)) > small_b_) t -= shift * b_(row, row);
    if (std::fabs(a_(row, row - 1)) <= std::fabs(t / a_(row + 1, row)) * small_a_) return row;
  }
  return top;
}

// The first column of (A B^-1 - s1)(A B^-1 - s2), up to a factor.
Start Iteration::double_shift(int top, const Corner& c) const {
  const double b11 = b_(top, top);
  const double b22 = diagonal_of_b(top + 1);
  const double a11 = a_(top, top) / b11;
  const double a21 = a_(top + 1, top) / b11;
  const double a12 = a_(top, top + 1) / b22;
  const double a22 = a_(top + 1, top + 1) / b22;
  const double b12 = b_(top, top + 1) / b22;
  const double product = (c.a33 - a11) * (c.a44 - a11) - c.a34 * c.a43 + c.a43 * c.b34 * a11;
  return {top, true, product / a21 + a12 - a11 * b12,
          (a22 - a11) - a21 * b12 - (c.a33 - a11) - (c.a44 - a11) + c.a43 * c.b34,
          a_(top + 2, top + 1) / b22};
}

// One QZ step: pushes the bulge that the first reflection makes down the block and out of it.
void Iteration::sweep(int top, const Start& start) {
  const int first_row = z_ != nullptr ? 0 : top;
  if (!start.is_double && start.row != top) a_(start.row, start.row - 1) = -a_(start.row, start.row - 1);
  for (int k = start.row; k < last_; ++k) {
    if (start.is_double && k != last_ - 1) {
      if (!reflect_three(k, start, first_row)) continue;
    } else if (!reflect_two(k, start)) {
      return;
    }
    remove_below_diagonal(k, first_row, std::min(last_ + 1, k + (start.is_double ? 4 : 3)));
  }
}

// Rows k to k + 2: removes a(k + 1, k - 1) and a(k + 2, k - 1), then b(k + 2, k) and b(k + 2, k + 1). False
// if there was nothing to remove.
bool Iteration::reflect_three(int k, const Start& start, int first_row) {
  const bool is_first = k == start.row;
  const auto rows = is_first ? reflection_of(start.x1, start.x2, start.x3)
                             : reflection_of(a_(k, k - 1), a_(k + 1, k - 1), a_(k + 2, k - 1));
  if (!rows) return false;
  const int first_column = is_first ? k : k - 1;
  reflect_rows(*rows, a_, k, first_column, end_column());
  reflect_rows(*rows, b_, k, first_column, end_column());
  if (!is_first) a_(k + 1, k - 1) = a_(k + 2, k - 1) = 0.0;

  const auto columns = reflection_of(b_(k + 2, k + 2), b_(k + 2, k + 1), b_(k + 2, k));
  if (!columns) return true;
  const int end_row = std::min(last_ + 1, k + 4);
  reflect_columns(*columns, a_, k, first_row, end_row);
  reflect_columns(*columns, b_, k, first_row, end_row);
  b_(k + 2, k) = b_(k + 2, k + 1) = 0.0;
  if (z_ != nullptr) reflect_columns(*columns, *z_, k, 0, n_);
  return true;
}

// Rows k and k + 1: removes a(k + 1, k - 1). False if there was nothing to remove.
bool Iteration::reflect_two(int k, const Start& start) {
  const bool is_first = k == start.row;
  const auto rows =
      is_first ? reflection_of(start.x1, start.x2) : reflection_of(a_(k, k - 1), a_(k + 1, k - 1));
  if (!rows) return false;
  const int first_column = is_first ? k : k - 1;
  reflect_rows(*rows, a_, k, first_column, end_column());
  reflect_rows(*rows, b_, k, first_column, end_column());
  if (!is_first) a_(k + 1, k - 1) = 0.0;
  return true;
}

// Removes b(k + 1, k) by columns k and k + 1.
void Iteration::remove_below_diagonal(int k, int first_row, int end_row) {
  const auto columns = reflection_of(b_(k + 1, k + 1), b_(k + 1, k));
  if (!columns) return;
  reflect_columns(*columns, a_, k, first_row, end_row);
  reflect_columns(*columns, b_, k, first_row, end_row);
  b_(k + 1, k) = 0.0;
  if (z_ != nullptr) reflect_columns(*columns, *z_, k, 0, n_);
}

}  // namespace

void FMD_QZITT(int* nm, int* n, double* a, double* b, double* eps1, int* matz, double* z, int* ierr) {
  const Matrix mass(b, *nm);
  const Matrix vectors(z, *nm);
  double tolerance = *eps1;
  if (!(tolerance > 0.0)) {
    tolerance = 1.0;
    EIGPSN(&tolerance);
  }
  Iteration iteration(Matrix(a, *nm), mass, *matz != 0 ? &vectors : nullptr, *n, tolerance);
  *ierr = iteration.run();
  if (*n >= 2) mass(*n - 1, 0) = iteration.small_b();
}
