// The headers compile as C++17 and give the functions C linkage: a C++ host links to the same names.
#include <fmdtoolkit/extensions.h>
#include <fmdtoolkit/fmdtoolkit.h>
#include <fmdtoolkit/free_edges.h>

#include <type_traits>

static_assert(std::is_trivially_copyable_v<FmdStream>, "a stream travels by value");
static_assert(std::is_standard_layout_v<FmdPosition>, "a position is plain data");
static_assert(sizeof(FmdStream) == 72, "C and C++ agree on the record stream");

extern "C" int body_lookup_from_cpp(FmdBody* body) {
  return FMD_IsValid(body);
}

// The classes are called through the library, too; a triangle has one closed outline of four entries.
extern "C" int outline_of_a_triangle_from_cpp() {
  int triangle[] = {3, 1, 2, 3};
  cFMDFreeEdges run;
  run.FindFreeEdges(1, triangle);
  const auto chains = run.GetFreeEdges();
  cFMDNode one(1);
  cFMDNode two(2);
  const cFMDEdge edge(&one, &two);
  return chains.size() == 1 && edge.GetAnotherNode(&one) == &two ? static_cast<int>(chains.front().size())
                                                                 : 0;
}
