#include "fuzz/read_everything.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "fmdtoolkit/extensions.h"
#include "fuzz/full_body.h"
#include "fuzz/memory_watch.h"

namespace fuzz {

namespace {

constexpr int kBlocks = 35;
constexpr int kTypes = 3;  // of mode vectors
constexpr int kMostBodies = 4;
// What grows with the square of the modes is asked of bodies of so many.
constexpr int kMostModesSquared = 200;
constexpr std::size_t kMemory = std::size_t{256} << 20;
// What opening takes is a small multiple of what the file has.
constexpr std::size_t kTimesFile = 8;
constexpr std::size_t kBesidesFile = std::size_t{1} << 18;

std::size_t size_of(int count) {
  return static_cast<std::size_t>(std::max(count, 0));
}

void read_nodes(FmdBody* body) {
  const int nodes = FMD_NodeCount(body);
  std::vector<double> xyz(3 * size_of(nodes));
  int count = 0;
  FMD_NodeCoordinateList(body, xyz.data(), &count);
  for (int node = -1; node <= nodes; ++node) {
    double values[9];
    double mass = 0;
    FMD_NodeCoordinates(body, node, values);
    FMD_NodalInertia(body, node, values);
    FMD_NodalMassAndGeometry(body, node, &mass, values);
    FMD_NodalMass(body, node);
    const int id = FMD_NodeID(body, node);
    FMD_NodeIndex(body, id);
    for (int type = 0; type < 3; ++type) FMD_ModeNodeIndex(body, type, id);
  }
}

void read_vectors(FmdBody* body, int type) {
  const std::size_t nodes = size_of(FMD_ModeNodeCount(body, type));
  std::vector<double> whole(6 * nodes);
  std::vector<float> narrow(6 * nodes);
  for (int index = -1; index <= FMD_ModeCount(body); ++index) {
    const int mode = index < 0 ? 0 : FMD_ModeNumber(body, index);
    if (FMD_Double_Prec(body) != 0) {
      FMD_Read_Mode_Double(body, mode, type, whole.data());
    } else {
      FMD_Read_Mode_Single(body, mode, type, narrow.data());
    }
    std::vector<double> half(3 * nodes);
    double one[3];
    double* inner = nullptr;
    for (int part = 0; part < 2; ++part) {
      FMD_Mode(body, mode, type, half.data(), part);
      if (FMD_ModeByRef(body, mode, type, &inner, part) != 0 && inner != nullptr)
        std::copy_n(inner, half.size(), half.data());
      FMD_ModeByNode(body, mode, type, FMD_ModeNodeID(body, type, static_cast<int>(nodes) - 1), one, part);
    }
  }
}

void read_statistics(FmdBody* body) {
  for (int index = 0; index < FMD_ModeCount(body); ++index) {
    const int mode = FMD_ModeNumber(body, index);
    int node = 0;
    double values[5];
    FMD_GetMaxModeDisplacement(body, mode, &node, values);
    FMD_GetMaxModeRotation(body, mode, &node, values);
    FMD_GetMaxVonMisesStress(body, mode, &node, values);
    FMD_GetMaxVonMisesStrain(body, mode, &node, values);
    FMD_Eigenvalue(body, mode, values, values + 1, values + 2, values + 3, values + 4);
  }
}

void read_sparse(FmdBody* body, int count, int (*read)(FmdBody*, double*, int*, int*)) {
  std::vector<double> values(size_of(count));
  std::vector<int> rows(values.size());
  std::vector<int> columns(values.size());
  read(body, values.data(), rows.data(), columns.data());
}

void read_matrices(FmdBody* body) {
  read_sparse(body, FMD_NumberOfGenStiff(body), FMD_GenStiffSparse);
  read_sparse(body, FMD_NumberOfGenMass(body), FMD_GenMassSparse);
  read_sparse(body, FMD_NumberOfGenDamp(body), FMD_GenDampSparse);
  const int modes = FMD_ModeCount(body);
  if (modes > kMostModesSquared) return;
  std::vector<double> matrix(size_of(modes) * size_of(modes));
  FMD_GenStiffFull(body, matrix.data(), modes);
  FMD_GenMassFull(body, matrix.data(), modes);
  FMD_GenDampFull(body, matrix.data(), modes);
  FMD_Transformation(body, matrix.data());
  std::vector<double*> rows;
  std::vector<int> selected;
  for (int mode = 0; mode < modes; ++mode) {
    rows.push_back(matrix.data() + size_of(mode) * size_of(modes));
    selected.push_back(FMD_ModeNumber(body, mode));
  }
  std::sort(selected.begin(), selected.end());
  FMD_GenStiffSelected(body, rows.data(), modes, selected.data());
  FMD_GenMassSelected(body, rows.data(), modes, selected.data());
  const std::size_t with_axes = size_of(modes) + 6;
  std::vector<double> damping(with_axes * with_axes);
  rows.clear();
  for (std::size_t row = 0; row < with_axes; ++row) rows.push_back(damping.data() + row * with_axes);
  FMD_GenDampPrincipalAndSelected(body, rows.data(), modes, selected.data());
}

void read_invariants(FmdBody* body) {
  const int modes = FMD_ModeCount(body);
  if (modes > kMostModesSquared) return;
  FMD_Invar1(body);
  for (auto* invariant : {FMD_Invar2, FMD_Invar3, FMD_Invar4, FMD_Invar6, FMD_Invar7})
    FMD_FreeMemory(invariant(body));
  for (int mode = -1; mode <= modes; ++mode) {
    FMD_FreeMemory(FMD_Invar5(body, mode));
    FMD_FreeMemory(FMD_Invar8(body, mode));
    FMD_FreeMemory(FMD_Invar9(body, mode, mode / 2));
    FMD_FreeMemory(FMD_Invar9(body, mode, modes - 1));
  }
}

void read_loads(FmdBody* body) {
  int count = 0;
  FMD_FreeMemory(FMD_GetModalPreload(body, &count));
  for (int load = -1; load <= FMD_GetModalLoadCaseCount(body); ++load) {
    char label[256];
    FMD_GetModalLoadCaseLabel(body, load, label);
    FMD_FreeMemory(FMD_GetModalLoad(body, load, &count));
  }
  for (int load = -1; load <= FMD_GetModalLoadNodalCaseCount(body); ++load) {
    FMD_FreeMemory(FMD_GetModalLoadNodalNode(body, load));
    FMD_FreeMemory(FMD_GetModalLoadNodalCoord(body, load));
    FMD_FreeMemory(FMD_GetModalLoadNodalLoad(body, load));
  }
}

void read_monitor_points(FmdBody* body) {
  constexpr int kKinds = 4;
  for (int point = -1; point <= FMD_GetMonitorPointCount(body); ++point) {
    char name[9];
    char label[57];
    double location[3];
    int rows = 0;
    int columns = 0;
    FMD_GetMonitorPointNameLabel(body, point, name, label);
    FMD_GetMonitorPointLocation(body, point, location);
    if (FMD_GetMonitorPointOperatorSize(body, point, &rows, &columns) != 0) continue;
    const std::size_t layer = size_of(rows) * size_of(columns);
    for (int kind = 1; kind <= kKinds; ++kind) {
      if (FMD_MonitorPointHasOperator(body, point, kind) == 0) continue;
      std::vector<double> values(
          kind < kKinds ? layer : layer * size_of(FMD_GetMonitorPointNumLoadOperator(body, point)));
      FMD_GetMonitorPointOperator(body, point, kind, values.data());
    }
  }
}

void read_operators(FmdBody* body) {
  constexpr std::size_t kText = 80;
  for (int at = -1; at <= FMD_GetMatrixOperatorCount(body); ++at) {
    char name[kText];
    FMD_GetMatrixOperatorName(body, at, name);
    const std::size_t rows = size_of(FMD_GetMatrixOperatorNumRows(body, at));
    std::vector<char> text(kText * rows);
    std::vector<char*> labels;
    for (std::size_t row = 0; row < rows; ++row) labels.push_back(text.data() + kText * row);
    FMD_GetMatrixOperatorLabels(body, at, labels.data());
    for (int sub = -1; sub <= FMD_GetMatrixOperatorNumSubOperator(body, at); ++sub) {
      char tag[kText];
      FMD_GetMatrixOperatorSubTag(body, at, sub, tag);
      std::vector<double> values(rows * size_of(FMD_GetMatrixOperatorSubNumCols(body, at, sub)));
      FMD_GetMatrixOperatorSubData(body, at, sub, values.data());
    }
  }
}

void read_faces(FmdBody* body) {
  int faces = 0;
  int length = 0;
  std::vector<int> list(size_of(FMD_FaceListSize(body, &faces, &length)));
  if (!list.empty()) FMD_ElementFaces(body, list.data());
  double point[] = {0.5, 0.5, 0.5};
  int found = 0;
  FMD_ClosestNode(body, point, 0);
  FMD_ClosestNode(body, point, 1);
  FMD_FreeMemory(FMD_ClosestNodes(body, point, 3, 0, &found));
}

void list_blocks(FmdBody* body) {
  std::FILE* const out = std::fopen("/dev/null", "w");
  for (int block = 0; block <= kBlocks + 1; ++block) FMD_Contents(body, block, out);
  std::fclose(out);
}

void read_header(FmdBody* body) {
  char text[4][128];
  char comments[3][80];
  FMD_Header(body, text[0], text[1], text[2], text[3], comments[0], comments[1], comments[2]);
  double mass = 0;
  double inertia[9];
  double center[3];
  FMD_TotalMassInertia(body, &mass, inertia, center);
  FMD_BodySize(body);
  FMD_UCF(body);
}

// What a host does to a body before it stores it again.
void edit(FmdBody* body, std::uint64_t choice) {
  double direction[] = {1, 0.5, 0.25};
  double point[] = {0, 1, 0};
  char meter[] = "METER";
  char gram[] = "GRAM";
  char second[] = "SECOND";
  char newton[] = "NEWTON";
  switch (choice % 8) {
    case 0:
      FMD_Rotate(body, direction, point, 0.5);
      return;
    case 1:
      FMD_Mirror(body, direction, point);
      return;
    case 2:
      FMD_Translate(body, direction, 2);
      return;
    case 3:
      FMD_SetUnits(body, gram, meter, second, newton);
      FMD_ScaleDatabase(body);
      return;
    case 4:
      FMD_GenerateFreeEdges(body);
      return;
    default:
      return;
  }
}

void limit_to_file(const char* path) {
  std::error_code ignored;
  limit_memory(kBesidesFile + kTimesFile * std::filesystem::file_size(path, ignored));
}

// What the check finds sound, a list and a reader take alike.
void check_database(char* path) {
  limit_to_file(path);
  const int status = FMDX_CheckDatabase(path, nullptr, nullptr);
  const int listed = FMDX_ListBodies(path, nullptr, nullptr);
  lift_memory_limit();
  if (status == 0 && (listed < 0 || listed != DB_BodyCount(path))) {
    std::fprintf(stderr, "a sound database lists %d bodies, %d to a reader\n", listed, DB_BodyCount(path));
    std::abort();
  }
}

FmdBody* open_body(char* path, int index, std::uint64_t choice) {
  limit_to_file(path);
  FmdBody* const body =
      choice % 7 == 0 ? FMD_CreateFromFMD_SurfaceMesh(path, index) : FMD_CreateFromFMD(path, index);
  lift_memory_limit();
  return body;
}

void use_body(FmdBody* body, std::uint64_t choice) {
  limit_memory(kMemory);
  read_everything(body);
  edit(body, choice / 16);
  export_stream(body, choice);
}

}  // namespace

void read_everything(FmdBody* body) {
  read_header(body);
  read_nodes(body);
  for (int type = 0; type < kTypes; ++type) {
    FMD_ModeExist(body, type);
    read_vectors(body, type);
  }
  read_statistics(body);
  read_matrices(body);
  read_invariants(body);
  read_loads(body);
  read_monitor_points(body);
  read_operators(body);
  read_faces(body);
  list_blocks(body);
}

void export_stream(FmdBody* body, std::uint64_t choice) {
  if (FMD_ModeCount(body) > kMostModesSquared) return;
  char path[] = "stream.fmd";
  setenv("KXI_FMDWRITE_OPTIONS", kWriteOptions[choice % kWriteOptions.size()], 1);
  FMD_write_FMD(body, path);
  unlink(path);
}

void use_database(const char* path, std::uint64_t choice) {
  std::string name = path;
  DB_ResetBrowser();
  check_database(name.data());
  const int count = std::min(DB_BodyCount(name.data()), kMostBodies);
  for (int index = 1; index <= count; ++index) {
    char row[256];
    DB_GetBodyInfo(name.data(), index, row);
    FmdBody* const body = open_body(name.data(), index, choice);
    if (body == nullptr) continue;
    use_body(body, choice + static_cast<std::uint64_t>(index));
    FMD_UnLink(body);
  }
  if (choice % 16 != 1) return;
  FmdBody* const body = make_full_body(true);
  char qualifiers[] = "SELABEL='more'";
  setenv("KXI_FMDWRITE_OPTIONS", "", 1);
  FMD_write_DB(body, name.data(), qualifiers);
  FMD_Terminate();
}

}  // namespace fuzz
