// The options of a coarsening: numbers with one character between them, then perhaps a word.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_TRIM_OPTIONS_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_TRIM_OPTIONS_H

#include <cstdint>
#include <string_view>

namespace fmd {

// As written, out of range or not. What the text has no number for is 0.
struct TrimOptions {
  double resolution = 0.0;        // fraction of the diagonal
  double angle = 0.0;             // degrees
  bool removes_colinear = false;  // vertices on straight edges
  std::string_view preserved;     // node ids up to one that reads as 0, then the rest of the text
};

// Points into the text. "resolution,angle,flag,id,id ..."; any one character parts two numbers.
TrimOptions parse_trim_options(std::string_view text);

// Takes the next node id off the text; at 0, which ends the ids, the text keeps what follows the number. An
// id beyond all ids is -1.
std::int32_t take_preserved_id(std::string_view& preserved);

// Whether what is left after the ids asks for the nodes of stress and strain.
bool preserves_stress_nodes(std::string_view rest);

}  // namespace fmd

#endif
