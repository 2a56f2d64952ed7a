// The contents report against texts written by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

std::string banner(int block, const std::string& title) {
  const std::string rule(74, '-');
  const std::string empty = "|" + std::string(72, ' ') + "|\n";
  std::string number = std::to_string(block);
  number.insert(0, 3 - number.size(), ' ');
  std::string name = title;
  name.append(30 - title.size(), ' ');
  return "\n\n" + rule + "\n" + empty + "|    Block " + number + ":      " + name + std::string(22, ' ') +
         "|\n" + empty + rule + "\n\n\n";
}

const std::string kTildes = std::string(108, '~') + "\n\n";
const std::string kModeLine = "=================================\n\n";

class Contents : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(2, 2);
    ASSERT_NE(body, nullptr);
  }

  // Two nodes in falling order of id, two modes, and something of every block.
  void fill() {
    FMD_SetNodeCoordinates(body, 12, 1.0, 2.0, -3.0);
    FMD_SetNodeCoordinates(body, 5, 0.5, 0.0, 1e10);
    FMD_SetNodalMass(body, 12, 2.5);
    FMD_SetNodalInertia(body, 5, 11, 22, 33, 12, 13, 23);
    for (const int mode : {7, 9}) {
      FMD_SetGeneralizedMass(body, mode, mode, 1.0);
      FMD_SetGeneralizedStiffness(body, mode, mode, 4.0 * mode * mode);
      FMD_SetMode(body, mode, 12, 0, mode, 0, 0, 0, 0, 0);
      FMD_SetMode(body, mode, 5, 0, 0, -0.5, 0, 0, 0.25, 0);
      FMD_SetMode(body, mode, 5, 1, 3, 0, 0, 0, 0, 0);
      FMD_SetMode(body, mode, 12, 2, 0, 0, 0, 1, 0, 0);
    }
  }

  std::string listing(int block) const {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const out = open_memstream(&text, &size);
    FMD_Contents(body, block, out);
    std::fclose(out);
    std::string copy(text, size);
    std::free(text);
    return copy;
  }

  FmdBody* body = nullptr;
};

TEST_F(Contents, NumbersOutsideOfTheBlocksPrintNothing) {
  EXPECT_EQ(listing(0), "");
  EXPECT_EQ(listing(36), "");
  EXPECT_EQ(listing(-1), "");
  FMD_Contents(body, 1, nullptr);
  FmdBody* const kept = body;
  body = nullptr;
  EXPECT_EQ(listing(1), "");
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
  body = kept;
}

TEST_F(Contents, VersionOfAFreshBody) {
  EXPECT_EQ(listing(1),
            banner(1, "Version Code:") +
                "FMD version: 3.1\nPrecision: Double   \nPlatform independent (XDR encoded): Yes \n"
                "Coarsened or sketched mesh: No \n\n");
  body->Version = 60 | 0x200 | 0x400;
  EXPECT_EQ(listing(1),
            banner(1, "Version Code:") +
                "FMD version: 6.0\nPrecision: Single   \nPlatform independent (XDR encoded): No \n"
                "Coarsened or sketched mesh: Yes \n\n");
}

TEST_F(Contents, Header) {
  std::snprintf(body->Title, sizeof body->Title, "Arm");
  std::snprintf(body->CreationTime, sizeof body->CreationTime, "today ");
  std::snprintf(body->InputFileName, sizeof body->InputFileName, "arm.inp");
  std::snprintf(body->InputFileType, sizeof body->InputFileType, "deck");
  std::snprintf(body->Comment2, sizeof body->Comment2, "two");
  EXPECT_EQ(listing(2), banner(2, "Header:") +
                            "Title: Arm\nDate: today \nInput file name: arm.inp\nInput file type: deck\n"
                            "Comments:\n  \n  two\n  \n\n");
}

TEST_F(Contents, SummaryNamesAllBlocks) {
  fill();
  const std::string text = listing(3);
  EXPECT_EQ(text.substr(0, 200), (banner(3, "Content Summary:") + "Existence:\n").substr(0, 200));
  EXPECT_NE(text.find("              Version code (1) Yes\n"), std::string::npos);
  EXPECT_NE(text.find("              Nodal_coords (4) Yes\n"), std::string::npos);
  EXPECT_NE(text.find("          Element_topology (5) No\n"), std::string::npos);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 9 + 1 + 35 + 1);
  EXPECT_NE(text.find(" Modal Load Nodal (35) No\n"), std::string::npos);
}

