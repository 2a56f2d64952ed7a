// Values at the ends of their ranges, for comparing encodings.
#ifndef FMDTOOLKIT_TESTS_XDR_SAMPLE_VALUES_H
#define FMDTOOLKIT_TESTS_XDR_SAMPLE_VALUES_H

#include <cstdint>
#include <limits>
#include <vector>

namespace fmdtest {

inline std::vector<std::int32_t> sample_ints() {
  return {0,
          1,
          -1,
          0x01020304,
          -2,
          std::numeric_limits<std::int32_t>::max(),
          std::numeric_limits<std::int32_t>::min()};
}

inline std::vector<char> all_chars() {
  std::vector<char> values;
  for (int c = 0; c < 256; ++c) values.push_back(static_cast<char>(c));
  return values;
}

inline std::vector<double> sample_doubles() {
  using Limits = std::numeric_limits<double>;
  return {0.0,
          -0.0,
          1.0,
          -2.5,
          3.141592653589793,
          1e-310,
          Limits::max(),
          Limits::lowest(),
          Limits::min(),
          Limits::infinity(),
          -Limits::infinity(),
          1.0 / 3.0,
          123456789.0};
}

inline std::vector<float> sample_floats() {
  using Limits = std::numeric_limits<float>;
  return {0.0F,
          -0.0F,
          1.0F,
          -2.5F,
          3.1415927F,
          1e-40F,
          Limits::max(),
          Limits::lowest(),
          Limits::min(),
          Limits::infinity(),
          -Limits::infinity()};
}

}  // namespace fmdtest

#endif
