// The interface table: the order is the interface, agreed with hosts, and never changes.
#include <cstddef>

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

constexpr std::size_t kEntries = 172;

template <typename Function>
void* address_of(Function* function) {
  return reinterpret_cast<void*>(function);
}

// Null where the library has no function: such an entry of the host's table is not touched.
void* const kTable[kEntries] = {
    address_of(DB_Create),                             // 0
    nullptr,                                           // 1
    nullptr,                                           // 2
    address_of(DB_SetInvar1),                          // 3
    address_of(DB_SetInvar2),                          // 4
    address_of(DB_SetInvar3),                          // 5
    address_of(DB_SetInvar4),                          // 6
    address_of(DB_SetInvar5),                          // 7
    address_of(DB_SetInvar6),                          // 8
    address_of(DB_SetInvar7),                          // 9
    address_of(DB_SetInvar8),                          // 10
    address_of(DB_SetInvar9),                          // 11
    address_of(DB_SetUnits),                           // 12
    address_of(DB_SetUnitsByMultiplierOnSI),           // 13
    address_of(DB_Units),                              // 14
    address_of(DB_Mass2Kilogram),                      // 15
    address_of(DB_Force2Newton),                       // 16
    address_of(DB_Length2Meter),                       // 17
    address_of(DB_Time2Second),                        // 18
    address_of(DB_SetHeader),                          // 19
    address_of(DB_Header),                             // 20
    address_of(DB_SetGlobalMass),                      // 21
    address_of(DB_TotalMassInertia),                   // 22
    address_of(DB_BodySize),                           // 23
    address_of(DB_NodeIndex),                          // 24
    address_of(DB_NodeID),                             // 25
    address_of(DB_ModeIndex),                          // 26
    address_of(DB_ModeNumber),                         // 27
    address_of(DB_ModeNodeCount),                      // 28
    address_of(DB_ModeNodeIndex),                      // 29
    address_of(DB_ModeNodeID),                         // 30
    address_of(DB_NodeCount),                          // 31
    address_of(DB_SetNodeCoordinates),                 // 32
    address_of(DB_NodeCoordinates),                    // 33
    address_of(DB_NodeCoordinateList),                 // 34
    address_of(DB_ClosestNode),                        // 35
    address_of(DB_ClosestNodes),                       // 36
    address_of(DB_ClosestNodesInNeighborhood),         // 37
    address_of(DB_SetNodalMass),                       // 38
    address_of(DB_NodalMass),                          // 39
    address_of(DB_SetNodalInertia),                    // 40
    address_of(DB_NodalInertia),                       // 41
    address_of(DB_SetNodalInertiaEntry),               // 42
    address_of(DB_SetFaceList),                        // 43
    nullptr,                                           // 44
    address_of(DB_FaceListSize),                       // 45
    address_of(DB_ElementFaces),                       // 46
    address_of(DB_RemoveInternalGeometry),             // 47
    address_of(DB_IsCoarsened),                        // 48
    address_of(DB_SetInterfaceNode),                   // 49
    address_of(DB_InterfaceNodeIDs),                   // 50
    address_of(DB_SetModeVec),                         // 51
    address_of(DB_SetMode),                            // 52
    address_of(DB_ModeCount),                          // 53
    address_of(DB_ModeExist),                          // 54
    address_of(DB_Mode),                               // 55
    address_of(DB_Double_Prec),                        // 56
    address_of(DB_Read_Mode_Single),                   // 57
    address_of(DB_Read_Mode_Double),                   // 58
    address_of(DB_ModeByNode),                         // 59
    address_of(DB_SetModeEntry),                       // 60
    address_of(DB_SetGeneralizedMass),                 // 61
    address_of(DB_SetGeneralizedStiffness),            // 62
    address_of(DB_SetGeneralizedDamping),              // 63
    address_of(DB_NumberOfGenStiff),                   // 64
    address_of(DB_GenStiffSelected),                   // 65
    address_of(DB_GenStiffFull),                       // 66
    address_of(DB_GenStiffSparse),                     // 67
    address_of(DB_NumberOfGenMass),                    // 68
    address_of(DB_GenMassSelected),                    // 69
    address_of(DB_GenMassSparse),                      // 70
    address_of(DB_GenMassFull),                        // 71
    address_of(DB_GenDampExist),                       // 72
    address_of(DB_NumberOfGenDamp),                    // 73
    address_of(DB_GenDampPrincipalAndSelected),        // 74
    address_of(DB_GenDampSparse),                      // 75
    address_of(DB_GenDampFull),                        // 76
    address_of(DB_Eigenvalue),                         // 77
    address_of(DB_Transformation),                     // 78
    address_of(DB_SetTransformation),                  // 79
    address_of(DB_SetModalPreload),                    // 80
    address_of(DB_GetModalPreload),                    // 81
    address_of(DB_ModalPreloadExist),                  // 82
    address_of(DB_SetModalLoadLabel),                  // 83
    address_of(DB_GetModalLoadCaseLabel),              // 84
    address_of(DB_SetModalLoad),                       // 85
    address_of(DB_GetModalLoad),                       // 86
    address_of(DB_GetModalLoadCaseCount),              // 87
    address_of(DB_SetModalLoadNodal),                  // 88
    address_of(DB_GetModalLoadNodalCaseCount),         // 89
    address_of(DB_GetModalLoadNodalCount),             // 90
    address_of(DB_GetModalLoadNodalNode),              // 91
    address_of(DB_GetModalLoadNodalCoord),             // 92
    address_of(DB_GetModalLoadNodalLoad),              // 93
    address_of(DB_ModalStatisticsExist),               // 94
    address_of(DB_GetMaxModeDisplacement),             // 95
    address_of(DB_GetMaxModeRotation),                 // 96
    address_of(DB_GetMaxVonMisesStress),               // 97
    address_of(DB_GetMaxVonMisesStrain),               // 98
    address_of(DB_write_FMD),                          // 99
    address_of(DB_write_DB),                           // 100
    address_of(DB_Version),                            // 101
    address_of(DB_Destroy),                            // 102
    address_of(DB_UnLink),                             // 103
    address_of(DB_DeReference),                        // 104
    address_of(DB_Terminate),                          // 105
    address_of(DB_FreeMemory),                         // 106
    nullptr,                                           // 107
    nullptr,                                           // 108
    nullptr,                                           // 109
    nullptr,                                           // 110
    address_of(DB_Contents),                           // 111
    address_of(DB_Invar1),                             // 112
    address_of(DB_Invar2),                             // 113
    address_of(DB_Invar3),                             // 114
    address_of(DB_Invar4),                             // 115
    address_of(DB_Invar5),                             // 116
    address_of(DB_Invar6),                             // 117
    address_of(DB_Invar7),                             // 118
    address_of(DB_Invar8),                             // 119
    address_of(DB_Invar9),                             // 120
    address_of(DB_RigidBodyModeCount),                 // 121
    address_of(DB_RigidBodyForcesOnPrincipalAxes),     // 122
    address_of(DB_DampingOnPrincipalAxes),             // 123
    address_of(DB_Exists),                             // 124
    nullptr,                                           // 125
    address_of(DB_UCF),                                // 126
    address_of(DB_ModalLoadProcessed),                 // 127
    address_of(DB_InterfaceNodes),                     // 128
    address_of(DB_SetVersion),                         // 129
    address_of(DB_SetModalLoadProcessed),              // 130
    address_of(DB_ModalPreloadProcessed),              // 131
    address_of(DB_SetModalPreloadProcessed),           // 132
    address_of(DB_SetShouldMassNormalizeModes),        // 133
    address_of(DB_BodyCount),                          // 134
    address_of(DB_GetBodyInfo),                        // 135
    address_of(DB_CreateFromFileByIndex),              // 136
    address_of(DB_CreateFromFileByIndex_SurfaceMesh),  // 137
    address_of(DB_IsValid),                            // 138
    address_of(DB_ModeByRef),                          // 139
    address_of(DB_GetFlexType),                        // 140
    address_of(DB_SetMonitorPointInfo),                // 141
    address_of(DB_SetMonitorPointOperator),            // 142
    address_of(DB_GetMonitorPointCount),               // 143
    address_of(DB_GetMonitorPointType),                // 144
    address_of(DB_GetMonitorPointResultType),          // 145
    address_of(DB_GetMonitorPointComponent),           // 146
    address_of(DB_GetMonitorPointNameLabel),           // 147
    address_of(DB_GetMonitorPointOperatorSize),        // 148
    address_of(DB_GetMonitorPointNumLoadOperator),     // 149
    address_of(DB_GetMonitorPointOperator),            // 150
    address_of(DB_MonitorPointHasOperator),            // 151
    address_of(DB_Mirror),                             // 152
    address_of(DB_Rotate),                             // 153
    address_of(DB_Translate),                          // 154
    address_of(DB_RenumberInterfaceNodes),             // 155
    address_of(DB_RenumberNodes),                      // 156
    address_of(DB_GetFreeEdgeCount),                   // 157
    address_of(DB_GetFreeEdgeSize),                    // 158
    address_of(DB_GetFreeEdge),                        // 159
    address_of(DB_PermuteFMD),                         // 160
    address_of(DB_PreprocessBAPFMD),                   // 161
    address_of(DB_SetMatrixOperatorInfo),              // 162
    address_of(DB_SetMatrixOperatorData),              // 163
    address_of(DB_GetMatrixOperatorCount),             // 164
    address_of(DB_GetMatrixOperatorNumRows),           // 165
    address_of(DB_GetMatrixOperatorName),              // 166
    address_of(DB_GetMatrixOperatorLabels),            // 167
    address_of(DB_GetMatrixOperatorNumSubOperator),    // 168
    address_of(DB_GetMatrixOperatorSubNumCols),        // 169
    address_of(DB_GetMatrixOperatorSubTag),            // 170
    address_of(DB_GetMatrixOperatorSubData),           // 171
};

}  // namespace

int PopulateInterface(void** table) {
  for (std::size_t entry = 0; entry < kEntries; ++entry) {
    if (kTable[entry] != nullptr) table[entry] = kTable[entry];
  }
  return 1;
}
