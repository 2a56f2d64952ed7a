// Comparison and search by the first int of an entry, for hosts and for tables that they own.
#include <cstdlib>

#include "fmdtoolkit/fmdtoolkit.h"

int By_Id(const void* left, const void* right) {
  const int a = *static_cast<const int*>(left);
  const int b = *static_cast<const int*>(right);
  return a < b ? -1 : (a == b ? 0 : 1);
}

int SelectedModeIndex(int number, int* selected, int count) {
  if (count < 1) return -1;
  const void* const found =
      std::bsearch(&number, selected, static_cast<std::size_t>(count), sizeof(int), By_Id);
  return found == nullptr ? -1 : static_cast<int>(static_cast<const int*>(found) - selected);
}
