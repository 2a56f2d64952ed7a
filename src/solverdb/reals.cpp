// Between single and double precision, and 64-bit positions in stdio files for hosts.
#include <cstdio>

#include "fmdtoolkit/fmdtoolkit.h"

// From the last to the first, so that both may start at one address.
double* float2double(double* to, const float* from, int n) {
  for (int i = n - 1; i >= 0; --i) to[i] = static_cast<double>(from[i]);
  return to;
}

float* double2float(float* to, const double* from, int n) {
  for (int i = 0; i < n; ++i) to[i] = static_cast<float>(from[i]);
  return to;
}

int FileSeek_Win32(FILE* file, long long offset, int origin) {
  fpos_t position;
  if (origin == 2 && std::fseek(file, 0, SEEK_END) != 0) return 1;
  if (std::fgetpos(file, &position) != 0) return 1;
  position.__pos = origin == 0 ? offset : position.__pos + offset;
  return std::fsetpos(file, &position);
}

long long FileTell_Win32(FILE* file) {
  fpos_t position;
  return std::fgetpos(file, &position) == 0 ? position.__pos : -1;
}
