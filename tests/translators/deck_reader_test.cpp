#include "calculix/deck_reader.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>

#include "support/session.h"
#include "translators/frd_text.h"

using calculix::Deck;
using namespace fmdtest;

namespace {

Deck read(const std::string& text) {
  write_file("job.inp", text);
  return calculix::read_deck("job.inp");
}

std::string error_of(const std::string& text) {
  return input_error_of([&] { read(text); });
}

std::vector<int> ids_of(const Deck& deck, const std::string& set) {
  return calculix::expand(deck.node_sets.at(set), deck.node_ids, deck.node_index);
}

const char* const five_nodes = "*NODE\n1,0,0,0\n2,1,0,0\n3,2,0,0\n4,3,0,0\n7,4,0,0\n";

}  // namespace

class DeckReaderTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
};

TEST_F(DeckReaderTest, ReadsNodesInFullPrecisionAndEveryNotation) {
  const Deck deck = read("*Node, nset = n all\n 1 , 0.1234567890123456, -1.5D1 , .25\n2, 7.\n3,,1\n");
  EXPECT_EQ(deck.node_ids, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(deck.points[0], (calculix::Point{0.1234567890123456, -15.0, 0.25}));
  EXPECT_EQ(deck.points[1], (calculix::Point{7.0, 0.0, 0.0}));
  EXPECT_EQ(deck.points[2], (calculix::Point{0.0, 1.0, 0.0}));
  EXPECT_EQ(ids_of(deck, "NALL"), (std::vector<int>{1, 2, 3}));
}

TEST_F(DeckReaderTest, ReadsSetsOfIdsRangesAndOtherSets) {
  const Deck deck =
      read(std::string(five_nodes) +
           "*NSET, NSET=A\n3, 1,\n4,\n*nset,nset=b,generate\n1,7,2\n*NSET, NSET=C\nA, 7\n"
           "*NSET, NSET=A\n2\n*NSET, NSET=E, GENERATE\n2\n*NSET, NSET=ALL, GENERATE\n1, 2147483647\n"
           "*NSET, NSET=EMPTY\n");
  EXPECT_EQ(ids_of(deck, "A"), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(ids_of(deck, "B"), (std::vector<int>{1, 3, 7}));  // node 5 does not exist
  EXPECT_EQ(ids_of(deck, "C"), (std::vector<int>{1, 3, 4, 7}));
  EXPECT_EQ(ids_of(deck, "E"), (std::vector<int>{2}));
  EXPECT_EQ(ids_of(deck, "ALL"), (std::vector<int>{1, 2, 3, 4, 7}));
  EXPECT_TRUE(ids_of(deck, "EMPTY").empty());
}

TEST_F(DeckReaderTest, GoesOnInTheNextLineWhereAKeywordOrAnElementDoes) {
  const Deck deck = read(
      "*NSET,\n NSET=A,\n GENERATE\n1,2\n*ELEMENT, TYPE=C3D20R, ELSET=E\n"
      "1, 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n16,17,18,19,20\n"
      "2, 1,2,3,4,5,6,7,8,9,10,\n11,12,13,14,15,16,17,18,19,20\n"
      "*ELEMENT, TYPE=UNKNOWN\n8,1,2,\n3\n9,1\n");
  EXPECT_EQ(deck.element_ids, (std::vector<int>{1, 2, 8, 9}));
  EXPECT_EQ(deck.labels, (std::vector<std::string>{"C3D20R", "UNKNOWN"}));
  EXPECT_EQ(deck.element_sets.at("E").size(), 2U);
  EXPECT_EQ(deck.node_sets.at("A").size(), 1U);
}

TEST_F(DeckReaderTest, FollowsIncludesAlsoInTheMiddleOfData) {
  std::filesystem::create_directories("parts/deep");
  write_file("parts/Nodes.inc", "1,1,2,3\n** comment\n\n*include, input=\"deep/more.inc\"\n3,7,8,9\n");
  write_file("parts/deep/more.inc", "2,4,5,6\n");
  write_file("rest.inc", "*NSET, NSET=A\n1,2,3\n");
  const Deck deck =
      read("*HEADING\ntitle line\nsecond\n*NODE\n*INCLUDE, INPUT=parts/Nodes.inc\n*INCLUDE,INPUT=rest.inc\n");
  EXPECT_EQ(deck.title, "title line");
  EXPECT_EQ(deck.node_ids, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(ids_of(deck, "A"), (std::vector<int>{1, 2, 3}));
}

TEST_F(DeckReaderTest, ReadsAGzippedInclude) {
  gzFile file = gzopen("nodes.gz", "wb");
  gzputs(file, "*NODE\n5,1,2,3\n");
  gzclose(file);
  EXPECT_EQ(read("*INCLUDE, INPUT=nodes.gz\n").node_ids, (std::vector<int>{5}));
}

TEST_F(DeckReaderTest, ReadsMaterialsAndSections) {
  const Deck deck = read(
      "*MATERIAL, NAME=Steel\n*ELASTIC\n210000., 0.3\n*DENSITY\n7.85E-9\n8e-9, 100\n"
      "*MATERIAL,NAME=AIR\n*SOLID SECTION, ELSET=a, MATERIAL=steel\n"
      "*SHELL SECTION, ELSET=b, MATERIAL=STEEL\n2.5\n"
      "*BEAM SECTION, ELSET=c, MATERIAL=STEEL, SECTION=RECT\n2., 3.\n0,0,1\n"
      "*BEAM SECTION, ELSET=d, MATERIAL=STEEL, SECTION=CIRC\n2., 4.\n"
      "*BEAM SECTION, ELSET=e, MATERIAL=STEEL, SECTION=PIPE\n3., 1.\n"
      "*BEAM SECTION, ELSET=f, MATERIAL=STEEL, SECTION=BOX\n3., 1.,1,1,1,1\n");
  EXPECT_EQ(deck.materials.at("STEEL").density, 7.85e-9);
  EXPECT_FALSE(deck.materials.at("AIR").density.has_value());
  ASSERT_EQ(deck.sections.size(), 6U);
  EXPECT_EQ(deck.sections[0].element_set, "A");
  EXPECT_EQ(deck.sections[0].material, "STEEL");
  EXPECT_FALSE(deck.sections[0].size.has_value());
  EXPECT_EQ(deck.sections[1].size, 2.5);
  EXPECT_EQ(deck.sections[2].size, 6.0);
  EXPECT_NEAR(*deck.sections[3].size, 6.283185307, 1e-8);    // ellipse with axes 2 and 4
  EXPECT_NEAR(*deck.sections[4].size, 15.7079632679, 1e-8);  // ring between radii 2 and 3
  EXPECT_FALSE(deck.sections[5].size.has_value());
}

TEST_F(DeckReaderTest, AllowsANodeTwiceAtOnePlace) {
  EXPECT_EQ(read("*NODE\n1,1,2,3\n*NODE\n1,1,2,3\n").node_index.find(1), 0);
}

TEST_F(DeckReaderTest, NamesTheLineAndWhatItExpected) {
  const std::pair<const char*, const char*> cases[] = {
      {"*NODE\nx,1,2,3\n", "job.inp:2: expected a node id, found \"x\""},
      {"*NODE\n0,1,2,3\n", "job.inp:2: expected a node id above 0, found 0"},
      {"*NODE\n1,nan,2,3\n", "job.inp:2: expected a coordinate, a finite number, found \"nan\""},
      {"*NODE\n1,1,2,3\n2,1,1,1\n1,1,2,4\n",
       "job.inp:4: expected each node at one place, found node 1 again at another"},
      {"*ELEMENT\n1,2\n", "job.inp:1: expected the parameter TYPE of *ELEMENT"},
      {"*ELEMENT, TYPE=C3D4\nx,1,2,3,4\n", "job.inp:2: expected an element id, found \"x\""},
      {"*ELEMENT, TYPE=C3D4\n-1,1,2,3,4\n", "job.inp:2: expected an element id above 0, found -1"},
      {"*ELEMENT, TYPE=C3D4\n1,1,2,3,4,5\n", "job.inp:2: expected 4 nodes of element 1, found more"},
      {"*ELEMENT, TYPE=C3D4\n1,1,2,3\n", "job.inp:2: expected the other nodes of element 1"},
      {"*ELEMENT, TYPE=C3D4\n1,1,2,3\n*NODE\n", "job.inp:3: expected the other nodes of element 1"},
      {"*ELEMENT, TYPE=C3D4\n1,1,2,3,4\n1,1,2,3,4\n",
       "job.inp:3: expected each element once, found element 1 again"},
      {"*ELEMENT, TYPE=MASS\n1,x\n", "job.inp:2: expected a node id, found \"x\""},
      {"*NSET\n1\n", "job.inp:1: expected the parameter NSET of *NSET"},
      {"*NSET, NSET=A\nB\n", "job.inp:2: expected an id or the name of a set defined before, found \"B\""},
      {"*NSET, NSET=A\n1x\n", "job.inp:2: expected an id or the name of a set, found \"1x\""},
      {"*NSET, NSET=A, GENERATE\nx\n", "job.inp:2: expected the first id, found \"x\""},
      {"*NSET, NSET=A, GENERATE\n1,x\n", "job.inp:2: expected the last id, found \"x\""},
      {"*NSET, NSET=A, GENERATE\n1,5,x\n", "job.inp:2: expected an increment, found \"x\""},
      {"*NSET, NSET=A, GENERATE\n5,1\n",
       "job.inp:2: expected first, last and increment of a range, found \"5,1\""},
      {"*NSET, NSET=A, GENERATE\n1,5,0\n",
       "job.inp:2: expected first, last and increment of a range, found \"1,5,0\""},
      {"*MATERIAL\n", "job.inp:1: expected the parameter NAME of *MATERIAL"},
      {"*DENSITY\n1\n", "job.inp:2: expected *MATERIAL before *DENSITY"},
      {"*MATERIAL,NAME=A\n*DENSITY\nx\n", "job.inp:3: expected a density, a finite number, found \"x\""},
      {"*MATERIAL,NAME=A\n*DENSITY\n-1.\n", "job.inp:3: expected a density above 0, found \"-1.\""},
      {"*SOLID SECTION, MATERIAL=A\n", "job.inp:1: expected the parameter ELSET of *SOLIDSECTION"},
      {"*SHELL SECTION, ELSET=A, COMPOSITE\n",
       "job.inp:1: expected a shell of one layer, found a composite section"},
      {"*SHELL SECTION, ELSET=A\nx\n", "job.inp:2: expected a thickness, a finite number, found \"x\""},
      {"*SHELL SECTION, ELSET=A\n-2\n", "job.inp:2: expected a thickness or area above 0, found \"-2\""},
      {"*BEAM SECTION, ELSET=A, SECTION=RECT\n1.\n",
       "job.inp:2: expected a size of the cross section, a finite number, found \"\""},
      {"*MASS\n1\n", "job.inp:1: expected the parameter ELSET of *MASS"},
      {"*MASS, ELSET=A\nx\n", "job.inp:2: expected a mass, a finite number, found \"x\""},
      {"*INCLUDE\n", "job.inp:1: expected *INCLUDE, INPUT=file"},
      {"*INCLUDE, INPUT=gone.inc\n", "job.inp:1: expected the included file gone.inc, it is not there"},
      {"*NODE\n*INCLUDE, INPUT=job.inp\n",
       "job.inp:2: expected no file that includes itself, found job.inp inside itself"},
      {"*NODE,\n", "job.inp:1: expected more parameters of *NODE behind the comma"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(error_of(text), message);
}

TEST_F(DeckReaderTest, NamesTheIncludedFileAndEndsAtDeepNesting) {
  write_file("bad.inc", "1,2,3,x\n");
  EXPECT_EQ(error_of("*NODE\n*INCLUDE, INPUT=bad.inc\n"),
            "bad.inc:1: expected a coordinate, a finite number, found \"x\"");
  write_file("again.inc", "*INCLUDE, INPUT=job.inp\n");
  EXPECT_EQ(error_of("*INCLUDE, INPUT=again.inc\n"),
            "again.inc:1: expected no file that includes itself, found job.inp inside itself");
  for (int i = 0; i < 40; ++i) {
    write_file("n" + std::to_string(i), "*INCLUDE, INPUT=n" + std::to_string(i + 1) + "\n");
  }
  EXPECT_EQ(error_of("*INCLUDE, INPUT=n0\n"), "n30:1: expected at most 32 files that include each other");
}
