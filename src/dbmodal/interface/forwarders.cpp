// The second face of the library: DB_ names that pass everything on, for hosts that take them from the table.
#include "fmdtoolkit/fmdtoolkit.h"

FmdBody* DB_Create(int nodeCount, int modeCount) {
  return FMD_Create(nodeCount, modeCount);
}

int DB_SetInvar1(FmdBody* body, double mass) {
  return FMD_SetInvar1(body, mass);
}

int DB_SetInvar2(FmdBody* body, double* moment) {
  return FMD_SetInvar2(body, moment);
}

int DB_SetInvar3(FmdBody* body, int mode, double* values) {
  return FMD_SetInvar3(body, mode, values);
}

int DB_SetInvar4(FmdBody* body, int mode, double* values) {
  return FMD_SetInvar4(body, mode, values);
}

int DB_SetInvar5(FmdBody* body, int row, int column, double* values) {
  return FMD_SetInvar5(body, row, column, values);
}

int DB_SetInvar6(FmdBody* body, double* diagonal) {
  return FMD_SetInvar6(body, diagonal);
}

int DB_SetInvar7(FmdBody* body, double* values) {
  return FMD_SetInvar7(body, values);
}

int DB_SetInvar8(FmdBody* body, int mode, double* values) {
  return FMD_SetInvar8(body, mode, values);
}

int DB_SetInvar9(FmdBody* body, int row, int column, double* values) {
  return FMD_SetInvar9(body, row, column, values);
}

void DB_SetUnits(FmdBody* body, char* mass, char* length, char* time, char* force) {
  FMD_SetUnits(body, mass, length, time, force);
}

void DB_SetUnitsByMultiplierOnSI(FmdBody* body, double mass, double length, double time, double force) {
  FMD_SetUnitsByMultiplierOnSI(body, mass, length, time, force);
}

void DB_Units(FmdBody* body, char* mass, char* length, char* time, char* force) {
  FMD_Units(body, mass, length, time, force);
}

double DB_Mass2Kilogram(FmdBody* body, double value) {
  return FMD_Mass2Kilogram(body, value);
}

double DB_Force2Newton(FmdBody* body, double value) {
  return FMD_Force2Newton(body, value);
}

double DB_Length2Meter(FmdBody* body, double value) {
  return FMD_Length2Meter(body, value);
}

double DB_Time2Second(FmdBody* body, double value) {
  return FMD_Time2Second(body, value);
}

int DB_SetHeader(FmdBody* body, char* title, char* inputFileName, char* inputFileType, char* comment1,
                 char* comment2, char* comment3) {
  return FMD_SetHeader(body, title, inputFileName, inputFileType, comment1, comment2, comment3);
}

void DB_Header(FmdBody* body, char* title, char* creationTime, char* inputFileName, char* inputFileType,
               char* comment1, char* comment2, char* comment3) {
  FMD_Header(body, title, creationTime, inputFileName, inputFileType, comment1, comment2, comment3);
}

int DB_SetGlobalMass(FmdBody* body, double mass, double* center, double* inertia) {
  return FMD_SetGlobalMass(body, mass, center, inertia);
}

int DB_TotalMassInertia(FmdBody* body, double* mass, double* inertia, double* center) {
  return FMD_TotalMassInertia(body, mass, inertia, center);
}

double DB_BodySize(FmdBody* body) {
  return FMD_BodySize(body);
}

int DB_NodeIndex(FmdBody* body, int id) {
  return FMD_NodeIndex(body, id);
}

int DB_NodeID(FmdBody* body, int index) {
  return FMD_NodeID(body, index);
}

int DB_ModeIndex(FmdBody* body, int number) {
  return FMD_ModeIndex(body, number);
}

int DB_ModeNumber(FmdBody* body, int index) {
  return FMD_ModeNumber(body, index);
}

int DB_ModeNodeCount(FmdBody* body, int type) {
  return FMD_ModeNodeCount(body, type);
}

int DB_ModeNodeIndex(FmdBody* body, int type, int id) {
  return FMD_ModeNodeIndex(body, type, id);
}

int DB_ModeNodeID(FmdBody* body, int type, int index) {
  return FMD_ModeNodeID(body, type, index);
}

int DB_NodeCount(FmdBody* body) {
  return FMD_NodeCount(body);
}

int DB_SetNodeCoordinates(FmdBody* body, int id, double x, double y, double z) {
  return FMD_SetNodeCoordinates(body, id, x, y, z);
}

int DB_NodeCoordinates(FmdBody* body, int index, double* xyz) {
  return FMD_NodeCoordinates(body, index, xyz);
}

