#include "fuzz/full_body.h"

namespace fuzz {

namespace {

constexpr int kNodes = 12;
constexpr int kModes = 3;
constexpr int kFirst = 20;

void add_nodes(FmdBody* body) {
  for (int i = 0; i < kNodes; ++i) {
    const int id = kFirst + (i * 5) % kNodes;
    FMD_SetNodeCoordinates(body, id, i % 3, i / 3 % 2, i / 6);
    FMD_SetNodalMass(body, id, 0.5 + i);
  }
  FMD_SetNodalInertia(body, kFirst, 1, 2, 3, 0.1, 0.2, 0.3);
  int quadrilateral[] = {20, 21, 22, 23};
  int triangle[] = {24, 25, 20};
  FMD_SetFaceList(body, 4, quadrilateral);
  FMD_SetFaceList(body, 3, triangle);
  FMD_SetInterfaceNode(body, kFirst);
  FMD_SetInterfaceNode(body, kFirst + 3);
}

void add_modes(FmdBody* body, bool diagonal) {
  for (int mode = 1; mode <= kModes; ++mode) {
    for (int i = 0; i < kNodes; ++i) {
      FMD_SetMode(body, mode, kFirst + i, 0, mode, i, 0.5 * i, 1, 0.25 * mode, 3);
      if (i % 2 == 0) FMD_SetMode(body, mode, kFirst + i, 1, mode, i, 1, 2, 3, 4);
      if (i % 3 == 0) FMD_SetMode(body, mode, kFirst + i, 2, i, mode, 1, 2, 3, 4);
    }
    FMD_SetGeneralizedMass(body, mode, mode, 1.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 40.0 * mode);
    FMD_SetGeneralizedDamping(body, mode, mode, 0.1);
  }
  if (!diagonal) {
    FMD_SetGeneralizedMass(body, 1, 2, 0.25);
    FMD_SetGeneralizedMass(body, 2, 1, 0.25);
    FMD_SetGeneralizedStiffness(body, 1, 3, 2);
    FMD_SetGeneralizedStiffness(body, 3, 1, 2);
  }
  double six[] = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, kFirst, six);
  FMD_SetPreStrainVec(body, kFirst + 1, six);
}

void add_loads(FmdBody* body) {
  for (int mode = 1; mode <= kModes; ++mode) {
    FMD_SetModalPreload(body, mode, 0.5 * mode);
    FMD_SetModalLoad(body, 0, mode, mode);
    FMD_SetModalLoad(body, 1, mode, -mode);
  }
  char label[] = "gravity";
  FMD_SetModalLoadLabel(body, 1, label);
  FMD_SetModalLoadNodal(body, 0, kFirst, 2, 1.5);
  FMD_SetModalLoadNodal(body, 1, kFirst + 4, 6, -0.25);
}

void add_operators(FmdBody* body) {
  double values[6 * kModes * 2] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  double location[] = {1, 2, 3};
  char name[] = "TIP";
  char label[] = "tip of the arm";
  FMD_SetMonitorPointInfo(body, 2, 4, 12, 2, location, name, label);
  FMD_SetMonitorPointInfo(body, 1, 1, 3, 1, location, name, label);
  for (int kind = 1; kind <= 3; ++kind) FMD_SetMonitorPointOperator(body, 0, kind, values);
  FMD_SetMonitorPointOperator(body, 1, 4, values);
  char first[] = "first row";
  char second[] = "second";
  char* labels[] = {first, second};
  char tag[] = "DISP";
  FMD_SetMatrixOperatorInfo(body, name, labels, 2);
  FMD_SetMatrixOperatorData(body, 0, tag, kModes, values);
}

}  // namespace

const std::vector<const char*> kWriteOptions = {"",
                                                "no_xdr",
                                                "single",
                                                "full_str",
                                                "full_str,no_xdr",
                                                "82_comp",
                                                "81_comp",
                                                "sparse_str",
                                                "full_invar",
                                                "fast_invar,single",
                                                "no_ortho",
                                                "full_str,single",
                                                "coarsen(0.2,20,1)",
                                                "82_comp,no_ortho",
                                                "full_invar,no_ortho"};

FmdBody* make_full_body(bool diagonal) {
  FmdBody* const body = FMD_Create(kNodes, kModes);
  char title[] = "a body for damage";
  char text[] = "text";
  FMD_SetHeader(body, title, text, text, text, text, text);
  add_nodes(body);
  add_modes(body, diagonal);
  if (!diagonal) {
    double turn[kModes * kModes] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    FMD_SetTransformation(body, turn);
  }
  add_loads(body);
  add_operators(body);
  return body;
}

}  // namespace fuzz
