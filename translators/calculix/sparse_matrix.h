// A symmetric sparse matrix as its upper triangle, column by column.
#ifndef FMDTOOLKIT_CALCULIX_SPARSE_MATRIX_H
#define FMDTOOLKIT_CALCULIX_SPARSE_MATRIX_H

#include <vector>

namespace calculix {

// Column c has the entries from starts[c] to starts[c + 1]: rows ascending, the last one on the diagonal.
struct SymmetricMatrix {
  int size = 0;
  std::vector<int> starts;  // size + 1
  std::vector<int> rows;
  std::vector<double> values;
};

}  // namespace calculix

#endif
