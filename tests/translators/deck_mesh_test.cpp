#include "calculix/deck_mesh.h"

#include <gtest/gtest.h>

#include "calculix/faces.h"
#include "support/session.h"
#include "translators/frd_text.h"

using namespace fmdtest;

namespace {

calculix::FrdContents contents(const std::string& deck) {
  write_file("job.inp", deck);
  return calculix::contents_of_deck(calculix::read_deck("job.inp"));
}

std::string error_of(const std::string& deck) {
  return input_error_of([&] { contents(deck); });
}

}  // namespace

class DeckMeshTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
};

TEST_F(DeckMeshTest, HasTheNodesOfSolidsAscending) {
  const std::string tetrahedron =
      "*NODE\n9, 0, 0, 0\n4, 1, 0, 0\n7, 0, 1, 0\n2, 0, 0, 1\n1, 5, 5, 5\n"
      "*ELEMENT, TYPE=C3D4, ELSET=E\n3, 9, 4,\n7, 2\n*ELEMENT, TYPE=MASS, ELSET=M\n8, 1\n";
  const calculix::FrdContents found = contents(tetrahedron);
  EXPECT_EQ(found.mesh.node_ids, (std::vector<int>{2, 4, 7, 9}));
  EXPECT_EQ(found.mesh.points[0][2], 1.0);
  EXPECT_EQ(found.node_index.find(9), 3);
  ASSERT_EQ(found.mesh.elements.size(), 1U);
  EXPECT_EQ(found.mesh.elements[0].id, 3);
  EXPECT_EQ(found.mesh.elements[0].type->code, 3);
  EXPECT_EQ(found.mesh.element_nodes, (std::vector<int>{3, 1, 2, 0}));
  EXPECT_EQ(calculix::outer_faces(found.mesh).size(), 4U);
  EXPECT_TRUE(found.modes.empty());
}

TEST_F(DeckMeshTest, KnowsTheSolidsByTheirLabels) {
  for (const char* label : {"C3D8", "C3D8R", "C3D8I"}) {
    const auto found = contents(exchange(cube_deck(), "C3D8", label));
    EXPECT_EQ(found.mesh.elements[0].type->code, 1) << label;
    EXPECT_EQ(found.mesh.node_ids.size(), 8U);
  }
}

TEST_F(DeckMeshTest, RefusesWhatItCannotMakeAMeshOf) {
  const std::string nodes = "*NODE\n1, 0, 0, 0\n2, 1, 0, 0\n3, 0, 1, 0\n4, 0, 0, 1\n";
  EXPECT_EQ(error_of(nodes), "job.inp: expected solid elements, found none");
  EXPECT_EQ(error_of(nodes + "*ELEMENT, TYPE=S3\n5, 1, 2, 3\n"),
            "job.inp: expected solids only where no results are given, found element 5 of type S3");
  EXPECT_EQ(error_of(nodes + "*ELEMENT, TYPE=C3D4\n5, 1, 2, 3, 8\n"),
            "job.inp: expected a node of the deck as node 4 of element 5");
  EXPECT_EQ(error_of(nodes + "*ELEMENT, TYPE=C3D4\n5, 1, x, 3, 4\n"),
            "job.inp: expected a node of the deck as node 2 of element 5");
}
