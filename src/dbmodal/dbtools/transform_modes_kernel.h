// New modes as sums over old ones: value v of new mode c is the sum over a, ascending from 0.0, of T(a, c)
// times value v of old mode a, where terms with T(a, c) equal to 0.0 are left out. Each product and each
// addition is rounded by itself. This defines the result, to the last bit, whatever the vector unit.
//
// Rows are packed so that the sums of a strip run in registers from the nearest cache (Goto and van de Geijn,
// "Anatomy of high-performance matrix multiplication", ACM Transactions on Mathematical Software 34, 2008).
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_TRANSFORM_MODES_KERNEL_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_TRANSFORM_MODES_KERNEL_H

#include <cstdint>

#include "dbmodal/dbtools/transform_modes_block.h"
#include "messages/memory.h"
#include "system/vector_unit.h"

namespace fmd {

// The product with one matrix.
class ModeProduct {
 public:
  // T is modes by modes, row by row, and stays where it is; its first columns are wanted. False where there
  // is no memory; says nothing.
  bool prepare(VectorUnit unit, const double* matrix, int modes, int columns);

  // Takes so many values of each old mode and puts those of the new modes, which come first, in their place.
  // What is behind the last new mode keeps its values.
  void transform(double* const* pieces, std::int64_t values);

 private:
  bool make_groups(int width);
  void fill_group(ColumnGroup& group, int width, double* coefficients, int* modes) const;
  void transform_plainly(const RowBlock& block) const;

  const double* matrix_ = nullptr;
  int modes_ = 0;
  int columns_ = 0;
  TransformBlock transform_block_ = nullptr;
  int group_count_ = 0;
  CArray<ColumnGroup> groups_;
  CArray<double> coefficients_;
  CArray<int> group_modes_;
  CArray<double> packed_;
};

// sum += t times values
void add_multiple(double t, const double* values, std::int64_t count, double* sum);

}  // namespace fmd

#endif
