// A named stack of labelled rows with tagged sub-matrices of the same row count.
#ifndef FMDTOOLKIT_BODY_MATRIX_OPERATOR_H
#define FMDTOOLKIT_BODY_MATRIX_OPERATOR_H

#include <cstdint>

struct FmdSubOperator {
  char tag[8];
  std::int32_t columnCount;
  double* data;  // rows by columnCount, in the caller's order
};

struct FmdMatrixOperator {
  char name[80];
  char** rowLabels;  // rowCount texts of 80 bytes
  std::int32_t rowCount;
  std::int32_t subOperatorCount;
  std::int32_t subOperatorCapacity;
  FmdSubOperator** subOperators;
};

#endif
