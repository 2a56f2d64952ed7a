// The record of one flexible body, as plain data, its fields in their fixed order.
//
// A body is allocated zeroed in one piece and owns everything it points to, through the C allocator. Bulk
// data comes into being when first needed; mode vectors live in scratch datablocks. "Per type" means one
// entry per mode info type: 0 mode shape, 1 modal stress, 2 modal strain.
#ifndef FMDTOOLKIT_BODY_BODY_H
#define FMDTOOLKIT_BODY_BODY_H

#include <cstdint>

#include "fmdtoolkit/fmdtoolkit.h"

constexpr int TOTAL_MODE_INFO_TYPES = 3;

namespace fmd {

constexpr int kBlockCount = 35;

// Mode info types.
constexpr int kShape = 0;
constexpr int kStress = 1;
constexpr int kStrain = 2;

// Places in the four-entry unit factors.
constexpr int kForce = 0;
constexpr int kLength = 1;
constexpr int kMass = 2;
constexpr int kTime = 3;

// Values of one node in a mode vector.
constexpr int kValuesPerNode = 6;

// Eigenvalue of a mode without generalized mass; compared exactly.
constexpr double kInfiniteEigenvalue = 1.2345e+20;

// 2 pi, in the digits in which circular frequencies have always been turned into Hz.
constexpr double kTwoPi = 6.28318530718;

// Bits of the version word.
constexpr std::uint32_t kVersionXdr = 0x100;
constexpr std::uint32_t kVersionSingle = 0x200;
constexpr std::uint32_t kVersionCoarsened = 0x400;
constexpr std::uint32_t kVersionHasTable = 0x1000;

// Bytes of BlockExists.
enum SummaryByte : int {
  kNodalCoordinates = 0,
  kElementTopology = 1,
  kGlobalProperties = 2,
  kEigenvalues = 3,
  kModeShapes = 4,
  kNodalMasses = 5,
  kNodalInertias = 6,
  kUnits = 8,
  kGeneralizedStiffness = 9,
  kGeneralizedMass = 10,
  kElementFaces = 12,
  kGeneralizedDamping = 13,
  kTransformation = 14,
  kInterfaceNodes = 15,
  kModalStress = 16,
  kInvariant1 = 17,
  kInvariant2 = 18,
  kInvariant3 = 19,
  kInvariant4 = 20,
  kInvariant5 = 21,
  kInvariant7 = 22,
  kInvariant8 = 23,
  kInvariant9 = 24,
  kModalPreload = 25,
  kModalLoads = 26,
  kModalStrain = 27,
  kModalStatistics = 28,
  kPreStress = 29,
  kPreStrain = 30,
  kMonitorPoints = 31,
  kMatrixOperators = 32,
  kModalLoadNodal = 33
};

constexpr int kSummaryBytes = 100;

}  // namespace fmd

struct FmdNode {
  std::int32_t Id;
  double Coordinates[3];
  double Mass;
  double* Inertia;  // I11 I22 I33 I12 I13 I23, owned; null until set
};

// One row of a sorted node table.
struct FmdIdIndex {
  std::int32_t Id;
  std::int32_t Index;
};

struct FmdModeRecord {
  std::int32_t Mode;
  double Eigenvalue;
  double FrequencyHz;
  double FrequencyRad;
  double GeneralizedMass;
  double GeneralizedStiffness;
};

// An entry of a sparse symmetric matrix; rows and columns are mode indices.
struct FmdMatrixEntry {
  std::int32_t Row;
  std::int32_t Column;
  double Value;
};

struct FmdLoadCase {
  char Label[256];
  std::int32_t Processed;
  double* Loads;           // one per mode
  std::int32_t LoadCount;  // doubles that Loads has
};

struct FmdNodalLoadCase {
  std::int32_t Count;
  std::int32_t Capacity;
  std::int32_t* Nodes;        // node indices
  std::int32_t* Coordinates;  // 1 to 6
  double* Values;
};

