#include "calculix/matrix_reader.h"

#include <gtest/gtest.h>

#include <random>

#include "support/session.h"
#include "translators/frd_text.h"

using namespace fmdtest;

namespace {

const std::string matrix_text =
    "1 1  8.9811079228103e+05\n"
    "1 2  4.7567799454888e+05\n"
    "2 2  9.9540092513368e+05\n"
    "1 3  0.0000000000000e+00\n"
    "2 3 -1.1515551733253e+04\n"
    "3 3  1.0000000000000e-05\n";

std::string matrix_error(const std::string& text, int size = 3) {
  write_file("job.sti", text);
  return input_error_of([&] { calculix::read_matrix("job.sti", size, nullptr); });
}

std::string dof_error(const std::string& text) {
  write_file("job.dof", text);
  return input_error_of([] { calculix::read_degrees_of_freedom("job.dof"); });
}

}  // namespace

class MatrixReaderTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
};

TEST_F(MatrixReaderTest, TakesTheUpperTriangleWithoutStoredZeros) {
  write_file("job.sti", matrix_text);
  const calculix::SymmetricMatrix matrix = calculix::read_matrix("job.sti", 3, nullptr);
  EXPECT_EQ(matrix.size, 3);
  EXPECT_EQ(matrix.starts, (std::vector<int>{0, 1, 3, 5}));
  EXPECT_EQ(matrix.rows, (std::vector<int>{0, 0, 1, 1, 2}));
  EXPECT_EQ(matrix.values, (std::vector<double>{8.9811079228103e+05, 4.7567799454888e+05, 9.9540092513368e+05,
                                                -1.1515551733253e+04, 1e-5}));
}

TEST_F(MatrixReaderTest, KeepsADiagonalOfZero) {
  write_file("job.mas", "1 1 0.\n2 2 0.\n");
  const calculix::SymmetricMatrix matrix = calculix::read_matrix("job.mas", 2, nullptr);
  EXPECT_EQ(matrix.rows, (std::vector<int>{0, 1}));
  EXPECT_EQ(matrix.values, (std::vector<double>{0.0, 0.0}));
}

TEST_F(MatrixReaderTest, TellsWhatIsWrongWithALine) {
  EXPECT_EQ(matrix_error(exchange(matrix_text, "1 2  4.75", "1 x  4.75")),
            "job.sti:2: expected row, column and value, found \"x\" as column");
  EXPECT_EQ(matrix_error(exchange(matrix_text, "1 2  4.75", "1 2  4,75")),
            "job.sti:2: expected a value, a finite number, found \"4,7567799454888e+05\"");
  EXPECT_EQ(matrix_error("1 1 nan\n", 1), "job.sti:1: expected a value, a finite number, found \"nan\"");
  EXPECT_EQ(matrix_error("1 1 1e999\n", 1), "job.sti:1: expected a value, a finite number, found \"1e999\"");
  EXPECT_EQ(matrix_error("1 1 1. 2.\n", 1),
            "job.sti:1: expected row, column and value, found \"2.\" behind them");
  EXPECT_EQ(matrix_error("\n", 1), "job.sti:1: expected row, column and value, found \"\" as row");
  EXPECT_EQ(matrix_error("1 1\n", 1), "job.sti:1: expected a value, a finite number, found \"\"");
  EXPECT_EQ(matrix_error("0 1 1.\n", 1),
            "job.sti:1: expected a row from 1 to 1, the number of degrees of freedom, found 0");
}

TEST_F(MatrixReaderTest, TellsOfIndicesThatDoNotFit) {
  EXPECT_EQ(matrix_error(matrix_text, 2),
            "job.sti:4: expected a column from 1 to 2, the number of degrees of freedom, found 3");
  EXPECT_EQ(matrix_error(exchange(matrix_text, "1 2 ", "2 1 ")),
            "job.sti:2: expected an entry of the upper triangle, found row 2 in column 1");
  EXPECT_EQ(matrix_error("1 1 1.\n1 1 1.\n"),
            "job.sti:2: expected ascending columns, found column 1 behind the diagonal entry of column 1");
  EXPECT_EQ(matrix_error(exchange(matrix_text, "1 3 ", "2 3 ")),
            "job.sti:5: expected ascending rows in column 3, found row 2 behind row 2");
}

