// The write options: a pure function from the option text to a plain record, and the version word and the
// conflicts that follow from it.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_OPTIONS_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_OPTIONS_H

#include <cstdint>
#include <string_view>

namespace fmd {

// Views point into the option text.
struct WriteOptions {
  bool shift_to_center_of_mass = false;  // lbrf2cm
  std::string_view sketch;               // sketch(file), empty when absent
  bool strip_faces = false;              // strip_face
  std::string_view coarsen;              // coarsen(arguments), empty when absent
  bool sparse_stress = false;            // sparse_str
  bool no_ortho = false;                 // no_ortho
  bool full_stress = false;              // full_str
  bool single_precision = false;         // single
  bool native = false;                   // no_xdr
  bool level_20 = false;                 // 82_comp
  bool level_10 = false;                 // 81_comp
  double highest_frequency = 1.0e8;      // lowpass(f), Hz
  double lowest_frequency = -1.0;        // highpass(f), Hz
  bool invariants = false;               // invar, also inside the next two
  bool full_invariants = false;          // full_invar
  bool fast_invariants = false;          // fast_invar
  bool empty = false;                    // empty
  bool mks = false;                      // MKS
};

// Each option is looked for as a plain substring; a null text holds none.
WriteOptions parse_write_options(const char* text);

struct VersionChoice {
  std::uint32_t word = 0;
  int conflict_count = 0;
  const char* conflicts[7] = {};
};

VersionChoice choose_version(const WriteOptions& options);

}  // namespace fmd

#endif
