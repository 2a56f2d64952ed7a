#include "calculix/frd_reader.h"

#include <gtest/gtest.h>

#include <map>

#include "support/session.h"
#include "translators/frd_text.h"

using calculix::FrdContents;
using calculix::ModeVector;
using calculix::Quantity;
using namespace fmdtest;

namespace {

FrdContents read(const std::string& text) {
  write_file("job.frd", text);
  return calculix::read_frd("job.frd", nullptr);
}

std::vector<ModeVector> vectors_of(const std::string& text) {
  const FrdContents contents = read(text);
  std::vector<ModeVector> vectors;
  calculix::read_mode_vectors(
      "job.frd", contents, [&](const ModeVector& vector) { vectors.push_back(vector); }, nullptr);
  for (ModeVector& vector : vectors) vector.mode = nullptr;  // the contents are gone
  return vectors;
}

std::string error_of(const std::string& text) {
  return input_error_of([&] { vectors_of(text); });
}

// The number of the line on which the piece stands, from 1.
std::string line_of(const std::string& text, const std::string& piece) {
  long line = 1;
  for (std::size_t i = 0; i < text.find(piece); ++i) line += text[i] == '\n' ? 1 : 0;
  return std::to_string(line);
}

}  // namespace

class FrdReaderTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
  const FrdModel model = cube();
  const std::string text = frd_text(model);
};

TEST_F(FrdReaderTest, ReadsTitleMeshAndModes) {
  const FrdContents contents = read(text);
  EXPECT_EQ(contents.title, "unit cube");
  EXPECT_EQ(contents.program, "Version 2.20");
  ASSERT_EQ(contents.mesh.node_ids.size(), 8U);
  EXPECT_EQ(contents.mesh.points[6], (calculix::Point{1, 1, 1}));
  ASSERT_EQ(contents.mesh.elements.size(), 1U);
  EXPECT_EQ(contents.mesh.elements[0].id, 5);
  EXPECT_EQ(contents.mesh.element_nodes, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
  ASSERT_EQ(contents.modes.size(), 2U);
  EXPECT_EQ(contents.modes[0].number, 1);
  EXPECT_EQ(contents.modes[0].hertz, 0.0);
  EXPECT_EQ(contents.modes[1].hertz, 12.5);
  EXPECT_EQ(contents.skipped_datasets, 0);
}

TEST_F(FrdReaderTest, HandsOnDisplacementsWithoutRotationsAndStressesInTheToolkitsOrder) {
  const auto vectors = vectors_of(text);
  ASSERT_EQ(vectors.size(), 4U);
  EXPECT_EQ(vectors[2].quantity, Quantity::displacement);
  EXPECT_EQ(vectors[3].quantity, Quantity::stress);
  for (std::size_t i = 0; i < 8; ++i) {
    const int id = static_cast<int>(i) + 1;
    EXPECT_EQ(vectors[2].nodes[i], static_cast<int>(i));
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(vectors[2].values[6 * i + static_cast<std::size_t>(k)], displacement_of(2, id, k));
      EXPECT_EQ(vectors[2].values[6 * i + 3 + static_cast<std::size_t>(k)], 0.0);
    }
    // The file has xx yy zz xy yz zx.
    const int place_in_file[] = {0, 1, 2, 3, 5, 4};
    for (std::size_t k = 0; k < 6; ++k) {
      EXPECT_EQ(vectors[3].values[6 * i + k], stress_of(2, id, place_in_file[k]));
    }
  }
}

TEST_F(FrdReaderTest, ReordersBricksWedgesAndBeamsToTheDecksOrder) {
  FrdModel ordered;
  for (int id = 1; id <= 20; ++id) ordered.nodes.push_back({id, {id * 1.0, id % 3 * 1.0, id % 5 * 1.0}});
  ordered.elements = {{1, 4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 17, 18, 19, 20, 13, 14, 15, 16}},
                      {2, 5, {1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 14, 15, 10, 11, 12}},
                      {3, 12, {1, 3, 2}}};
  const FrdContents contents = read(frd_text(ordered));
  for (const auto& element : contents.mesh.elements) {
    for (int i = 0; i < element.type->nodes; ++i) {
      EXPECT_EQ(contents.mesh.nodes_of(element)[i], i) << element.id;
    }
  }
}

