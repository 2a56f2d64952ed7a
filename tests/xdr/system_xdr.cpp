#include "xdr/system_xdr.h"

#include <rpc/types.h>
#include <rpc/xdr.h>

#include <cstdlib>

namespace fmdtest {

namespace {

template <typename T, typename Item>
Bytes encode(const std::vector<T>& values, Item item) {
  char room[8192];
  XDR codec;
  xdrmem_create(&codec, room, sizeof room, XDR_ENCODE);
  for (T value : values)
    if (item(&codec, &value) == 0) std::abort();
  const Bytes bytes(room, room + xdr_getpos(&codec));
  xdr_destroy(&codec);
  return bytes;
}

}  // namespace

Bytes system_xdr_ints(const std::vector<std::int32_t>& values) {
  return encode(values, xdr_int);
}
Bytes system_xdr_chars(const std::vector<char>& values) {
  return encode(values, xdr_char);
}
Bytes system_xdr_floats(const std::vector<float>& values) {
  return encode(values, xdr_float);
}
Bytes system_xdr_doubles(const std::vector<double>& values) {
  return encode(values, xdr_double);
}

}  // namespace fmdtest