struct FmdModeStatistics {
  std::int32_t MaxDisplacementNode;  // node id; 0 not known yet
  std::int32_t MaxRotationNode;
  std::int32_t MaxStressNode;
  std::int32_t MaxStrainNode;
  std::int32_t OtherNodes[9];
  double MaxDisplacement;
  double MaxRotation;
  double MaxStress;
  double MaxStrain;
  double OtherValues[9];
};

struct FmdMonitorPoint;
struct FmdMatrixOperator;

struct FmdBody {
  FmdBody* Next;                              // next live body
  FmdStream DataFile;                         // dataset behind the body
  FmdStream ModeFile[TOTAL_MODE_INFO_TYPES];  // mode vectors, per type
  float* FloatBuffer;                         // max(6 nodes, modes, 512) floats, made by the writers
  std::int32_t HasOffDiagonalGenMatrix;
  std::int32_t ShouldMassNormalizeModes;
  double UnitStepFactor[4];   // force, length, mass, time: latest change of units
  double UnitTotalFactor[4];  // the same: product of all changes since the numbers were on disk
  FmdPosition BlockPosition[fmd::kBlockCount];
  std::uint32_t Version;  // low byte format level, default 31; bit 9 single precision; bit 10 coarsened

  char Title[128];
  char CreationTime[32];
  char InputFileName[128];
  char InputFileType[16];
  char Comment1[80];
  char Comment2[80];
  char Comment3[80];
  char BlockExists[fmd::kSummaryBytes];

  std::int32_t NodeCount;
  std::int32_t NodeCapacity;
  std::int32_t PlannedNodeCount;                       // nodes per temporary mode vector
  FmdNode* Nodes;                                      // in order of first mention
  FmdNode** ModeNodes[TOTAL_MODE_INFO_TYPES];          // per type: nodes that carry data, pointers into Nodes
  FmdIdIndex* SortedNodes;                             // Nodes by id
  FmdIdIndex* SortedModeNodes[TOTAL_MODE_INFO_TYPES];  // ModeNodes by id; entry 0 is SortedNodes itself
  double GlobalMass;
  double GlobalCenterOfMass[3];
  double GlobalInertia[9];
  double BodySize;  // 0.0 not yet computed

  std::int32_t ModeCount;
  std::int32_t ModeNodeCount[TOTAL_MODE_INFO_TYPES];
  std::int32_t PlannedModeCount;  // slots in the temporary mode files
  std::int32_t ModeRecordCount;
  FmdModeRecord* ModeRecords;
  double* Transformation;                               // ModeCount squared
  std::int32_t* TransformationModes;                    // mode numbers before the transformation
  std::int32_t* ModeNumbers;                            // by mode index
  FmdPosition* ModePositions[TOTAL_MODE_INFO_TYPES];    // per type: where each mode's vector starts
  std::int32_t LoadedModeIndex[TOTAL_MODE_INFO_TYPES];  // mode whose vector ModeBuffer holds; -1 none
  double* ModeBuffer[TOTAL_MODE_INFO_TYPES];            // per type: one vector, six doubles per mode node
  double* ModeRefBuffer;                                // three doubles per node, result of FMD_ModeByRef

  char MassUnit[16];
  char LengthUnit[16];
  char TimeUnit[16];
  char ForceUnit[16];

  std::int32_t GenStiffCount;
  std::int32_t GenStiffCapacity;
  FmdMatrixEntry* GenStiff;
  std::int32_t GenMassCount;
  std::int32_t GenMassCapacity;
  FmdMatrixEntry* GenMass;
  std::int32_t GenDampCount;
  std::int32_t GenDampCapacity;
  FmdMatrixEntry* GenDamp;

  std::int32_t FaceCount;
  std::int32_t FaceListLength;
  std::int32_t* FaceList;  // per face: corner count, then node indices
  std::int32_t FaceListCapacity;
  std::int32_t InterfaceNodeCount;
  std::int32_t InterfaceNodeCapacity;
  std::int32_t* InterfaceNodes;  // node indices

