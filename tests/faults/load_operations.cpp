// Loads, rigid modes, dense algebra, the eigensolver, monitor points and matrix operators.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "faults/operations.h"

namespace fmdtest {

namespace {

char name[] = "NAME";
char label[] = "a label";
char tag[] = "TAG";

void body_with_loads(Scene& s) {
  full_body(s);
  FMD_SetModalPreload(s.body, 1, 2.0);
  FMD_SetModalLoad(s.body, 0, 1, 3.0);
  FMD_SetModalLoadNodal(s.body, 0, kFirstNode, 2, 4.0);
}

void body_with_monitors(Scene& s) {
  full_body(s);
  double location[] = {1, 2, 3};
  double data[] = {1, 2, 3, 4};
  FMD_SetMonitorPointInfo(s.body, 1, 1, 12, 1, location, name, label);
  FMD_SetMonitorPointOperator(s.body, 0, 1, data);
  FMD_SetMatrixOperatorInfo(s.body, name, nullptr, 2);
  FMD_SetMatrixOperatorData(s.body, 0, tag, 2, data);
}

bool free_and_tell(void* array) {
  FMD_FreeMemory(array);
  return array != nullptr;
}

// Rows of an order that the scene's values have room for.
struct Rows {
  double* rows[9];
  Rows(Scene& s, int order) {
    for (int row = 0; row < order; ++row) rows[row] = s.values + row * order;
  }
};

void factored_matrix(Scene& s) {
  no_body(s);
  const double matrix[] = {2, 1, 1, 3};
  for (int entry = 0; entry < 4; ++entry) s.values[entry] = matrix[entry];
  s.ints[0] = 0;
  s.ints[1] = 1;
}

// Two symmetric matrices of order 2 and what the stages of the eigensolver take beside them.
struct Eigenproblem {
  int order = 2;
  int with_vectors = 1;
  int error = -1;
  double tolerance = 0.0;
  double* a;
  double* b;
  double* z;
  double* alfr;
  double* alfi;
  double* beta;
  explicit Eigenproblem(Scene& s)
      : a(s.values), b(a + 4), z(b + 4), alfr(z + 4), alfi(alfr + 2), beta(alfi + 2) {}
  void reduce() { FMD_QZHESS(&order, &order, a, b, &with_vectors, z); }
  void iterate() { FMD_QZITT(&order, &order, a, b, &tolerance, &with_vectors, z, &error); }
  void find_values() { FMD_QZVALL(&order, &order, a, b, alfr, alfi, beta, &with_vectors, z); }
  void find_vectors() { FMD_QZVECC(&order, &order, a, b, alfr, alfi, beta, z); }
};

void eigenproblem(Scene& s) {
  no_body(s);
  const double matrices[] = {2, 1, 1, 3, 2, 1, 1, 2};
  for (int entry = 0; entry < 8; ++entry) s.values[entry] = matrices[entry];
}

void reduced_eigenproblem(Scene& s) {
  eigenproblem(s);
  Eigenproblem(s).reduce();
}

void iterated_eigenproblem(Scene& s) {
  reduced_eigenproblem(s);
  Eigenproblem(s).iterate();
}

void solved_eigenproblem(Scene& s) {
  iterated_eigenproblem(s);
  Eigenproblem(s).find_values();
}

bool is_near(double value, double expected) {
  return std::fabs(value - expected) <= 1e-14;
}

}  // namespace

const std::vector<Operation> load_operations = {
    {"PopulateInterface", no_body,
     [](Scene&) {
       void* table[172] = {};
       return PopulateInterface(table) == 1 && table[0] != nullptr;
     }},
    {"DB_GetFlexType", no_body, [](Scene&) { return DB_GetFlexType() == 1; }},
    {"FMD_DiscreteMethod", no_body, [](Scene&) { return FMD_DiscreteMethod() == 0; }},
    {"_terminate", no_body,
     [](Scene&) {
       _terminate();
       return true;
     }},
    {"FMD_Contents", body_with_monitors,
     [](Scene& s) {
       // The report has no result: it is complete when it is as long as it is with memory.
       static long whole = 0;
       FILE* const out = std::tmpfile();
       for (int block = 1; block <= 35; ++block) FMD_Contents(s.body, block, out);
       const long length = std::ftell(out);
       std::fclose(out);
       whole = std::max(whole, length);
       return length == whole;
     },
     Failure::kSilent},

    {"FMD_SetModalPreload", full_body, [](Scene& s) { return FMD_SetModalPreload(s.body, 1, 2.0) == 1; }},
    {"FMD_GetModalPreload", body_with_loads,
     [](Scene& s) { return free_and_tell(FMD_GetModalPreload(s.body, s.ints)); }, Failure::kSilent},
    {"FMD_ModalPreloadExist", body_with_loads, [](Scene& s) { return FMD_ModalPreloadExist(s.body) == 1; }},
    {"FMD_ModalPreloadProcessed", body_with_loads,
     [](Scene& s) { return FMD_ModalPreloadProcessed(s.body) == 0; }},
    {"FMD_SetModalPreloadProcessed", body_with_loads,
     [](Scene& s) {
       FMD_SetModalPreloadProcessed(s.body, 1);
       return FMD_ModalPreloadProcessed(s.body) == 1;
     }},
    {"FMD_SetModalLoad", full_body, [](Scene& s) { return FMD_SetModalLoad(s.body, 2, 1, 2.0) == 1; }},
    {"FMD_SetModalLoadLabel", full_body,
     [](Scene& s) { return FMD_SetModalLoadLabel(s.body, 1, label) == 1; }},
    {"FMD_GetModalLoadCaseCount", body_with_loads,
     [](Scene& s) { return FMD_GetModalLoadCaseCount(s.body) == 1; }},
    {"FMD_GetModalLoadCaseLabel", body_with_loads,
     [](Scene& s) { return FMD_GetModalLoadCaseLabel(s.body, 0, s.text[0]) == 1; }},
    {"FMD_GetModalLoad", body_with_loads,
     [](Scene& s) { return free_and_tell(FMD_GetModalLoad(s.body, 0, s.ints)); }, Failure::kSilent},
    {"FMD_ModalLoadProcessed", body_with_loads,
     [](Scene& s) { return FMD_ModalLoadProcessed(s.body, 0) == 0; }},
    {"FMD_SetModalLoadProcessed", body_with_loads,
     [](Scene& s) {
       FMD_SetModalLoadProcessed(s.body, 0, 1);
       return FMD_ModalLoadProcessed(s.body, 0) == 1;
     }},
    {"FMD_SetModalLoadNodal", empty_body,
     [](Scene& s) { return FMD_SetModalLoadNodal(s.body, 1, 5, 2, 3.0) == 1; }},
    {"FMD_GetModalLoadNodalCaseCount", body_with_loads,
     [](Scene& s) { return FMD_GetModalLoadNodalCaseCount(s.body) == 1; }},
    {"FMD_GetModalLoadNodalCount", body_with_loads,
     [](Scene& s) { return FMD_GetModalLoadNodalCount(s.body, 0) == 1; }},
    {"FMD_GetModalLoadNodalNode", body_with_loads,
     [](Scene& s) { return free_and_tell(FMD_GetModalLoadNodalNode(s.body, 0)); }, Failure::kSilent},
    {"FMD_GetModalLoadNodalCoord", body_with_loads,
     [](Scene& s) { return free_and_tell(FMD_GetModalLoadNodalCoord(s.body, 0)); }, Failure::kSilent},
    {"FMD_GetModalLoadNodalLoad", body_with_loads,
     [](Scene& s) { return free_and_tell(FMD_GetModalLoadNodalLoad(s.body, 0)); }, Failure::kSilent},

    {"FMD_RigidBodyModeCount", full_body, [](Scene& s) { return FMD_RigidBodyModeCount(s.body) == 0; }},
    {"FMD_RigidModes2KINEX", full_body,
     [](Scene& s) {
       for (double& value : s.values) value = 1e9;
       FMD_RigidModes2KINEX(s.body, Rows(s, 6).rows, 2);
       return s.values[31] != 1e9;
     }},
    {"FMD_RigidBodyForcesOnPrincipalAxes", body_with_loads,
     [](Scene& s) {
       FMD_RigidBodyForcesOnPrincipalAxes(s.body);
       return FMD_ModalLoadProcessed(s.body, 0) == 1;
     }},
    {"FMD_DampingOnPrincipalAxes", full_body,
     [](Scene& s) { return FMD_DampingOnPrincipalAxes(s.body) == 1; }},
    {"FMD_GenDampPrincipalAndSelected", full_body,
     [](Scene& s) {
       int modes[] = {1, 2};
       return FMD_GenDampPrincipalAndSelected(s.body, Rows(s, 8).rows, 2, modes) == 1 && s.values[54] == 0.1;
     }},
    {"FMD_AnsysAddGenMass", full_body, [](Scene& s) { return FMD_AnsysAddGenMass(s.body, 1, 1) == 1; },
     Failure::kReported, true},

    {"FMD_LUPDecomposition", factored_matrix,
     [](Scene& s) { return FMD_LUPDecomposition(Rows(s, 2).rows, 2, s.ints) == 1; }},
    {"FMD_LUPSolve", factored_matrix,
     [](Scene& s) { return FMD_LUPSolve(Rows(s, 2).rows, 2, s.ints, s.values + 100) == 1; }},
    {"FMD_LUPInvert", factored_matrix,
     [](Scene& s) { return FMD_LUPInvert(Rows(s, 2).rows, 2, s.ints) == 1; }},
    {"Matrix_Multiply", no_body,
     [](Scene& s) {
       Matrix_Multiply(s.values, s.values + 9, s.values + 18);
       return s.values[18] == 0.0;
     }},
    {"Vector_Transform", no_body,
     [](Scene& s) {
       Vector_Transform(s.values, s.values + 9, 1);
       return s.values[0] == 0.0;
     }},
    {"Move_Vector", no_body,
     [](Scene& s) {
       Move_Vector(s.values, s.values + 3);
       return s.values[0] == 0.0;
     }},

    {"EIGPSN", no_body,
     [](Scene& s) {
       s.values[0] = 1.0;
       return EIGPSN(s.values) == 0x1p-53;
     }},
    {"FMD_QZHESS", eigenproblem,
     [](Scene& s) {
       Eigenproblem p(s);
       p.reduce();
       return p.b[1] == 0.0 && is_near(p.b[0] * p.b[0], 5.0);
     }},
    {"FMD_QZITT", reduced_eigenproblem,
     [](Scene& s) {
       Eigenproblem p(s);
       p.iterate();
       return p.error == 0 && p.b[1] > 0.0;
     }},
    {"FMD_QZVALL", iterated_eigenproblem,
     [](Scene& s) {
       Eigenproblem p(s);
       p.find_values();
       return p.alfi[0] == 0.0 && is_near(p.alfr[0] / p.beta[0] * p.alfr[1] / p.beta[1], 5.0 / 3.0);
     }},
    {"FMD_QZVECC", solved_eigenproblem,
     [](Scene& s) {
       Eigenproblem p(s);
       p.find_vectors();
       return std::max(std::fabs(p.z[0]), std::fabs(p.z[1])) == 1.0;
     }},

    {"Tensor_Transform", no_body,
     [](Scene& s) {
       s.values[0] = 2.0;
       s.values[9 + 1] = 3.0;
       Tensor_Transform(s.values, s.values + 9, -1);
       return s.values[4] == -18.0;
     }},

    {"FMD_SetMonitorPointInfo", full_body,
     [](Scene& s) {
       const int before = FMD_GetMonitorPointCount(s.body);
       FMD_SetMonitorPointInfo(s.body, 1, 1, 12, 1, s.values, name, label);
       return FMD_GetMonitorPointType(s.body, before) == 1;
     }},
    {"FMD_GetMonitorPointCount", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointCount(s.body) == 1; }},
    {"FMD_GetMonitorPointType", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointType(s.body, 0) == 1; }},
    {"FMD_GetMonitorPointResultType", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointResultType(s.body, 0) == 1; }},
    {"FMD_GetMonitorPointComponent", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointComponent(s.body, 0) == 12; }},
    {"FMD_GetMonitorPointNameLabel", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointNameLabel(s.body, 0, s.text[0], s.text[1]) == 0; }},
    {"FMD_GetMonitorPointLocation", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointLocation(s.body, 0, s.values) == 0; }},
    {"FMD_GetMonitorPointOperatorSize", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointOperatorSize(s.body, 0, s.ints, s.ints + 1) == 0; }},
    {"FMD_GetMonitorPointNumLoadOperator", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointNumLoadOperator(s.body, 0) == 1; }},
    {"FMD_MonitorPointHasOperator", body_with_monitors,
     [](Scene& s) { return FMD_MonitorPointHasOperator(s.body, 0, 1) == 1; }},
    {"FMD_SetMonitorPointOperator", body_with_monitors,
     [](Scene& s) { return FMD_SetMonitorPointOperator(s.body, 0, 4, s.values) == 0; }},
    {"FMD_TransformMonitorPoints", body_with_monitors,
     [](Scene& s) {
       double t[] = {2, 0, 0, 1};
       return FMD_TransformMonitorPoints(s.body, t) == 1 &&
              FMD_GetMonitorPointOperator(s.body, 0, 1, s.values) == 0 && s.values[0] == 2.0 &&
              s.values[2] == 6.0 && s.values[3] == 4.0;
     }},
    {"FMD_GetMonitorPointOperator", body_with_monitors,
     [](Scene& s) { return FMD_GetMonitorPointOperator(s.body, 0, 1, s.values) == 0 && s.values[3] == 4.0; }},

    {"FMD_SetMatrixOperatorInfo", full_body,
     [](Scene& s) { return FMD_SetMatrixOperatorInfo(s.body, name, nullptr, 2) >= 0; }},
    {"FMD_SetMatrixOperatorData", body_with_monitors,
     [](Scene& s) { return FMD_SetMatrixOperatorData(s.body, 0, tag, 3, s.values) >= 0; }},
    {"FMD_GetMatrixOperatorCount", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorCount(s.body) == 1; }},
    {"FMD_GetMatrixOperatorNumRows", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorNumRows(s.body, 0) == 2; }},
    {"FMD_GetMatrixOperatorName", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorName(s.body, 0, s.text[0]) == 0; }},
    {"FMD_GetMatrixOperatorLabels", body_with_monitors,
     [](Scene& s) {
       char* labels[] = {s.text[0], s.text[1]};
       return FMD_GetMatrixOperatorLabels(s.body, 0, labels) == 0;
     }},
    {"FMD_GetMatrixOperatorNumSubOperator", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorNumSubOperator(s.body, 0) == 1; }},
    {"FMD_GetMatrixOperatorSubNumCols", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorSubNumCols(s.body, 0, 0) == 2; }},
    {"FMD_GetMatrixOperatorSubTag", body_with_monitors,
     [](Scene& s) { return FMD_GetMatrixOperatorSubTag(s.body, 0, 0, s.text[0]) == 0; }},
    {"FMD_GetMatrixOperatorSubData", body_with_monitors,
     [](Scene& s) {
       return FMD_GetMatrixOperatorSubData(s.body, 0, 0, s.values) == 0 && s.values[3] == 4.0;
     }},
};

}  // namespace fmdtest
