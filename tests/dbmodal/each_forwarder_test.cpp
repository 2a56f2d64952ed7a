// Every forwarder against its target: the same type, and on a null body the same result and the same words.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace {

// What pointers of the calls point at: zeros, wherever one looks.
double numbers[64];
char text[256];
double* rows[64];

// An argument that says nothing: no body, zero, or room for whatever is written.
template <typename T>
T argument() {
  if constexpr (std::is_same_v<T, double*>) return numbers;
  if constexpr (std::is_same_v<T, float*> || std::is_same_v<T, int*>) return reinterpret_cast<T>(numbers);
  if constexpr (std::is_same_v<T, char*>) return text;
  if constexpr (std::is_same_v<T, double**>) return rows;
  return T{};
}

// A result as a number; of a pointer only whether it is there.
template <typename T>
double number_of(T result) {
  if constexpr (std::is_pointer_v<T>) {
    return result == nullptr ? 0.0 : 1.0;
  } else {
    return static_cast<double>(result);
  }
}

template <typename Result, typename... Arguments>
double call(Result (*function)(Arguments...)) {
  std::memset(numbers, 0, sizeof numbers);
  std::memset(text, 0, sizeof text);
  for (double*& row : rows) row = numbers;
  if constexpr (std::is_void_v<Result>) {
    function(argument<Arguments>()...);
    return 0.0;
  } else {
    return number_of(function(argument<Arguments>()...));
  }
}

struct Pair {
  const char* name;
  double (*forwarder)();
  double (*target)();
};

