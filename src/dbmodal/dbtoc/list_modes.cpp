// Eigenvalues, mode vectors of the three types, pre-stress and pre-strain, statistics.
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// 108 tildes and an empty line.
constexpr char kRule[] =
    "~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~"
    "~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n\n";
static_assert(sizeof kRule == 108 + 2 + 1, "the rule is as wide as the rows");

// The words and number formats in which the three types differ.
struct VectorWords {
  int type;
  const char* count;
  const char* mode;
  const char* heading;
  const char* first_half;
  const char* second_half;
};

constexpr VectorWords kShapeWords = {kShape,
                                     "Number of Mode Shapes %d\n\n",
                                     "\nMODE NUMBER %d=================================\n\n",
                                     " ID             dx               dy               dz               ax  "
                                     "             ay               az\n",
                                     " % 16.9e % 16.9e % 16.9e",
                                     " % 16.9e % 16.9e % 16.9e\n"};

constexpr VectorWords kStressWords = {kStress,
                                      "Number of Stress Shapes %d\n\n",
                                      "\nSTRESS SHAPE NUMBER %d=================================\n\n",
                                      "   ID        sigma_x          sigma_y          sigma_z           "
                                      "tau_xy           tau_xz           tau_yz\n",
                                      " %16.9e %16.9e %16.9e",
                                      " %16.9e %16.9e %16.9e\n"};

constexpr VectorWords kStrainWords = {kStrain,
                                      "Number of Strain Shapes %d\n\n",
                                      "\nSTRAIN SHAPE NUMBER %d=================================\n\n",
                                      "   ID      epsilon_x        epsilon_y        epsilon_z         "
                                      "gamma_xy         gamma_xz         gamma_yz\n",
                                      " %16.9e %16.9e %16.9e",
                                      " %16.9e %16.9e %16.9e\n"};

struct Halves {
  CArray<double> first;
  CArray<double> second;

  bool reserve(int nodes) {
    first = listing_array<double>(3LL * nodes);
    if (first == nullptr) return false;
    second = listing_array<double>(3LL * nodes);
    return second != nullptr;
  }
};

// Heading, rule and rows of one vector; false where it cannot be had.
bool print_vector(FmdBody* body, std::FILE* out, const VectorWords& words, int number, Halves& halves) {
  if (FMD_Mode(body, number, words.type, halves.first.get(), 0) == 0) return false;
  if (FMD_Mode(body, number, words.type, halves.second.get(), 1) == 0) return false;
  std::fputs(words.heading, out);
  std::fputs(kRule, out);
  // Mode shapes of a stored body may end before its nodes do.
  const int nodes = body->ModeNodeCount[words.type];
  const int pairs = words.type == kShape ? body->NodeCount : nodes;
  for (int place = 0; place < pairs; ++place) {
    const FmdIdIndex& pair = body->SortedModeNodes[words.type][place];
    if (pair.Index >= nodes) continue;
    const double* const a = halves.first.get() + 3L * pair.Index;
    const double* const b = halves.second.get() + 3L * pair.Index;
    std::fprintf(out, "%5d ", pair.Id);
    std::fprintf(out, words.first_half, a[0], a[1], a[2]);
    std::fprintf(out, words.second_half, b[0], b[1], b[2]);
  }
  return true;
}

// The table that puts a type's nodes in order is built by a search.
bool has_nodes_in_order(FmdBody* body, int type) {
  FMD_ModeNodeIndex(body, type, 1);
  return body->ModeNodeCount[type] > 0 && body->SortedModeNodes[type] != nullptr;
}

void list_vectors(FmdBody* body, std::FILE* out, const VectorWords& words) {
  Halves halves;
  if (!halves.reserve(body->ModeNodeCount[words.type])) return;
  std::fprintf(out, words.count, body->ModeCount);
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const int number = FMD_ModeNumber(body, mode);
    std::fprintf(out, words.mode, number);
    if (!print_vector(body, out, words, number, halves)) return;
  }
  std::fprintf(out, "\n");
}

void list_nodal_tensors(FmdBody* body, std::FILE* out, const VectorWords& words, const char* absent) {
  if (FMD_ModeExist(body, words.type) == 0 || body->ModeCount == 0 || !has_nodes_in_order(body, words.type)) {
    std::fputs(absent, out);
    return;
  }
  list_vectors(body, out, words);
}

