// Numbers in the pages of a master file, which are little-endian as the machine is.
#ifndef FMDTOOLKIT_KDCDB_LITTLE_ENDIAN_H
#define FMDTOOLKIT_KDCDB_LITTLE_ENDIAN_H

#include <cstddef>
#include <cstring>

namespace kdcdb {

template <typename T>
void put(unsigned char* bytes, std::size_t offset, T value) {
  std::memcpy(bytes + offset, &value, sizeof value);
}

template <typename T>
T get(const unsigned char* bytes, std::size_t offset) {
  T value;
  std::memcpy(&value, bytes + offset, sizeof value);
  return value;
}

}  // namespace kdcdb

#endif