#define PAIR(name)                                                                  \
  Pair {                                                                            \
#name,                                                                            \
        [] {                                                                          \
          static_assert(std::is_same_v<decltype(DB_##name), decltype(FMD_##name)>);   \
          return call(DB_##name);                                                     \
        },                                                                            \
        [] { return call(FMD_##name); } \
  }

const Pair kPairs[] = {
    PAIR(Create),
    PAIR(SetInvar1),
    PAIR(SetInvar2),
    PAIR(SetInvar3),
    PAIR(SetInvar4),
    PAIR(SetInvar5),
    PAIR(SetInvar6),
    PAIR(SetInvar7),
    PAIR(SetInvar8),
    PAIR(SetInvar9),
    PAIR(SetUnits),
    PAIR(SetUnitsByMultiplierOnSI),
    PAIR(Units),
    PAIR(Mass2Kilogram),
    PAIR(Force2Newton),
    PAIR(Length2Meter),
    PAIR(Time2Second),
    PAIR(SetHeader),
    PAIR(Header),
    PAIR(SetGlobalMass),
    PAIR(TotalMassInertia),
    PAIR(BodySize),
    PAIR(NodeIndex),
    PAIR(NodeID),
    PAIR(ModeIndex),
    PAIR(ModeNumber),
    PAIR(ModeNodeCount),
    PAIR(ModeNodeIndex),
    PAIR(ModeNodeID),
    PAIR(NodeCount),
    PAIR(SetNodeCoordinates),
    PAIR(NodeCoordinates),
    PAIR(NodeCoordinateList),
    PAIR(ClosestNode),
    PAIR(ClosestNodes),
    PAIR(ClosestNodesInNeighborhood),
    PAIR(SetNodalMass),
    PAIR(NodalMass),
    PAIR(SetNodalInertia),
    PAIR(NodalInertia),
    PAIR(SetNodalInertiaEntry),
    PAIR(SetFaceList),
    PAIR(FaceListSize),
    PAIR(ElementFaces),
    PAIR(RemoveInternalGeometry),
    PAIR(IsCoarsened),
    PAIR(SetInterfaceNode),
    PAIR(InterfaceNodeIDs),
    PAIR(SetModeVec),
    PAIR(SetMode),
    PAIR(ModeCount),
    PAIR(ModeExist),
    PAIR(Mode),
    PAIR(Double_Prec),
    PAIR(Read_Mode_Single),
    PAIR(Read_Mode_Double),
    PAIR(ModeByNode),
    PAIR(SetModeEntry),
    PAIR(SetGeneralizedMass),
    PAIR(SetGeneralizedStiffness),
    PAIR(SetGeneralizedDamping),
    PAIR(NumberOfGenStiff),
    PAIR(GenStiffSelected),
    PAIR(GenStiffFull),
    PAIR(GenStiffSparse),
    PAIR(NumberOfGenMass),
    PAIR(GenMassSelected),
    PAIR(GenMassSparse),
    PAIR(GenMassFull),
    PAIR(GenDampExist),
    PAIR(NumberOfGenDamp),
    PAIR(GenDampPrincipalAndSelected),
    PAIR(GenDampSparse),
    PAIR(GenDampFull),
    PAIR(Eigenvalue),
    PAIR(Transformation),
    PAIR(SetTransformation),
    PAIR(SetModalPreload),
    PAIR(GetModalPreload),
    PAIR(ModalPreloadExist),
    PAIR(SetModalLoadLabel),
    PAIR(GetModalLoadCaseLabel),
    PAIR(SetModalLoad),
    PAIR(GetModalLoad),
    PAIR(GetModalLoadCaseCount),
    PAIR(SetModalLoadNodal),
    PAIR(GetModalLoadNodalCaseCount),
    PAIR(GetModalLoadNodalCount),
    PAIR(GetModalLoadNodalNode),
    PAIR(GetModalLoadNodalCoord),
    PAIR(GetModalLoadNodalLoad),
    PAIR(ModalStatisticsExist),
    PAIR(GetMaxModeDisplacement),
    PAIR(GetMaxModeRotation),
    PAIR(GetMaxVonMisesStress),
    PAIR(GetMaxVonMisesStrain),
    PAIR(write_FMD),
    PAIR(write_DB),
    PAIR(PermuteFMD),
    PAIR(PreprocessBAPFMD),
    PAIR(Version),
    PAIR(Destroy),
    PAIR(UnLink),
    PAIR(DeReference),
    PAIR(Terminate),
    PAIR(FreeMemory),
    PAIR(Contents),
    PAIR(Invar1),
    PAIR(Invar2),
    PAIR(Invar3),
    PAIR(Invar4),
    PAIR(Invar5),
    PAIR(Invar6),
    PAIR(Invar7),
    PAIR(Invar8),
    PAIR(Invar9),
    PAIR(RigidBodyModeCount),
    PAIR(RigidBodyForcesOnPrincipalAxes),
    PAIR(DampingOnPrincipalAxes),
    PAIR(Exists),
    PAIR(UCF),
    PAIR(ModalLoadProcessed),
    PAIR(InterfaceNodes),
    PAIR(SetVersion),
    PAIR(SetModalLoadProcessed),
    PAIR(ModalPreloadProcessed),
    PAIR(SetModalPreloadProcessed),
    PAIR(SetShouldMassNormalizeModes),
    PAIR(IsValid),
    PAIR(ModeByRef),
    PAIR(SetMonitorPointInfo),
    PAIR(SetMonitorPointOperator),
    PAIR(GetMonitorPointCount),
    PAIR(GetMonitorPointType),
    PAIR(GetMonitorPointResultType),
    PAIR(GetMonitorPointComponent),
    PAIR(GetMonitorPointNameLabel),
    PAIR(GetMonitorPointOperatorSize),
    PAIR(GetMonitorPointNumLoadOperator),
    PAIR(GetMonitorPointOperator),
    PAIR(MonitorPointHasOperator),
    PAIR(Mirror),
    PAIR(Rotate),
    PAIR(Translate),
    PAIR(RenumberInterfaceNodes),
    PAIR(RenumberNodes),
    PAIR(GetFreeEdgeCount),
    PAIR(GetFreeEdgeSize),
    PAIR(GetFreeEdge),
    PAIR(SetMatrixOperatorInfo),
    PAIR(SetMatrixOperatorData),
    PAIR(GetMatrixOperatorCount),
    PAIR(GetMatrixOperatorNumRows),
    PAIR(GetMatrixOperatorName),
    PAIR(GetMatrixOperatorLabels),
    PAIR(GetMatrixOperatorNumSubOperator),
    PAIR(GetMatrixOperatorSubNumCols),
    PAIR(GetMatrixOperatorSubTag),
    PAIR(GetMatrixOperatorSubData),
};

class EachForwarder : public fmdtest::SessionTest, public ::testing::WithParamInterface<Pair> {};

TEST_P(EachForwarder, SaysAndAnswersWhatItsTargetDoes) {
  const double expected = GetParam().target();
  const std::vector<std::string> said = log.all;
  FMD_Terminate();
  log.clear();
  EXPECT_EQ(GetParam().forwarder(), expected);
  EXPECT_EQ(log.all, said);
}

INSTANTIATE_TEST_SUITE_P(Of, EachForwarder, ::testing::ValuesIn(kPairs),
                         [](const auto& pair) { return std::string(pair.param.name); });

}  // namespace
