// The headers compile as C++17 and give the functions C linkage: a C++ host links to the same names.
#include <fmdtoolkit/extensions.h>
#include <fmdtoolkit/fmdtoolkit.h>

#include <type_traits>

static_assert(std::is_trivially_copyable_v<FmdStream>, "a stream travels by value");
static_assert(std::is_standard_layout_v<FmdPosition>, "a position is plain data");
static_assert(sizeof(FmdStream) == 72, "C and C++ agree on the record stream");

extern "C" int body_lookup_from_cpp(FmdBody* body) {
  return FMD_IsValid(body);
}
