// A merged polygon can touch itself: a corner appears twice, with a loop between the two. The shorter side of
// such a pinch goes when it is short enough.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_PINCHES_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_PINCHES_H

#include <cstdint>

#include "messages/memory.h"

namespace fmd {

// Room for one polygon at a time, and a table over the nodes that finds equal corners without comparing all.
class PinchRemoval {
 public:
  // False without memory.
  bool provide_nodes(std::int32_t nodes);

  // Drops short loops from the polygon; only corners with a record go. False without memory; the polygon is
  // then as it was.
  bool remove_pinches(std::int32_t* polygon, std::int32_t& length, const char* live);

 private:
  bool provide_places(std::int32_t length);
  bool find_repeats(const std::int32_t* polygon, std::int32_t length);
  void mark_side(const std::int32_t* polygon, std::int32_t length, std::int32_t first, std::int32_t last,
                 const char* live);
  void mark(const std::int32_t* polygon, std::int32_t from, std::int32_t to, const char* live);

  CArray<std::int32_t> last_place_;   // per node: a place in the polygon at hand; -1 between polygons
  CArray<std::int32_t> next_repeat_;  // per place: the next one with the same node; -1 none
  CArray<char> marked_;               // per place
  std::int32_t capacity_ = 0;         // places
};

}  // namespace fmd

#endif