void list_preload_vector(FmdBody* body, std::FILE* out, const VectorWords& words, SummaryByte byte,
                         const char* absent) {
  if (body->BlockExists[byte] == 0 || !has_nodes_in_order(body, words.type)) {
    std::fputs(absent, out);
    return;
  }
  Halves halves;
  if (!halves.reserve(body->ModeNodeCount[words.type])) return;
  if (print_vector(body, out, words, 0, halves)) std::fprintf(out, "\n");
}

using Statistic = int (*)(FmdBody*, int, int*, double*);

void print_statistic(FmdBody* body, std::FILE* out, int number, Statistic get, const char* format) {
  int node = 0;
  double value = 0.0;
  if (get(body, number, &node, &value) != 0) std::fprintf(out, format, node, value);
}

}  // namespace

void list_eigenvalues(FmdBody* body, std::FILE* out) {
  if (body->ModeCount == 0) {
    std::fprintf(out, "No eigenvalue information\n\n");
    return;
  }
  std::fputs(
      "                          Natural Freq.      Natural Freq.       Generalized       Generalized    \n"
      " Mode  Eigenvalue         (Hz)               (Rad/Sec)           Mass              Stiffness      \n"
      "===== ================== ================== ================== ================== "
      "==================\n",
      out);
  const double consistency = FMD_UCF(body);
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const int number = FMD_ModeNumber(body, mode);
    double v[5] = {};
    FMD_Eigenvalue(body, number, &v[0], &v[1], &v[2], &v[3], &v[4]);
    std::fprintf(out, "%5d % 17.10le % 17.10le % 17.10le % 17.10le % 17.10le\n", number, v[0] * consistency,
                 v[1], v[2], v[3], v[4]);
  }
  std::fprintf(out, "\n");
}

void list_mode_shapes(FmdBody* body, std::FILE* out) {
  if (body->ModeCount == 0 || !has_nodes_in_order(body, kShape)) return;
  list_vectors(body, out, kShapeWords);
}

void list_stress(FmdBody* body, std::FILE* out) {
  list_nodal_tensors(body, out, kStressWords, "\tNo Modal Stress Information\n\n");
}

void list_strain(FmdBody* body, std::FILE* out) {
  list_nodal_tensors(body, out, kStrainWords, "\tNo Modal Strain Information\n\n");
}

void list_pre_stress(FmdBody* body, std::FILE* out) {
  list_preload_vector(body, out, kStressWords, kPreStress, "\tNo Nodal Pre-Stress Information\n\n");
}

void list_pre_strain(FmdBody* body, std::FILE* out) {
  list_preload_vector(body, out, kStrainWords, kPreStrain, "\tNo Nodal Pre-Strain Information\n\n");
}

void list_statistics(FmdBody* body, std::FILE* out) {
  if (FMD_ModalStatisticsExist(body) == 0) {
    std::fprintf(out, "\tNo Modal Statistic Information\n\n");
    return;
  }
  std::fprintf(out, "Number of Modes %d\n", body->ModeCount);
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    const int number = FMD_ModeNumber(body, mode);
    std::fprintf(out, "\nMODE NUMBER %d=================================\n\n", number);
    print_statistic(body, out, number, FMD_GetMaxModeDisplacement,
                    "Max. Trans. Magnitude:      Node ID = %d  Magnitude = %12.6e\n");
    print_statistic(body, out, number, FMD_GetMaxModeRotation,
                    "Max. Small Rot. Magnitude:  Node ID = %d  Magnitude = %12.6e\n");
    if (FMD_ModeExist(body, kStress) != 0) {
      print_statistic(body, out, number, FMD_GetMaxVonMisesStress,
                      "Max. Von Mises Stress:      Node ID = %d  Magnitude = %12.6e\n");
    }
    if (FMD_ModeExist(body, kStrain) != 0) {
      print_statistic(body, out, number, FMD_GetMaxVonMisesStrain,
                      "Max. Von Mises Strain:      Node ID = %d  Magnitude = %12.6e\n");
    }
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