  double* Invar1;    // total mass
  double* Invar2;    // 3: first moment of mass
  double* Invar3;    // 3 rows of ModeCount
  double* Invar4;    // 3 rows of ModeCount
  double** Invar5;   // ModeCount arrays of 3 rows of ModeCount
  double* Invar7;    // 9: inertia about the origin
  double** Invar8;   // ModeCount tensors of 9
  double*** Invar9;  // ModeCount rows of ModeCount tensors of 9

  std::int32_t* GeometryNodes;
  std::int32_t GeometryNodeCount;
  std::int32_t LoadCaseCount;
  FmdLoadCase* LoadCases;
  double* ModalPreload;  // one per mode
  std::int32_t PreloadProcessed;
  std::int32_t DampingOnPrincipalAxes;
  FmdModeStatistics* ModalStatistics;  // one per mode
  double* PreStress;                   // six per mode node of type 1
  std::int32_t PreStressCapacity;      // in nodes
  double* PreStrain;                   // six per mode node of type 2
  std::int32_t PreStrainCapacity;
  std::int32_t InternalGeometryRemoved;
  std::int32_t Coarsened;
  std::int32_t SurfaceMesh;

  std::int32_t ModeMemoryCapacity;  // half vectors the cache may hold; 0 not sized yet
  std::int32_t ModeMemoryUsed;
  std::int32_t KeepModesInMemory;
  double** ModeMemory[TOTAL_MODE_INFO_TYPES][2];  // per type and part: one half vector or null per mode

  std::int32_t MonitorPointCount;
  std::int32_t MonitorPointCapacity;
  FmdMonitorPoint** MonitorPoints;
  std::int32_t FreeEdgeCount;  // -1 until generated
  std::int32_t* FreeEdgeSizes;
  std::int32_t** FreeEdges;  // node ids per free edge
  std::int32_t MatrixOperatorCount;
  std::int32_t MatrixOperatorCapacity;
  FmdMatrixOperator** MatrixOperators;
  std::int32_t ReferenceCount;
  std::int32_t NodalLoadCaseCount;
  FmdNodalLoadCase* NodalLoadCases;

  // What an orthonormalisation that was broken off has not transformed: bit k for the vectors of type k, then
  // one for the monitor points.
  std::int32_t Untransformed;

  // What the library remembers to be quick; it never changes a result.
  std::int32_t ReservedNodes;                             // node entries allocated ahead of NodeCapacity
  std::int32_t LastModeIndex;                             // mode found last
  std::int32_t LastNodePlace;                             // place in SortedNodes of the node found last
  std::int32_t LastModeNodePlace[TOTAL_MODE_INFO_TYPES];  // the same in SortedModeNodes
  std::int32_t ModeMemoryRows[TOTAL_MODE_INFO_TYPES][2];  // pointers that each cache array has
  std::int32_t ModeMemoryNodes[TOTAL_MODE_INFO_TYPES];    // mode nodes that each cached half vector covers
  std::int32_t ModeBufferNodes[TOTAL_MODE_INFO_TYPES];    // mode nodes that ModeBuffer has room for
  std::int32_t ModeBufferBroken[TOTAL_MODE_INFO_TYPES];   // 1: reading the loaded vector has failed
  std::int32_t ModeRefBufferNodes;                        // nodes that ModeRefBuffer has room for
  std::int32_t StatisticsCount;                           // records that ModalStatistics has
  std::int32_t PreloadCount;                              // doubles that ModalPreload has
  std::int32_t TransformationOrder;                       // order of the Transformation matrix
  std::int32_t ModePositionCount[TOTAL_MODE_INFO_TYPES];  // modes that a stored dataset has positions for
  std::int32_t FacesReserved;                             // word of a stored face block that nobody uses
  std::int32_t Invar3Modes;                               // modes that each invariant has been made for
  std::int32_t Invar4Modes;
  std::int32_t Invar5Modes;
  std::int32_t Invar8Modes;
  std::int32_t Invar9Modes;
};

namespace fmd {

// What stands at a counted place of a matrix list whose entry could not be stored.
constexpr FmdMatrixEntry kNoEntry = {-1, -1, 0.0};

// Puts a zeroed record into the state of a new body.
void initialize_body(FmdBody& body, int planned_nodes, int planned_modes);

}  // namespace fmd

#endif