TEST_F(Contents, NodesComeInOrderOfId) {
  fill();
  EXPECT_EQ(listing(4), banner(4, "Nodal Coords:") +
                            "   5     5.0000000000e-01     0.0000000000e+00     1.0000000000e+10 \n"
                            "  12     1.0000000000e+00     2.0000000000e+00    -3.0000000000e+00 \n\n");
  EXPECT_EQ(listing(9), banner(9, "Nodal Masses:") + "   5\t0.000000e+00\n  12\t2.500000e+00\n\n");
  EXPECT_EQ(listing(10),
            banner(10, "Nodal Inertias:") +
                "Inertia Tensor of Node     5:     11.0000000000     12.0000000000     13.0000000000\n"
                "                                  12.0000000000     22.0000000000     23.0000000000\n"
                "                                  13.0000000000     23.0000000000     33.0000000000\n\n");
}

TEST_F(Contents, TopologyIsObsolete) {
  EXPECT_EQ(listing(5),
            banner(5, "Element Topology:") + "Obsolete: Reported as part of face list, block 14\n\n");
}

TEST_F(Contents, GlobalProperties) {
  EXPECT_EQ(listing(6), banner(6, "Global Body Properties:") + "No global body property information\n\n");
  double center[3] = {1, 2, 3};
  double inertia[9] = {4, 5, 6, 5, 7, 8, 6, 8, 9};
  FMD_SetGlobalMass(body, 12.5, center, inertia);
  EXPECT_EQ(listing(6), banner(6, "Global Body Properties:") +
                            "Mass:     12.5000000000\n"
                            "Center of Mass:      1.0000000000      2.0000000000      3.0000000000\n"
                            "Inertia Tensor:      4.0000000000      5.0000000000      6.0000000000\n"
                            "                     5.0000000000      7.0000000000      8.0000000000\n"
                            "                     6.0000000000      8.0000000000      9.0000000000\n\n");
}

TEST_F(Contents, Eigenvalues) {
  EXPECT_EQ(listing(7), banner(7, "Eigenvalues:") + "No eigenvalue information\n\n");
  fill();
  const std::string text = listing(7);
  EXPECT_NE(text.find(" Mode  Eigenvalue         (Hz)               (Rad/Sec)           Mass              "
                      "Stiffness      \n===== ================== "),
            std::string::npos);
  EXPECT_NE(text.find("    7  1.9600000000e+02  2.2281692033e+00  1.4000000000e+01  1.0000000000e+00  "
                      "1.9600000000e+02\n"),
            std::string::npos)
      << text;
}

TEST_F(Contents, ModeShapes) {
  EXPECT_EQ(listing(8), banner(8, "Mode Shapes:"));
  fill();
  const std::string heading =
      " ID             dx               dy               dz               ax               ay               "
      "az\n";
  const std::string zero = "  0.000000000e+00";
  const std::string five =
      "    5 " + zero + " -5.000000000e-01" + zero + zero + "  2.500000000e-01" + zero + "\n";
  EXPECT_EQ(listing(8), banner(8, "Mode Shapes:") + "Number of Mode Shapes 2\n\n\nMODE NUMBER 7" + kModeLine +
                            heading + kTildes + five + "   12   7.000000000e+00" + zero + zero + zero + zero +
                            zero + "\n\nMODE NUMBER 9" + kModeLine + heading + kTildes + five +
                            "   12   9.000000000e+00" + zero + zero + zero + zero + zero + "\n\n");
}

TEST_F(Contents, StressAndStrainHaveTheirOwnNodes) {
  EXPECT_EQ(listing(18), banner(18, "Node Stress per Mode:") + "\tNo Modal Stress Information\n\n");
  EXPECT_EQ(listing(29), banner(29, "Node Strain per Mode:") + "\tNo Modal Strain Information\n\n");
  fill();
  const std::string zero = "  0.000000000e+00";
  const std::string stress =
      "   ID        sigma_x          sigma_y          sigma_z           tau_xy           tau_xz           "
      "tau_yz\n" +
      kTildes + "    5   3.000000000e+00" + zero + zero + zero + zero + zero + "\n";
  EXPECT_EQ(listing(18), banner(18, "Node Stress per Mode:") +
                             "Number of Stress Shapes 2\n\n\nSTRESS SHAPE NUMBER 7" + kModeLine + stress +
                             "\nSTRESS SHAPE NUMBER 9" + kModeLine + stress + "\n");
  const std::string strain =
      "   ID      epsilon_x        epsilon_y        epsilon_z         gamma_xy         gamma_xz         "
      "gamma_yz\n" +
      kTildes + "   12 " + zero + zero + zero + "   1.000000000e+00" + zero + zero + "\n";
  const std::string text = listing(29);
  EXPECT_EQ(text.find("Number of Strain Shapes 2\n\n\nSTRAIN SHAPE NUMBER 7" + kModeLine),
            banner(29, "").size());
  EXPECT_NE(text.find("epsilon_x        epsilon_y        epsilon_z         gamma_xy"), std::string::npos);
}