int DB_NodeCoordinateList(FmdBody* body, double* xyz, int* count) {
  return FMD_NodeCoordinateList(body, xyz, count);
}

int DB_ClosestNode(FmdBody* body, double* point, int interfaceOnly) {
  return FMD_ClosestNode(body, point, interfaceOnly);
}

int* DB_ClosestNodes(FmdBody* body, double* point, int wanted, int interfaceOnly, int* found) {
  return FMD_ClosestNodes(body, point, wanted, interfaceOnly, found);
}

int* DB_ClosestNodesInNeighborhood(FmdBody* body, double* point, double radius, int interfaceOnly,
                                   int* found) {
  return FMD_ClosestNodesInNeighborhood(body, point, radius, interfaceOnly, found);
}

int DB_SetNodalMass(FmdBody* body, int id, double mass) {
  return FMD_SetNodalMass(body, id, mass);
}

double DB_NodalMass(FmdBody* body, int index) {
  return FMD_NodalMass(body, index);
}

int DB_SetNodalInertia(FmdBody* body, int id, double i11, double i22, double i33, double i12, double i13,
                       double i23) {
  return FMD_SetNodalInertia(body, id, i11, i22, i33, i12, i13, i23);
}

int DB_NodalInertia(FmdBody* body, int index, double* tensor) {
  return FMD_NodalInertia(body, index, tensor);
}

int DB_SetNodalInertiaEntry(FmdBody* body, int id, int row, int column, double value) {
  return FMD_SetNodalInertiaEntry(body, id, row, column, value);
}

int DB_SetFaceList(FmdBody* body, int count, int* ids) {
  return FMD_SetFaceList(body, count, ids);
}

int DB_FaceListSize(FmdBody* body, int* faces, int* length) {
  return FMD_FaceListSize(body, faces, length);
}

int DB_ElementFaces(FmdBody* body, int* list) {
  return FMD_ElementFaces(body, list);
}

int DB_RemoveInternalGeometry(FmdBody* body) {
  return FMD_RemoveInternalGeometry(body);
}

int DB_IsCoarsened(FmdBody* body) {
  return FMD_IsCoarsened(body);
}

int DB_SetInterfaceNode(FmdBody* body, int id) {
  return FMD_SetInterfaceNode(body, id);
}

int* DB_InterfaceNodeIDs(FmdBody* body, int* count) {
  return FMD_InterfaceNodeIDs(body, count);
}

int DB_SetModeVec(FmdBody* body, int mode, int node, int type, double* values) {
  return FMD_SetModeVec(body, mode, node, type, values);
}

int DB_SetMode(FmdBody* body, int mode, int node, int type, double v1, double v2, double v3, double v4,
               double v5, double v6) {
  return FMD_SetMode(body, mode, node, type, v1, v2, v3, v4, v5, v6);
}

int DB_ModeCount(FmdBody* body) {
  return FMD_ModeCount(body);
}

int DB_ModeExist(FmdBody* body, int type) {
  return FMD_ModeExist(body, type);
}

int DB_Mode(FmdBody* body, int mode, int type, double* values, int part) {
  return FMD_Mode(body, mode, type, values, part);
}

int DB_Double_Prec(FmdBody* body) {
  return FMD_Double_Prec(body);
}

int DB_Read_Mode_Single(FmdBody* body, int mode, int type, float* values) {
  return FMD_Read_Mode_Single(body, mode, type, values);
}

int DB_Read_Mode_Double(FmdBody* body, int mode, int type, double* values) {
  return FMD_Read_Mode_Double(body, mode, type, values);
}

int DB_ModeByNode(FmdBody* body, int mode, int type, int node, double* values, int part) {
  return FMD_ModeByNode(body, mode, type, node, values, part);
}

int DB_SetModeEntry(FmdBody* body, int mode, int node, int type, int dof, double value) {
  return FMD_SetModeEntry(body, mode, node, type, dof, value);
}

int DB_SetGeneralizedMass(FmdBody* body, int row, int column, double value) {
  return FMD_SetGeneralizedMass(body, row, column, value);
}

int DB_SetGeneralizedStiffness(FmdBody* body, int row, int column, double value) {
  return FMD_SetGeneralizedStiffness(body, row, column, value);
}

int DB_SetGeneralizedDamping(FmdBody* body, int row, int column, double value) {
  return FMD_SetGeneralizedDamping(body, row, column, value);
}

int DB_NumberOfGenStiff(FmdBody* body) {
  return FMD_NumberOfGenStiff(body);
}

int DB_GenStiffSelected(FmdBody* body, double** rows, int n, int* selected) {
  return FMD_GenStiffSelected(body, rows, n, selected);
}