TEST_F(FrdReaderTest, TakesIdsThatStartAnywhereAndLieFarApart) {
  FrdModel sparse = model;
  sparse.nodes[7].id = 2000000000;
  sparse.elements[0].nodes[7] = 2000000000;
  const FrdContents contents = read(frd_text(sparse));
  EXPECT_EQ(contents.node_index.find(2000000000), 7);
  EXPECT_EQ(contents.node_index.find(8), -1);
  EXPECT_EQ(vectors_of(frd_text(sparse)).size(), 4U);
}

TEST_F(FrdReaderTest, SurvivesExponentsOfThreeDigits) {
  const std::string first = " -1         1 1.00750E+02 1.00500E+02 1.00250E+02";
  for (const char* values :
       {"-1.00000E-101-2.00000E-102-3.00000E+00", "-1.00000-101-2.00000-102-3.00000E+00"}) {
    const auto vectors = vectors_of(exchange(text, first, std::string(" -1         1") + values));
    EXPECT_EQ(vectors[0].values[0], -1e-101);
    EXPECT_EQ(vectors[0].values[1], -2e-102);
    EXPECT_EQ(vectors[0].values[2], -3.0);
  }
}

TEST_F(FrdReaderTest, ReadsLinesWithReturnsAndTrailingBlanks) {
  std::string windows;
  for (const char c : text) windows += c == '\n' ? std::string("  \r\n") : std::string(1, c);
  EXPECT_EQ(vectors_of(windows).size(), 4U);
}

TEST_F(FrdReaderTest, SkipsStaticDatasetsAndCountsThem) {
  std::string with_static = frd_head("DISP", {3, 1.0}, 8, 0);
  for (int i = 1; i <= 8; ++i)
    with_static += " -1         " + std::to_string(i) + " 1.00000E+00 1.00000E+00 1.00000E+00\n";
  with_static += " -3\n";
  const std::string both = exchange(text, " 9999\n", with_static + " 9999\n");
  const FrdContents contents = read(both);
  EXPECT_EQ(contents.modes.size(), 2U);
  EXPECT_EQ(contents.skipped_datasets, 1);
  EXPECT_EQ(std::to_string(contents.first_skipped_line), line_of(both, "  100CL  103"));
  EXPECT_EQ(vectors_of(both).size(), 4U);
  const std::string only = frd_header + frd_nodes(model) + frd_elements(model) + with_static + " 9999\n";
  EXPECT_EQ(error_of(only),
            "job.frd:" + line_of(only, "  100CL") +
                ": expected datasets of a frequency analysis (type 2), found only other ones");
}

TEST_F(FrdReaderTest, StressesMayCoverSomeNodesOnlyAndMayBeMissing) {
  FrdModel part = model;
  part.nodes.resize(3);
  const std::string some = frd_header + frd_nodes(model) + frd_elements(model) +
                           frd_displacements(model, model.modes[1]) + frd_stresses(part, model.modes[1]) +
                           " 9999\n";
  const auto vectors = vectors_of(some);
  ASSERT_EQ(vectors.size(), 2U);
  EXPECT_EQ(vectors[1].nodes, (std::vector<int>{0, 1, 2}));
  FrdModel without = model;
  for (FrdMode& mode : without.modes) mode.stress = false;
  EXPECT_EQ(vectors_of(frd_text(without)).size(), 2U);
}