TEST_F(Contents, PreStressIsOneVector) {
  EXPECT_EQ(listing(31), banner(31, "Nodal Pre-Stress:") + "\tNo Nodal Pre-Stress Information\n\n");
  EXPECT_EQ(listing(32), banner(32, "Nodal Pre-Strain:") + "\tNo Nodal Pre-Strain Information\n\n");
  double values[6] = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 8, values);
  EXPECT_EQ(
      listing(31),
      banner(31, "Nodal Pre-Stress:") +
          "   ID        sigma_x          sigma_y          sigma_z           tau_xy           tau_xz          "
          " "
          "tau_yz\n" +
          kTildes +
          "    8   1.000000000e+00  2.000000000e+00  3.000000000e+00  4.000000000e+00  5.000000000e+00  "
          "6.000000000e+00\n\n");
}

TEST_F(Contents, UnitsShowTheDefaults) {
  EXPECT_EQ(listing(11), banner(11, "FMD Default Units:") +
                             "Units:\nMass Units    KILOGRAM\nLength Units  METER\nTime Units    SECOND\n"
                             "Force Units   NEWTON\n\n");
}

TEST_F(Contents, MatricesByModeNumber) {
  EXPECT_EQ(listing(12), banner(12, "Generalized Stiffness:") + "No generalized stiffness information.\n\n");
  EXPECT_EQ(listing(13), banner(13, "Generalized Mass:") + "No generalized mass information in FMD\n\n");
  fill();
  EXPECT_EQ(listing(12), banner(12, "Generalized Stiffness:") + "    7       7       1.9600000000e+02\n" +
                             "    9       9       3.2400000000e+02\n\n");
  EXPECT_EQ(listing(13), banner(13, "Generalized Mass:") + "    7       7       1.0000000000e+00\n" +
                             "    9       9       1.0000000000e+00\n\n");
}

TEST_F(Contents, FacesByNodeId) {
  EXPECT_EQ(listing(14), banner(14, "Element Faces:"));
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbtoc"));
  int ids[] = {12, 5, 1234567};
  FMD_SetFaceList(body, 3, ids);
  EXPECT_EQ(listing(14),
            banner(14, "Element Faces:") + "number of faces 1\n\n      1           12      51234567\n\n");
}

TEST_F(Contents, DampingSaysWhereItStands) {
  EXPECT_EQ(listing(15),
            banner(15, "Generalized Damping:") + "No generalized damping information in FMD.\n\n");
  FMD_SetGeneralizedDamping(body, 7, 9, -0.5);
  EXPECT_EQ(listing(15),
            banner(15, "Generalized Damping:") +
                "Note:\tThe generalized damping matrix has not been projected onto\n\tprincipal "
                "coordinates.  Rows and columns correspond to rigid body\n\tand flexible modes.\n\n"
                "    1       2      -5.0000000000e-01\n\n");
  body->DampingOnPrincipalAxes = 1;
  EXPECT_NE(listing(15).find("first 6 rows and columns correspond KINEX\n\tprincipal rigid body degrees of "
                             "freedom.  The remaining rows\n\tand columns correspond to flexible modes.\n\n"),
            std::string::npos);
}

TEST_F(Contents, Transformation) {
  EXPECT_EQ(listing(16), banner(16, "Mode Shape Transformation:") +
                             "\tNo Mode Shape Transformation, modes used as is.\n\n");
  fill();
  double t[4] = {1, 2, 3, -4};
  FMD_SetTransformation(body, t);
  EXPECT_EQ(listing(16), banner(16, "Mode Shape Transformation:") +
                             "Number of modes: 2\n\n1.00000e+00 2.00000e+00 \n3.00000e+00 -4.00000e+00 \n\n");
}

TEST_F(Contents, InterfaceNodes) {
  fill();
  FMD_SetInterfaceNode(body, 5);
  FMD_SetInterfaceNode(body, 12);
  EXPECT_EQ(listing(17), banner(17, "Interface Nodes:") + "   1    5 \n   2   12 \n\n");
}