int DB_GenStiffFull(FmdBody* body, double* matrix, int n) {
  return FMD_GenStiffFull(body, matrix, n);
}

int DB_GenStiffSparse(FmdBody* body, double* values, int* rows, int* columns) {
  return FMD_GenStiffSparse(body, values, rows, columns);
}

int DB_NumberOfGenMass(FmdBody* body) {
  return FMD_NumberOfGenMass(body);
}

int DB_GenMassSelected(FmdBody* body, double** rows, int n, int* selected) {
  return FMD_GenMassSelected(body, rows, n, selected);
}

int DB_GenMassSparse(FmdBody* body, double* values, int* rows, int* columns) {
  return FMD_GenMassSparse(body, values, rows, columns);
}

int DB_GenMassFull(FmdBody* body, double* matrix, int n) {
  return FMD_GenMassFull(body, matrix, n);
}

int DB_GenDampExist(FmdBody* body) {
  return FMD_GenDampExist(body);
}

int DB_NumberOfGenDamp(FmdBody* body) {
  return FMD_NumberOfGenDamp(body);
}

int DB_GenDampPrincipalAndSelected(FmdBody* body, double** rows, int n, int* selected) {
  return FMD_GenDampPrincipalAndSelected(body, rows, n, selected);
}

int DB_GenDampSparse(FmdBody* body, double* values, int* rows, int* columns) {
  return FMD_GenDampSparse(body, values, rows, columns);
}

int DB_GenDampFull(FmdBody* body, double* matrix, int n) {
  return FMD_GenDampFull(body, matrix, n);
}

int DB_Eigenvalue(FmdBody* body, int mode, double* eigenvalue, double* hertz, double* radians, double* mass,
                  double* stiffness) {
  return FMD_Eigenvalue(body, mode, eigenvalue, hertz, radians, mass, stiffness);
}

int DB_Transformation(FmdBody* body, double* matrix) {
  return FMD_Transformation(body, matrix);
}

int DB_SetTransformation(FmdBody* body, double* matrix) {
  return FMD_SetTransformation(body, matrix);
}

int DB_SetModalPreload(FmdBody* body, int mode, double value) {
  return FMD_SetModalPreload(body, mode, value);
}

double* DB_GetModalPreload(FmdBody* body, int* count) {
  return FMD_GetModalPreload(body, count);
}

int DB_ModalPreloadExist(FmdBody* body) {
  return FMD_ModalPreloadExist(body);
}

int DB_SetModalLoadLabel(FmdBody* body, int load_case, char* label) {
  return FMD_SetModalLoadLabel(body, load_case, label);
}

int DB_GetModalLoadCaseLabel(FmdBody* body, int load_case, char* label) {
  return FMD_GetModalLoadCaseLabel(body, load_case, label);
}

int DB_SetModalLoad(FmdBody* body, int load_case, int mode, double value) {
  return FMD_SetModalLoad(body, load_case, mode, value);
}

double* DB_GetModalLoad(FmdBody* body, int load_case, int* count) {
  return FMD_GetModalLoad(body, load_case, count);
}

int DB_GetModalLoadCaseCount(FmdBody* body) {
  return FMD_GetModalLoadCaseCount(body);
}

int DB_SetModalLoadNodal(FmdBody* body, int load_case, int node, int coordinate, double value) {
  return FMD_SetModalLoadNodal(body, load_case, node, coordinate, value);
}

int DB_GetModalLoadNodalCaseCount(FmdBody* body) {
  return FMD_GetModalLoadNodalCaseCount(body);
}

int DB_GetModalLoadNodalCount(FmdBody* body, int load_case) {
  return FMD_GetModalLoadNodalCount(body, load_case);
}

int* DB_GetModalLoadNodalNode(FmdBody* body, int load_case) {
  return FMD_GetModalLoadNodalNode(body, load_case);
}

int* DB_GetModalLoadNodalCoord(FmdBody* body, int load_case) {
  return FMD_GetModalLoadNodalCoord(body, load_case);
}

double* DB_GetModalLoadNodalLoad(FmdBody* body, int load_case) {
  return FMD_GetModalLoadNodalLoad(body, load_case);
}

int DB_ModalStatisticsExist(FmdBody* body) {
  return FMD_ModalStatisticsExist(body);
}

int DB_GetMaxModeDisplacement(FmdBody* body, int mode, int* node, double* value) {
  return FMD_GetMaxModeDisplacement(body, mode, node, value);
}

