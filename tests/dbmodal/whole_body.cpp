#include "dbmodal/whole_body.h"

#include "body/body.h"

namespace fmdtest {

// Values by place; multiples of an eighth, so that single precision holds them.
double eighths(std::size_t seed, std::size_t place) {
  return static_cast<double>((seed * 37 + place * 11) % 97) / 8.0 - 6.0;
}

std::vector<double> values_of(std::size_t seed, std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t place = 0; place < count; ++place) values[place] = eighths(seed, place);
  return values;
}

namespace {

constexpr std::size_t kModes = kWholeModes;
constexpr std::size_t kLoadCases = kWholeLoadCases;

void set_invariants(FmdBody* body) {
  FMD_SetInvar1(body, 8.0);
  FMD_SetInvar2(body, values_of(2, 3).data());
  FMD_SetInvar7(body, values_of(7, 6).data());
  for (std::size_t i = 0; i < kModes; ++i) {
    const int mode = kSampleModes[i];
    FMD_SetInvar3(body, mode, values_of(30 + i, 3).data());
    FMD_SetInvar4(body, mode, values_of(40 + i, 3).data());
    FMD_SetInvar8(body, mode, values_of(80 + i, 9).data());
    for (std::size_t j = i; j < kModes; ++j) {
      std::vector<double> cross = i == j ? std::vector<double>(3, 0.0) : values_of(50 + 10 * i + j, 3);
      std::vector<double> tensor = values_of(90 + 10 * i + j, 9);
      if (i == j) tensor = {1, 2, 3, 2, 5, 6, 3, 6, 9};
      FMD_SetInvar5(body, mode, kSampleModes[j], cross.data());
      FMD_SetInvar9(body, mode, kSampleModes[j], tensor.data());
    }
  }
}

void set_loads(FmdBody* body) {
  for (std::size_t i = 0; i < kModes; ++i) {
    FMD_SetModalPreload(body, kSampleModes[i], eighths(27, i));
    for (std::size_t c = 0; c < kLoadCases; ++c) {
      FMD_SetModalLoad(body, static_cast<int>(c), kSampleModes[i], eighths(280 + c, i));
    }
  }
  // Loads that stand on the rigid axes already are not projected by the write.
  FMD_SetModalPreloadProcessed(body, 1);
  FMD_SetModalLoadProcessed(body, 0, 1);
  FMD_SetModalLoadProcessed(body, 1, 1);
  char label[] = "gravity";
  FMD_SetModalLoadLabel(body, 1, label);
  FMD_SetModalLoadNodal(body, 1, 20, 2, 1.5);
  FMD_SetModalLoadNodal(body, 1, 40, 6, -0.25);
}

void set_operators(FmdBody* body) {
  double location[3] = {1, 2, 3};
  char name[] = "TIP";
  char label[] = "tip of the arm";
  FMD_SetMonitorPointInfo(body, 2, 4, 12, kLoadCases, location, name, label);
  FMD_SetMonitorPointInfo(body, 1, 1, 3, 1, location, name, label);
  for (int kind = 1; kind <= 3; ++kind) {
    FMD_SetMonitorPointOperator(body, 0, kind,
                                values_of(330 + static_cast<std::size_t>(kind), 2 * kModes).data());
  }
  FMD_SetMonitorPointOperator(body, 0, 4, values_of(334, kLoadCases * 2 * kModes).data());
  // One load operator where the body has two load cases: the second is zeros.
  FMD_SetMonitorPointOperator(body, 1, 4, values_of(335, kModes).data());
  char long_name[] = "OUTPUT-OF-THE-ARM";
  char row[] = "first row";
  char empty[] = "";
  char* labels[] = {row, empty};
  char tag[] = "DISP";
  FMD_SetMatrixOperatorInfo(body, long_name, labels, 2);
  FMD_SetMatrixOperatorData(body, 0, tag, 3, values_of(340, 6).data());
}

}  // namespace

FmdBody* make_whole_body() {
  FmdBody* const body = make_sample_body();
  FMD_SetGeneralizedDamping(body, 7, 7, 0.5);
  FMD_SetGeneralizedDamping(body, 7, 9, -0.25);
  body->DampingOnPrincipalAxes = 1;
  set_invariants(body);
  set_loads(body);
  set_operators(body);
  return body;
}

}  // namespace fmdtest