TEST_F(Contents, RigidInvariants) {
  EXPECT_EQ(listing(19), banner(19, "Invariant 1:") + "\t0.000000 \n\n");
  FMD_SetInvar1(body, 2.5);
  double moment[3] = {1, -2, 3};
  FMD_SetInvar2(body, moment);
  double seven[6] = {1, 2, 3, 4, 5, 6};
  FMD_SetInvar7(body, seven);
  EXPECT_EQ(listing(20), banner(20, "Invariant 2:") + "\t1.000000\t-2.000000\t3.000000 \n\n");
  EXPECT_EQ(listing(24), banner(24, "Invariant 7:") +
                             "     1.0000000000e+00  4.0000000000e+00  5.0000000000e+00 \n"
                             "     4.0000000000e+00  2.0000000000e+00  6.0000000000e+00 \n"
                             "     5.0000000000e+00  6.0000000000e+00  3.0000000000e+00 \n\n");
}

TEST_F(Contents, InvariantsOverModes) {
  EXPECT_EQ(listing(21), "\tNo Invariant 3 information\n\n");
  EXPECT_EQ(listing(22), "\tNo Invariant 4 information\n\n");
  fill();
  double v[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  FMD_SetInvar3(body, 9, v);
  FMD_SetInvar4(body, 7, v);
  FMD_SetInvar5(body, 7, 9, v);
  FMD_SetInvar8(body, 7, v);
  FMD_SetInvar9(body, 7, 9, v);
  const std::string zeros = "  0.0000000000e+00  0.0000000000e+00  0.0000000000e+00 \n";
  const std::string ones = "  1.0000000000e+00  2.0000000000e+00  3.0000000000e+00 \n";
  EXPECT_EQ(listing(21), banner(21, "Invariant 3:") + "    7, " + zeros + "    9, " + ones + "\n");
  EXPECT_EQ(listing(22), banner(22, "Invariant 4:") + "    7, " + ones + "    9, " + zeros + "\n");
  const std::string minus = " -1.0000000000e+00 -2.0000000000e+00 -3.0000000000e+00 \n";
  EXPECT_EQ(listing(23), banner(23, "Invariant 5:") + "\nMode: 7 \n    7, " + zeros + "    9, " + ones +
                             "\nMode: 9 \n    7, " + minus + "    9, " + zeros + "\n");
  const std::string tensor = "   " + ones +
                             "     4.0000000000e+00  5.0000000000e+00  6.0000000000e+00 \n"
                             "     7.0000000000e+00  8.0000000000e+00  9.0000000000e+00 \n";
  const std::string empty = "   " + zeros + "   " + zeros + "   " + zeros;
  EXPECT_EQ(listing(25), banner(25, "Invariant 8:") + "\nMode: 7\n" + tensor + "\nMode: 9\n" + empty + "\n");
  const std::string transposed =
      "     1.0000000000e+00  4.0000000000e+00  7.0000000000e+00 \n"
      "     2.0000000000e+00  5.0000000000e+00  8.0000000000e+00 \n"
      "     3.0000000000e+00  6.0000000000e+00  9.0000000000e+00 \n";
  EXPECT_EQ(listing(26), banner(26, "Invariant 9:") + "\nModes: 7 7\n" + empty + "\nModes: 7 9\n" + tensor +
                             "\nModes: 9 7\n" + transposed + "\nModes: 9 9\n" + empty + "\n");
}

TEST_F(Contents, Loads) {
  EXPECT_EQ(listing(27), banner(27, "Modal Preload:") + "\tNo Preload information.\n\n");
  EXPECT_EQ(listing(28), banner(28, "Modal Loads:") + "\tNo Modal Load information.\n\n");
  EXPECT_EQ(listing(35), banner(35, "Modal Load Nodal:") + "\tNo Modal Load Nodal Information.\n\n");
  fill();
  FMD_SetModalPreload(body, 9, -1.5);
  EXPECT_EQ(listing(27), banner(27, "Modal Preload:") + "\n7      0.0000000000\n\n9     -1.5000000000\n\n");
  FMD_SetModalLoad(body, 1, 7, 2.0);
  FMD_SetModalLoadProcessed(body, 1, 1);
  body->LoadCases[0].Label[0] = '\0';
  EXPECT_EQ(listing(28),
            banner(28, "Modal Loads:") +
                "\nCase: 1     (not yet projected on principal axes)\n7      0.0000000000\n9      "
                "0.0000000000\n\nCase: Load Case 2     (already projected on principal axes)\n7      "
                "2.0000000000\n9      0.0000000000\n\n");
  FMD_SetModalLoadNodal(body, 1, 12, 3, -2.5);
  EXPECT_EQ(listing(35),
            banner(35, "Modal Load Nodal:") +
                "Number of Modal Load Nodal: 2\n\nCase Number 2 ===========================\n\n"
                " node_id     coord         load       \n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"
                "      12       3    -2.500000000e+00\n\n");
}

TEST_F(Contents, Statistics) {
  EXPECT_EQ(listing(30), banner(30, "Modal Statistics:") + "\tNo Modal Statistic Information\n\n");
  fill();
  FMD_GetMaxModeDisplacement(body, 7, nullptr, nullptr);
  const std::string text = listing(30);
  EXPECT_EQ(text.find("Number of Modes 2\n\nMODE NUMBER 7" + kModeLine +
                      "Max. Trans. Magnitude:      Node ID = 12  Magnitude = 7.000000e+00\n"
                      "Max. Small Rot. Magnitude:  Node ID = 5  Magnitude = 2.500000e-01\n"
                      "Max. Von Mises Stress:      Node ID = 5  Magnitude = 3.000000e+00\n"
                      "Max. Von Mises Strain:      Node ID = 12  Magnitude = 5.773503e-01\n"),
            banner(30, "").size())
      << text;
}

TEST_F(Contents, MonitorPointsRunOnThroughTheirOperators) {
  EXPECT_EQ(listing(33), banner(33, "Monitor Point:") + "\tNo Monitor Point Information\n\n");
  fill();
  double location[3] = {};
  char name[] = "TIP";
  char label[] = "tip";
  FMD_SetMonitorPointInfo(body, 4, 2, 1234, 1, location, name, label);
  double data[8] = {1, 2, 3, 4, 5, 6, 7, -8};
  FMD_SetMonitorPointOperator(body, 0, 1, data);
  FMD_SetMonitorPointOperator(body, 0, 4, data);
  const std::string values =
      "  1.000000000e+00   2.000000000e+00   3.000000000e+00   4.000000000e+00   5.000000000e+00   "
      "6.000000000e+00 \n   7.000000000e+00  -8.000000000e+00 ";
  EXPECT_EQ(listing(33),
            banner(33, "Monitor Point:") +
                " Number of Monitor Points: 1\n\n\n=======      Monitor Point: 1       =======\n "
                "Name: TIP     \n Label: tip" +
                std::string(53, ' ') +
                "\n Type: MONDSP1 \n Result Type: STRESS  \n Component: 1234  \n "
                "Modal Displacement Operator:        4 X 2         RORDER\n " +
                values + "Modal Load Operator:        1 X 4        X 2        RORDER\n " + values + "\n \n");
}

TEST_F(Contents, MatrixOperators) {
  EXPECT_EQ(listing(34), banner(34, "Matrix Operator:") + "\tNo Matrix Operator Information.\n\n");
  char name[] = "OUT";
  char first[] = "first";
  char empty[] = "";
  char* labels[] = {first, empty};
  char tag[] = "A";
  double data[4] = {1, 2, -3, 4};
  FMD_SetMatrixOperatorInfo(body, name, labels, 2);
  FMD_SetMatrixOperatorData(body, 0, tag, 2, data);
  FMD_SetMatrixOperatorData(body, 0, tag, 1, data);
  EXPECT_EQ(listing(34),
            banner(34, "Matrix Operator:") +
                "Number of Matrix Operator: 1\n\nMatrix Operator Number 1 "
                "===========================\n\nName of operator:     OUT\nSize of row:          2\n"
                "Size of sub operator: 2\nLabel of row 1:      first\n"
                "\n Sub Matrix Operator Number 1 ---------------------\n\n Tag:            A\n"
                " Size of column: 2\n Data:\n  1.000000000e+00  2.000000000e+00\n"
                " -3.000000000e+00  4.000000000e+00\n"
                "\n Sub Matrix Operator Number 1 ---------------------\n\n Tag:            A\n"
                " Size of column: 1\n Data:\n  1.000000000e+00\n  2.000000000e+00\n\n");
}

TEST_F(Contents, FailedAllocationsEndTheListingOfTheBlock) {
  fill();
  FMD_SetKeepModesInMemory(body, 0);
  fmd::fail_allocation(1);
  EXPECT_EQ(listing(8), banner(8, "Mode Shapes:"));
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbtoc"));
  fmd::fail_allocation(2);
  EXPECT_EQ(listing(12), banner(12, "Generalized Stiffness:"));
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(1), "dbtoc"));
}

}  // namespace