int DB_GetMaxModeRotation(FmdBody* body, int mode, int* node, double* value) {
  return FMD_GetMaxModeRotation(body, mode, node, value);
}

int DB_GetMaxVonMisesStress(FmdBody* body, int mode, int* node, double* value) {
  return FMD_GetMaxVonMisesStress(body, mode, node, value);
}

int DB_GetMaxVonMisesStrain(FmdBody* body, int mode, int* node, double* value) {
  return FMD_GetMaxVonMisesStrain(body, mode, node, value);
}

int DB_write_FMD(FmdBody* body, char* path) {
  return FMD_write_FMD(body, path);
}

int DB_write_DB(FmdBody* body, char* path, char* qualifiers) {
  return FMD_write_DB(body, path, qualifiers);
}

int DB_Version(FmdBody* body) {
  return FMD_Version(body);
}

void DB_Destroy(void) {
  FMD_Destroy();
}

void DB_UnLink(FmdBody* body) {
  FMD_UnLink(body);
}

void DB_DeReference(FmdBody* body) {
  FMD_DeReference(body);
}

void DB_Terminate(void) {
  FMD_Terminate();
}

void DB_FreeMemory(void* pointer) {
  FMD_FreeMemory(pointer);
}

void DB_Contents(FmdBody* body, int block, FILE* out) {
  FMD_Contents(body, block, out);
}

double DB_Invar1(FmdBody* body) {
  return FMD_Invar1(body);
}

double* DB_Invar2(FmdBody* body) {
  return FMD_Invar2(body);
}

double* DB_Invar3(FmdBody* body) {
  return FMD_Invar3(body);
}

double* DB_Invar4(FmdBody* body) {
  return FMD_Invar4(body);
}

double* DB_Invar5(FmdBody* body, int mode) {
  return FMD_Invar5(body, mode);
}

double* DB_Invar6(FmdBody* body) {
  return FMD_Invar6(body);
}

double* DB_Invar7(FmdBody* body) {
  return FMD_Invar7(body);
}

double* DB_Invar8(FmdBody* body, int mode) {
  return FMD_Invar8(body, mode);
}

double* DB_Invar9(FmdBody* body, int row, int column) {
  return FMD_Invar9(body, row, column);
}

int DB_RigidBodyModeCount(FmdBody* body) {
  return FMD_RigidBodyModeCount(body);
}

void DB_RigidBodyForcesOnPrincipalAxes(FmdBody* body) {
  FMD_RigidBodyForcesOnPrincipalAxes(body);
}

int DB_DampingOnPrincipalAxes(FmdBody* body) {
  return FMD_DampingOnPrincipalAxes(body);
}

int DB_Exists(FmdBody* body, int id) {
  return FMD_Exists(body, id);
}

double DB_UCF(FmdBody* body) {
  return FMD_UCF(body);
}

int DB_ModalLoadProcessed(FmdBody* body, int load_case) {
  return FMD_ModalLoadProcessed(body, load_case);
}

int* DB_InterfaceNodes(FmdBody* body, int* count) {
  return FMD_InterfaceNodes(body, count);
}

void DB_SetVersion(FmdBody* body, int version) {
  FMD_SetVersion(body, version);
}

void DB_SetModalLoadProcessed(FmdBody* body, int load_case, int flag) {
  FMD_SetModalLoadProcessed(body, load_case, flag);
}

int DB_ModalPreloadProcessed(FmdBody* body) {
  return FMD_ModalPreloadProcessed(body);
}

void DB_SetModalPreloadProcessed(FmdBody* body, int flag) {
  FMD_SetModalPreloadProcessed(body, flag);
}

void DB_SetShouldMassNormalizeModes(FmdBody* body, int flag) {
  FMD_SetShouldMassNormalizeModes(body, flag);
}

FmdBody* DB_CreateFromFileByIndex(char* fileName, int index) {
  return FMD_CreateFromFMD(fileName, index);
}

FmdBody* DB_CreateFromFileByIndex_SurfaceMesh(char* fileName, int index) {
  return FMD_CreateFromFMD_SurfaceMesh(fileName, index);
}

int DB_IsValid(FmdBody* body) {
  return FMD_IsValid(body);
}

int DB_ModeByRef(FmdBody* body, int mode, int type, double** values, int part) {
  return FMD_ModeByRef(body, mode, type, values, part);
}

void DB_SetMonitorPointInfo(FmdBody* body, int type, int resultType, int component, int loadOperatorCount,
                            double* location, char* name, char* label) {
  FMD_SetMonitorPointInfo(body, type, resultType, component, loadOperatorCount, location, name, label);
}