TEST_F(FrdReaderTest, TellsProgressOfLargeFilesInAscendingOrder) {
  FrdModel large = model;
  for (int id = 9; id < 50000; ++id) large.nodes.push_back({id, {1.0, 2.0, 3.0}});
  write_file("job.frd", frd_text(large));
  std::vector<double> told;
  const FrdContents contents =
      calculix::read_frd("job.frd", [&](double fraction) { told.push_back(fraction); });
  EXPECT_GT(told.size(), 3U);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

struct Damage {
  const char* what;
  const char* with;
  const char* at;  // the piece on whose line the error stands, in the damaged text
  const char* message;
};

TEST_F(FrdReaderTest, NamesTheLineAndWhatItExpected) {
  const Damage cases[] = {
      {"    1C\n", "    xC\n", "    xC",
       "expected the header record 1C of a CalculiX result file in text form, found \"    xC\""},
      {"    2C                             8", "    2C                             x", "    2C",
       "expected the number of entries in columns 25 to 36, found \"           x\""},
      {"    2C                             8", "    2C                             0", "    2C",
       "expected at least one entry in the block of nodes"},
      {"8                                     1\n -1         1",
       "8                                     3\n -1         1", "    2C",
       "expected the long text form (format flag 1), found format flag 3"},
      {"8                                     1\n -1         1",
       "8                                     0\n -1         1", "    2C",
       "expected the long text form (format flag 1), found format flag 0"},
      {" -1         3 1.00000E+00", " -1        x3 1.00000E+00", "        x3",
       "expected a node id in columns 4 to 13, found \"        x3\""},
      {" -1         3 1.00000E+00", " -1        -3 1.00000E+00", "        -3",
       "expected a node id above 0, found -3"},
      {" -1         3 1.00000E+00", " -1         2 1.00000E+00", " -1         2 1.00000E+00 1",
       "expected each node once, found node 2 again"},
      {" -1         3 1.00000E+00", " -1         3         NaN", "NaN",
       "expected a value, a finite number, in columns 14 to 25, found \"         NaN\""},
      {" -1         3 1.00000E+00 1.00000E+00 0.00000E+00", " -1         3 1.00000E+00 1.00000E+00",
       " -1         3 1", "expected a value, a finite number, in columns 38 to 49, found \"\""},
      {" -1         3 1.00000E+00 1.00000E+00 0.00000E+00",
       " -1         3 1.00000E+00 1.00000E+00 0.00000E+00 7.00000E+00", " -1         3 1",
       "expected 3 numbers from column 14 on, found more: \" 7.00000E+00\""},
      {" -1         3 1.00000E+00 1.00000E+00 0.00000E+00",
       " -1         3-1.00000E+00 1.00000E+00 0.00000E+0x+00", " -1         3-1",
       "expected 3 numbers from column 14 on, found more: \"x+00\""},
      {" -1         3 1.00000E+00 1.00000E+00 0.00000E+00",
       " -1         3-1.00000E+00 1.00000E+00 0.0000xE+000", " -1         3-1",
       "expected 3 finite numbers from column 14 on, found \"0.0000xE+000\""},
      {" -1         3 1.00000E+00", " -2         3 1.00000E+00", " -2         3 1",
       "expected a node, a record -1, found \" -2         3 1.00000E+00 1.00000E+00 0....\""},
      {" -1         8 0.00000E+00 1.00000E+00 1.00000E+00\n -3\n    3C", " -3\n    3C", " -3\n    3C",
       "expected 8 records in the block of nodes as its head says, found 7"},
      {" -1         5    1", " -1         5   13", "   13    0",
       "expected an element type code from 1 to 12, found 13"},
      {" -1         5    1", " -1         5    3", " -2 ", "expected 4 nodes of element 5, found more"},
      {" -1         5    1", " -1         5    4", " -2 ",
       "expected a node id in columns 84 to 93, found \"\""},
      {" -2         1", " -2         9", " -2         9",
       "expected a node of the node block in element 5, found unknown node 9"},
      {" -2         1", " -1         1", "-1         1         2", "expected 8 nodes of element 5, found 0"},
      {"    3C                             1", "    3C                             2", " -3\n    1PMODE",
       "expected 2 records in the block of elements as its head says, found 1"},
      {"  100CL  102        12.5", "  100CL  102         NaN", "  100CL  102",
       "expected a frequency or time, a finite number, in columns 13 to 24, found \"         NaN\""},
      {"  100CL  102        12.5", "  100CL  102       -12.5", "  100CL  102",
       "expected a frequency of at least 0"},
      {"2    2MODAL      1\n -4  DISP", "2    7MODAL      1\n -4  DISP", "  100CL  102",
       "expected mode 2 as in the 1PMODE record before, found 7"},
      {" -4  DISP", " -6  DISP", " -6  DISP", "expected the name of the dataset, a record -4"},
      {" -5  D2 ", " -5  DX ", "  100CL  101", "expected the components D1 D2 D3 in the dataset DISP"},
      {" -5  SYZ", " -5  SZX",
       "  100CL  101 0.00000E+00           8                     2    1MODAL      1\n -4  STRESS",
       "expected the components SXX SYY SZZ SXY SYZ SZX in the dataset STRESS"},
      {" -4  STRESS", " -4  STRAIN", "  100CL  101", "expected a dataset STRESS of mode 1 as of mode 2"},
      {" -1         4 1.04250E+02", " -1         9 1.04250E+02", " -1         9 1.04250E+02",
       "expected a node of the node block, found unknown node 9"},
      {" -1         4 1.04250E+02", " -1         3 1.04250E+02", " -1         3 1.04250E+02",
       "expected each node once in the dataset, found node 3 again"},
      {" -1         4 1.04250E+02", " -1         4    Infinity", "Infinity",
       "expected a value, a finite number, in columns 14 to 25, found \"    Infinity\""},
      {" -1         4 1.04250E+02", " -2         4 1.04250E+02", "-2         4 1.04250E+02",
       "expected 8 records in the block of dataset values as its head says, found 7"},
      {" -1         4 1.04250E+02", " -x         4 1.04250E+02", " -x",
       "expected a record -1, -2 or -3 in the block of dataset values, found \" -x         4 1.04250E+02 "
       "1.04500E+02 1....\""},
  };
  for (const Damage& damage : cases) {
    const std::string damaged = exchange(text, damage.what, damage.with);
    const std::string found = error_of(damaged);
    const std::string message = found.substr(std::min(found.find(": ") + 2, found.size()));
    EXPECT_EQ(message, damage.message) << damage.with;
    if (std::string(damage.with).find(" -2         4") == 0 || std::string(damage.with).find(" -3") == 0)
      continue;
    EXPECT_EQ(found.substr(0, found.find(": ")), "job.frd:" + line_of(damaged, damage.at)) << found;
  }
}

TEST_F(FrdReaderTest, NamesMissingAndRepeatedBlocks) {
  const std::string nodes = frd_nodes(model), elements = frd_elements(model), modes = frd_modes(model);
  const std::string end = " 9999\n";
  EXPECT_EQ(error_of(frd_header + end), "job.frd: expected a block of nodes (2C), found none");
  EXPECT_EQ(error_of(frd_header + nodes + end), "job.frd: expected a block of elements (3C), found none");
  EXPECT_EQ(error_of(frd_header + nodes + elements + end),
            "job.frd: expected datasets of a frequency analysis, found none");
  EXPECT_EQ(error_of(frd_header + elements + nodes + modes + end),
            "job.frd:6: expected the block of nodes (2C) before that of elements");
  EXPECT_EQ(error_of(frd_header + nodes + nodes + end),
            "job.frd:16: expected one block of nodes, found a second one");
  EXPECT_EQ(error_of(frd_header + nodes + elements + elements + end),
            "job.frd:20: expected one block of elements, found a second one");
  EXPECT_EQ(error_of(frd_header + nodes + elements + frd_stresses(model, model.modes[1]) + end),
            "job.frd:21: expected displacements, a dataset DISP, of mode 2");
  const std::string once = frd_displacements(model, model.modes[1]);
  EXPECT_EQ(error_of(frd_header + nodes + elements + once + once + end),
            "job.frd:37: expected one dataset DISP of mode 2, found a second one");
  EXPECT_EQ(error_of(frd_header + nodes + elements + once +
                     exchange(frd_stresses(model, model.modes[1]), "12.5", "13.5") + end),
            "job.frd:37: expected the frequency of mode 2 as in its dataset before, found another");
  EXPECT_EQ(
      error_of(frd_header + nodes + elements +
               exchange(exchange(once, "           2\n", "           0\n"), "2    2MODAL", "2    0MODAL") +
               end),
      "job.frd:21: expected a mode number above 0, found 0");
  FrdModel twice = model;
  twice.elements.push_back(twice.elements[0]);
  EXPECT_EQ(error_of(frd_text(twice)), "job.frd:19: expected each element once, found element 5 again");
  FrdModel fewer = model;
  fewer.nodes.pop_back();
  EXPECT_EQ(error_of(frd_header + nodes + elements + frd_displacements(fewer, model.modes[1]) + end),
            "job.frd:21: expected displacements of all 8 nodes, found 7");
  EXPECT_EQ(
      error_of(frd_header + nodes + "rubbish\n"),
      "job.frd:16: expected the beginning of a block, a record 1P, 2C, 3C, 100CL or 9999, found \"rubbish\"");
}

TEST_F(FrdReaderTest, NamesTheLineAtWhichTheFileIsCut) {
  EXPECT_EQ(error_of(text.substr(0, text.find(" -1         4 1.04250E+02"))),
            "job.frd:" + line_of(text, " -1         4 1.04250E+02") +
                ": expected the end of the block of dataset values, a record -3, the file is cut off");
  EXPECT_EQ(
      error_of(text.substr(0, text.find(" 9999"))),
      "job.frd:" + line_of(text, " 9999") + ": expected the record 9999 at the end, the file is cut off");
  EXPECT_EQ(error_of(""), "job.frd:1: expected the record 9999 at the end, the file is cut off");
}