TEST_F(MatrixReaderTest, MissesDiagonalEntriesAndTheRestOfTheFile) {
  EXPECT_EQ(matrix_error(exchange(matrix_text, "2 2  9.9540092513368e+05\n", "")),
            "job.sti:3: expected the diagonal entry of column 2 before column 3");
  EXPECT_EQ(matrix_error(exchange(matrix_text, "3 3  1.0000000000000e-05\n", "")),
            "job.sti:5: expected entries up to the diagonal of column 3, the number of degrees of freedom, "
            "the file "
            "ends before that of column 3");
  EXPECT_EQ(matrix_error(matrix_text, 4),
            "job.sti:6: expected entries up to the diagonal of column 4, the number of degrees of freedom, "
            "the file "
            "ends before that of column 4");
  EXPECT_EQ(
      matrix_error(""),
      "job.sti: expected entries up to the diagonal of column 3, the number of degrees of freedom, the file "
      "ends before that of column 1");
  EXPECT_EQ(input_error_of([] { calculix::read_matrix("gone.sti", 3, nullptr); }),
            "gone.sti: cannot be opened: No such file or directory");
}

TEST_F(MatrixReaderTest, RefusesAFileCutAtAnyPlace) {
  ASSERT_EQ(matrix_error(matrix_text), "no error");
  for (std::size_t length = 0; length < matrix_text.size(); ++length) {
    ASSERT_NE(matrix_error(matrix_text.substr(0, length)), "no error") << length;
  }
  const std::string dofs = "5.1\n5.2\n5.3\n";
  for (std::size_t length = 0; length < dofs.size(); ++length) {
    if (length % 4 != 0 || length == 0) {
      ASSERT_NE(dof_error(dofs.substr(0, length)), "no error") << length;
      continue;
    }
    // A file of whole lines is cut all the same: the matrix has more rows.
    ASSERT_EQ(dof_error(dofs.substr(0, length)), "no error");
    const int lines = static_cast<int>(calculix::read_degrees_of_freedom("job.dof").size());
    ASSERT_NE(matrix_error(matrix_text, lines), "no error") << length;
  }
}

TEST_F(MatrixReaderTest, SurvivesChangedBytes) {
  std::mt19937 random(3);
  const std::string likely = "0123456789 -+.eE\n\t";
  int refused = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string text = matrix_text;
    for (int i = 0; i <= round % 3; ++i) text[random() % text.size()] = likely[random() % likely.size()];
    refused += matrix_error(text) == "no error" ? 0 : 1;
  }
  EXPECT_GT(refused, 500);
}

TEST_F(MatrixReaderTest, SplitsADegreeOfFreedomAtItsPoint) {
  write_file("job.dof", "10.1\n10.2\n5000001.3\n");
  const auto dofs = calculix::read_degrees_of_freedom("job.dof");
  ASSERT_EQ(dofs.size(), 3U);
  EXPECT_EQ(dofs[1].node, 10);
  EXPECT_EQ(dofs[1].axis, 1);
  EXPECT_EQ(dofs[2].node, 5000001);
  EXPECT_EQ(dofs[2].axis, 2);
}

TEST_F(MatrixReaderTest, TellsWhatIsWrongWithADegreeOfFreedom) {
  const auto expected = [](int line, const std::string& found) {
    return "job.dof:" + std::to_string(line) +
           ": expected node.direction with a direction from 1 to 3, found \"" + found + "\"";
  };
  EXPECT_EQ(dof_error("5.1\n5\n"), expected(2, "5"));
  EXPECT_EQ(dof_error("5.4\n"), expected(1, "5.4"));
  EXPECT_EQ(dof_error("5.0\n"), expected(1, "5.0"));
  EXPECT_EQ(dof_error("5.01\n"), expected(1, "5.01"));
  EXPECT_EQ(dof_error("0.1\n"), expected(1, "0.1"));
  EXPECT_EQ(dof_error("-5.1\n"), expected(1, "-5.1"));
  EXPECT_EQ(dof_error("5.1.1\n"), expected(1, "5.1.1"));
  EXPECT_EQ(dof_error("\n"), expected(1, ""));
  EXPECT_EQ(dof_error("5.1\n5.2\n5.1\n"),
            "job.dof:3: expected each degree of freedom once, found \"5.1\" again; the matrices of shells "
            "and beams "
            "cannot be used");
  EXPECT_EQ(dof_error("5.1"), "job.dof:1: expected a whole line, the file is cut off");
  EXPECT_EQ(dof_error(""), "job.dof: expected degrees of freedom, found none");
}
