// Storing mode vectors, node by node in any order, in the fixed slots of the temporary mode files.
#include <cstdint>
#include <limits>

#include "body/body.h"
#include "dbmodal/dbdata/mode_vector.h"
#include "dbmodal/dbset/mode_file.h"
#include "dbmodal/dbset/mode_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Where a node's values of a mode go.
struct ModePlace {
  int mode_index;
  int row;
};

constexpr int kByteOfType[TOTAL_MODE_INFO_TYPES] = {kModeShapes, kModalStress, kModalStrain};

// Looks up mode and node, which are added where they are new, and sees to the file of the type.
bool find_place(FmdBody& body, int mode, int node, int type, ModePlace& place) {
  if (!is_mode_info_type(type)) return false;
  place.mode_index = FMD_LookupOrAddMode(&body, mode);
  if (place.mode_index < 0 || !provide_mode_file(body, type)) return false;
  place.row = FMD_LookupOrAddNode(&body, node);
  if (place.row >= 0 && type != kShape) place.row = lookup_or_add_mode_node(body, type, place.row);
  return place.row >= 0;
}

// A double counts two words of a slot whatever the precision of the stream. A place beyond the slot is one in
// the slot of the next mode; after the last slot the seek fails.
bool seek_value(const FmdBody& body, int type, const ModePlace& place, int dof) {
  const std::int64_t words = (static_cast<std::int64_t>(place.row) * kValuesPerNode + dof) * 2;
  const FmdPosition* positions = body.ModePositions[type];
  if (positions == nullptr || words < 0 || words > std::numeric_limits<int>::max()) return false;
  const FmdStream& stream = body.ModeFile[type];
  return DB_FRESTORE(&positions[place.mode_index], stream) != 0 &&
         DB_SeekFWD(stream, static_cast<int>(words)) != 0;
}

// A stream in single precision narrows through a buffer that the body need not have yet.
bool write_values(FmdBody& body, int type, const double* values, int count) {
  FmdStream& stream = body.ModeFile[type];
  if (stream.DoublePrecision != 0) {
    if (DB_WriteDOUBLEs(stream, values, count) == 0) return false;
  } else {
    float narrowed[kValuesPerNode];
    FmdStream narrowing = stream;
    narrowing.FloatBuffer = narrowed;
    if (DB_WriteDOUBLEs(narrowing, values, count) == 0) return false;
  }
  body.BlockExists[kByteOfType[type]] = 1;
  return true;
}

}  // namespace

}  // namespace fmd

int FMD_SetModeVec(FmdBody* body, int mode, int node, int type, double* values) {
  if (CheckFMD(body) == 0) return 0;
  if (fmd::is_pseudo_mode(mode, type)) {
    return type == fmd::kStress ? FMD_SetPreStressVec(body, node, values)
                                : FMD_SetPreStrainVec(body, node, values);
  }
  fmd::ModePlace place;
  if (!fmd::find_place(*body, mode, node, type, place)) return 0;
  if (!fmd::seek_value(*body, type, place, 0)) {
    FMD_Error("Couldn't seek to mode %ld node %ld position in temporary file", static_cast<long>(mode),
              static_cast<long>(node));
    return 0;
  }
  return fmd::write_values(*body, type, values, fmd::kValuesPerNode) ? 1 : 0;
}

int FMD_SetMode(FmdBody* body, int mode, int node, int type, double v1, double v2, double v3, double v4,
                double v5, double v6) {
  double values[fmd::kValuesPerNode] = {v1, v2, v3, v4, v5, v6};
  return FMD_SetModeVec(body, mode, node, type, values);
}

int FMD_SetModeEntry(FmdBody* body, int mode, int node, int type, int dof, double value) {
  fmd::ModePlace place;
  if (CheckFMD(body) == 0 || !fmd::find_place(*body, mode, node, type, place)) return 0;
  if (!fmd::seek_value(*body, type, place, dof)) {
    FMD_Error("Couldn't seek to mode %ld node %ld dof %ld position in temporary file",
              static_cast<long>(mode), static_cast<long>(node), static_cast<long>(dof) + 1);
    return 0;
  }
  return fmd::write_values(*body, type, &value, 1) ? 1 : 0;
}
