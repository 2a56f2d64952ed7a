// What the system's XDR library writes for the same values: the independent source of expected bytes.
#ifndef FMDTOOLKIT_TESTS_XDR_SYSTEM_XDR_H
#define FMDTOOLKIT_TESTS_XDR_SYSTEM_XDR_H

#include <cstdint>
#include <vector>

namespace fmdtest {

using Bytes = std::vector<unsigned char>;

Bytes system_xdr_ints(const std::vector<std::int32_t>& values);
Bytes system_xdr_chars(const std::vector<char>& values);
Bytes system_xdr_floats(const std::vector<float>& values);
Bytes system_xdr_doubles(const std::vector<double>& values);

}  // namespace fmdtest

#endif