int DB_SetMonitorPointOperator(FmdBody* body, int index, int kind, double* data) {
  return FMD_SetMonitorPointOperator(body, index, kind, data);
}

int DB_GetMonitorPointCount(FmdBody* body) {
  return FMD_GetMonitorPointCount(body);
}

int DB_GetMonitorPointType(FmdBody* body, int index) {
  return FMD_GetMonitorPointType(body, index);
}

int DB_GetMonitorPointResultType(FmdBody* body, int index) {
  return FMD_GetMonitorPointResultType(body, index);
}

int DB_GetMonitorPointComponent(FmdBody* body, int index) {
  return FMD_GetMonitorPointComponent(body, index);
}

int DB_GetMonitorPointNameLabel(FmdBody* body, int index, char* name, char* label) {
  return FMD_GetMonitorPointNameLabel(body, index, name, label);
}

int DB_GetMonitorPointOperatorSize(FmdBody* body, int index, int* rows, int* columns) {
  return FMD_GetMonitorPointOperatorSize(body, index, rows, columns);
}

int DB_GetMonitorPointNumLoadOperator(FmdBody* body, int index) {
  return FMD_GetMonitorPointNumLoadOperator(body, index);
}

int DB_GetMonitorPointOperator(FmdBody* body, int index, int kind, double* out) {
  return FMD_GetMonitorPointOperator(body, index, kind, out);
}

int DB_MonitorPointHasOperator(FmdBody* body, int index, int kind) {
  return FMD_MonitorPointHasOperator(body, index, kind);
}

int DB_Mirror(FmdBody* body, double* normal, double* point) {
  return FMD_Mirror(body, normal, point);
}

int DB_Rotate(FmdBody* body, double* axis, double* point, double angle) {
  return FMD_Rotate(body, axis, point, angle);
}

int DB_Translate(FmdBody* body, double* direction, double distance) {
  return FMD_Translate(body, direction, distance);
}

int DB_RenumberInterfaceNodes(FmdBody* body, int count, int* ids) {
  return FMD_RenumberInterfaceNodes(body, count, ids);
}

int DB_RenumberNodes(FmdBody* body, int offset) {
  return FMD_RenumberNodes(body, offset);
}

int DB_GetFreeEdgeCount(FmdBody* body) {
  return FMD_GetFreeEdgeCount(body);
}

int DB_GetFreeEdgeSize(FmdBody* body, int chain) {
  return FMD_GetFreeEdgeSize(body, chain);
}

int DB_GetFreeEdge(FmdBody* body, int chain, int* out) {
  return FMD_GetFreeEdge(body, chain, out);
}

void DB_PermuteFMD(FmdBody* body, double* origin, int modeCount, double massScale, double* transform,
                   double* rotation) {
  FMD_PermuteFMD(body, origin, modeCount, massScale, transform, rotation);
}

int DB_PreprocessBAPFMD(FmdBody* body) {
  return FMD_PreprocessBAPFMD(body);
}

int DB_SetMatrixOperatorInfo(FmdBody* body, char* name, char** labels, int rowCount) {
  return FMD_SetMatrixOperatorInfo(body, name, labels, rowCount);
}

int DB_SetMatrixOperatorData(FmdBody* body, int index, char* tag, int columnCount, double* data) {
  return FMD_SetMatrixOperatorData(body, index, tag, columnCount, data);
}

int DB_GetMatrixOperatorCount(FmdBody* body) {
  return FMD_GetMatrixOperatorCount(body);
}

int DB_GetMatrixOperatorNumRows(FmdBody* body, int index) {
  return FMD_GetMatrixOperatorNumRows(body, index);
}

int DB_GetMatrixOperatorName(FmdBody* body, int index, char* name) {
  return FMD_GetMatrixOperatorName(body, index, name);
}

int DB_GetMatrixOperatorLabels(FmdBody* body, int index, char** labels) {
  return FMD_GetMatrixOperatorLabels(body, index, labels);
}

int DB_GetMatrixOperatorNumSubOperator(FmdBody* body, int index) {
  return FMD_GetMatrixOperatorNumSubOperator(body, index);
}

int DB_GetMatrixOperatorSubNumCols(FmdBody* body, int index, int sub) {
  return FMD_GetMatrixOperatorSubNumCols(body, index, sub);
}

int DB_GetMatrixOperatorSubTag(FmdBody* body, int index, int sub, char* tag) {
  return FMD_GetMatrixOperatorSubTag(body, index, sub, tag);
}

int DB_GetMatrixOperatorSubData(FmdBody* body, int index, int sub, double* out) {
  return FMD_GetMatrixOperatorSubData(body, index, sub, out);
}
