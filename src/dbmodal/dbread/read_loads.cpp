// Blocks of the loads: modal preload (27), modal loads (28), nodal modal loads (35).
#include "dbmodal/dbread/block_reader.h"

namespace fmd {

namespace {

constexpr const char* kNodalProblem = "Problem when reading Modal Load Nodal Block";

bool read_load_case(BlockReader& reader, FmdLoadCase& load, std::int32_t modes, const char* out_of_memory,
                    const char* problem) {
  if (!reader.read_chars(load.Label) || !reader.read_int(load.Processed)) return report(problem);
  if (modes > 0 && !reader.has(modes, reader.words_per_real())) return report(problem);
  auto values = allocate_table<double>(modes, out_of_memory);
  if (values == nullptr) return false;
  if (!reader.read_reals(values.get(), modes)) return report(problem);
  load.Label[sizeof load.Label - 1] = '\0';
  load.Loads = values.release();
  load.LoadCount = modes;
  return true;
}

// The three arrays of a case, none for a case without loads; what has been made stays with the case, which
// the body releases.
bool provide_nodal_arrays(FmdNodalLoadCase& load, std::int32_t count) {
  if (count == 0) return true;
  load.Nodes = allocate<std::int32_t>(count, "dbread").release();
  if (load.Nodes != nullptr) load.Coordinates = allocate<std::int32_t>(count, "dbread").release();
  if (load.Coordinates != nullptr) load.Values = allocate<double>(count, "dbread").release();
  return load.Values != nullptr;
}

bool read_nodal_case(BlockReader& reader, FmdNodalLoadCase& load) {
  std::int32_t count = 0;
  if (!reader.read_int(count) || (count > 0 && !reader.has(count, 2 + reader.words_per_real())))
    return report(kNodalProblem);
  if (!provide_nodal_arrays(load, count)) return false;
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t place = 0;
    if (!reader.read_int(place) || place < 0 || place >= reader.body.NodeCount ||
        !reader.read_int(load.Coordinates[i]) || !reader.read_reals(load.Values + i, 1))
      return report(kNodalProblem);
    load.Nodes[i] = reader.node_index(place);
  }
  load.Count = load.Capacity = count;
  return true;
}

}  // namespace

bool read_modal_preload(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading Modal Preloads Block";
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2)) return report(kProblem);
  if (counts[0] != body.ModeCount)
    return report("Number of modal preloads does not match the number of modes");
  if (counts[0] > 0 && !reader.has(counts[0], reader.words_per_real())) return report(kProblem);
  auto values = allocate_table<double>(counts[0], "Out of memory while reading Modal Preload Block");
  if (values == nullptr) return false;
  if (!reader.read_reals(values.get(), counts[0])) return report(kProblem);
  install(body.ModalPreload, values);
  body.PreloadCount = counts[0];
  body.PreloadProcessed = counts[1];
  return true;
}

bool read_modal_loads(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading Modal Loads Block";
  constexpr const char* kNoMemory = "Out of memory while reading Modal Loads Block";
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2)) return report(kProblem);
  if (counts[0] != body.ModeCount)
    return report("Number of modal load components does not match the number of modes");
  if (counts[1] > 0 && !reader.has(counts[1], 65)) return report(kProblem);
  auto cases = allocate_table<FmdLoadCase>(counts[1], kNoMemory);
  if (cases == nullptr) return false;
  body.LoadCases = cases.release();
  body.LoadCaseCount = counts[1];
  for (std::int32_t i = 0; i < counts[1]; ++i) {
    if (!read_load_case(reader, body.LoadCases[i], counts[0], kNoMemory, kProblem)) return false;
  }
  return true;
}

bool read_modal_load_nodal(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t count = 0;
  if (!reader.read_int(count) || (count > 0 && !reader.has(count, 1))) return report(kNodalProblem);
  auto cases = allocate<FmdNodalLoadCase>(count, "dbread");
  if (cases == nullptr) return false;
  body.NodalLoadCases = cases.release();
  body.NodalLoadCaseCount = count;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!read_nodal_case(reader, body.NodalLoadCases[i])) return false;
  }
  return true;
}

}  // namespace fmd
