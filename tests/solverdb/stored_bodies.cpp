#include "solverdb/stored_bodies.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "body/body.h"

namespace fmdtest {

namespace {

constexpr int kBlocks = 35;

void add(std::string& text, const char* name, const std::vector<double>& values) {
  text += name;
  char number[40];
  for (const double value : values) {
    std::snprintf(number, sizeof number, " %a", value);
    text += number;
  }
  text += '\n';
}

void add_vector(std::string& text, FmdBody* body, int type, int mode) {
  const auto nodes = static_cast<std::size_t>(FMD_ModeNodeCount(body, type));
  std::vector<double> whole(6 * nodes);
  if (FMD_Double_Prec(body) != 0) {
    text += std::to_string(FMD_Read_Mode_Double(body, mode, type, whole.data()));
  } else {
    std::vector<float> narrow(6 * nodes);
    text += std::to_string(FMD_Read_Mode_Single(body, mode, type, narrow.data()));
    std::copy(narrow.begin(), narrow.end(), whole.begin());
  }
  add(text, " whole", whole);
  for (int part = 0; part < 2; ++part) {
    std::vector<double> half(3 * nodes);
    text += std::to_string(FMD_Mode(body, mode, type, half.data(), part));
    add(text, " half", half);
    double* inner = nullptr;
    text += std::to_string(FMD_ModeByRef(body, mode, type, &inner, part));
    if (inner != nullptr) add(text, " inner", std::vector<double>(inner, inner + 3 * nodes));
    std::vector<double> one(3);
    text += std::to_string(FMD_ModeByNode(
        body, mode, type, FMD_ModeNodeID(body, type, static_cast<int>(nodes) - 1), one.data(), part));
    add(text, " by node", one);
  }
}

void add_nodes(std::string& text, FmdBody* body) {
  for (int node = 0; node < FMD_NodeCount(body); ++node) {
    std::vector<double> row(3);
    FMD_NodeCoordinates(body, node, row.data());
    row.push_back(FMD_NodalMass(body, node));
    row.push_back(FMD_NodeID(body, node));
    add(text, "node", row);
  }
}

void add_invariant(std::string& text, const char* name, double* values, std::size_t count) {
  if (values == nullptr) {
    text += std::string(name) + " none\n";
    return;
  }
  add(text, name, std::vector<double>(values, values + count));
  FMD_FreeMemory(values);
}

void add_invariants(std::string& text, FmdBody* body) {
  const auto modes = static_cast<std::size_t>(FMD_ModeCount(body));
  add(text, "invariant 1", {FMD_Invar1(body)});
  add_invariant(text, "invariant 2", FMD_Invar2(body), 3);
  add_invariant(text, "invariant 3", FMD_Invar3(body), 3 * modes);
  add_invariant(text, "invariant 4", FMD_Invar4(body), 3 * modes);
  add_invariant(text, "invariant 6", FMD_Invar6(body), modes * modes);
  add_invariant(text, "invariant 7", FMD_Invar7(body), 9);
  for (int mode = 0; mode < static_cast<int>(modes); ++mode) {
    add_invariant(text, "invariant 5", FMD_Invar5(body, mode), 3 * modes);
    add_invariant(text, "invariant 8", FMD_Invar8(body, mode), 9);
    add_invariant(text, "invariant 9", FMD_Invar9(body, mode, static_cast<int>(modes) - 1), 9);
  }
}

}  // namespace

FmdBody* make_large_body(int seed, int nodes, int modes, bool orthonormal) {
  FmdBody* const body = FMD_Create(nodes, modes);
  for (int node = 1; node <= nodes; ++node) {
    FMD_SetNodeCoordinates(body, node, node * 0.5 + seed, (node * 7 + seed) % 31, node % 5);
    FMD_SetNodalMass(body, node, 0.125 + node % 3);
  }
  for (int node = 1; node + 2 <= std::min(nodes, 60); node += 3) {
    int corners[] = {node, node + 1, node + 2};
    FMD_SetFaceList(body, 3, corners);
  }
  for (int mode = 1; mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node) {
      const double at = 1000.0 * seed + 100.0 * mode + 0.0625 * node;
      FMD_SetMode(body, mode, node, 0, at, -at, 0.25 * at, node, mode, seed);
      FMD_SetMode(body, mode, node, 1, at + 1, at + 2, at + 3, -at, 0.5, seed);
      if (node % 2 == 0) FMD_SetMode(body, mode, node, 2, at - 1, at - 2, at - 3, at, mode, 0.5);
    }
    add_frequency(body, mode, 3.0 * mode);
    if (orthonormal) continue;
    FMD_SetGeneralizedMass(body, mode, mode, 2.0 + mode);
    if (mode > 1) {
      FMD_SetGeneralizedMass(body, mode, mode - 1, 0.25);
      FMD_SetGeneralizedMass(body, mode - 1, mode, 0.25);
    }
  }
  return body;
}

std::string vectors_of(FmdBody* body) {
  int kept = 0;
  FMD_GetKeepModesInMemory(body, &kept);
  FMD_SetKeepModesInMemory(body, 0);
  std::string text;
  add_nodes(text, body);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (FMD_ModeExist(body, type) == 0 || FMD_ModeNodeCount(body, type) == 0) continue;
    for (int mode = 0; mode < FMD_ModeCount(body); ++mode)
      add_vector(text, body, type, FMD_ModeNumber(body, mode));
  }
  FMD_SetKeepModesInMemory(body, kept);
  return text;
}

std::string numbers_of(FmdBody* body) {
  std::string text = vectors_of(body);
  add_invariants(text, body);
  return text;
}

std::string everything_of(FmdBody* body) {
  std::string text = numbers_of(body);
  char* report = nullptr;
  std::size_t size = 0;
  FILE* const out = open_memstream(&report, &size);
  for (int block = 3; block <= kBlocks; ++block) FMD_Contents(body, block, out);
  std::fclose(out);
  text.append(report, size);
  std::free(report);
  return text;
}

std::size_t open_files() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(all, std::filesystem::directory_iterator()));
}

int StoredBodiesTest::store(FmdBody* body, const std::string& path, const std::string& qualifiers,
                            const std::string& options) {
  setenv("KXI_FMDWRITE_OPTIONS", options.c_str(), 1);
  std::string target = path;
  std::string names = qualifiers;
  log.clear();
  return FMD_write_DB(body, target.data(), names.data());
}

FmdBody* StoredBodiesTest::open(std::string path, int index) {
  log.clear();
  return FMD_CreateFromFMD(path.data(), index);
}

std::string StoredBodiesTest::row(std::string path, int index) {
  char text[256] = "untouched";
  return DB_GetBodyInfo(path.data(), index, text) == 0 ? "" : text;
}

void StoredBodiesTest::make_database(const std::string& path, const std::vector<int>& seeds) {
  for (const int seed : seeds) {
    FmdBody* const body = make_large_body(seed);
    ASSERT_EQ(store(body, path, "SELABEL='s" + std::to_string(seed) + "'"), 1);
    FMD_UnLink(body);
  }
}

Strings StoredBodiesTest::files() const {
  Strings names;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    const std::string name = entry.path().filename();
    if (name.rfind("fmd", 0) != 0) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace fmdtest
