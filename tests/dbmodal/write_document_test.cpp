// The worked example of the page about the dataset format is what the writer writes.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "body/body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

using dataset_reader::ByteVector;

void append_quoted(const std::string& text, ByteVector& bytes) {
  for (const char c : text) bytes.insert(bytes.end(), {0, 0, 0, static_cast<unsigned char>(c)});
}

// One token: a byte "3f", a byte many times "00*24".
void append_token(const std::string& token, ByteVector& bytes) {
  std::size_t used = 0;
  const auto byte = static_cast<unsigned char>(std::stoul(token, &used, 16));
  const std::size_t times = used < token.size() ? std::stoul(token.substr(used + 1)) : 1;
  bytes.insert(bytes.end(), times, byte);
}

void append_line(const std::string& line, ByteVector& bytes) {
  const std::string body = line.substr(0, line.find(';'));
  EXPECT_EQ(std::stoul(body.substr(0, 6)), bytes.size()) << line;
  std::string rest = body.substr(6);
  const std::size_t open = rest.find('"');
  if (open != std::string::npos) {
    const std::size_t close = rest.find('"', open + 1);
    append_quoted(rest.substr(open + 1, close - open - 1), bytes);
    rest = rest.substr(close + 1);
  }
  std::istringstream tokens(rest);
  for (std::string token; tokens >> token;) append_token(token, bytes);
}

// The bytes of the last fenced text of the page.
ByteVector documented_bytes() {
  std::ifstream page(DATASET_FORMAT_PAGE);
  ByteVector bytes;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = line == "```text";
    } else if (inside) {
      append_line(line, bytes);
    }
  }
  return bytes;
}

FmdBody* make_rod() {
  FmdBody* body = FMD_Create(2, 1);
  FMD_SetNodeCoordinates(body, 1, 0.0, 0.0, 0.0);
  FMD_SetNodeCoordinates(body, 2, 2.0, 1.0, 0.5);
  FMD_SetNodalMass(body, 1, 1.0);
  FMD_SetNodalMass(body, 2, 1.0);
  std::string title = "Rod";
  std::string none;
  FMD_SetHeader(body, title.data(), none.data(), none.data(), none.data(), none.data(), none.data());
  std::strncpy(body->CreationTime, "Mon Jan  6 10:15:00 2025 ", sizeof body->CreationTime - 1);
  std::string units[] = {"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  FMD_SetUnits(body, units[0].data(), units[1].data(), units[2].data(), units[3].data());
  int face[] = {1, 2};
  FMD_SetFaceList(body, 2, face);
  FMD_SetInterfaceNode(body, 2);
  FMD_SetMode(body, 1, 1, 0, 0, 0, 0, 0, 0, 0);
  FMD_SetMode(body, 1, 2, 0, 0, 0, 0.5, 0, -0.25, 0);
  FMD_SetGeneralizedMass(body, 1, 1, 1.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 4.0);
  return body;
}

class DatasetFormatPage : public WriteTest {};

TEST_F(DatasetFormatPage, ShowsTheBytesThatAreWritten) {
  const ByteVector documented = documented_bytes();
  ASSERT_EQ(documented.size(), 3412U);
  ASSERT_EQ(write(make_rod()), 1);
  const ByteVector actual = dataset_reader::read_bytes("out.fmd");
  ASSERT_EQ(actual.size(), documented.size());
  for (std::size_t i = 0; i < actual.size(); ++i) EXPECT_EQ(actual[i], documented[i]) << "byte " << i;
}

TEST_F(DatasetFormatPage, ShowsADatasetThatReads) {
  const Dataset dataset = dataset_reader::read_dataset(documented_bytes());
  EXPECT_EQ(dataset_reader::trimmed(dataset.header.title), "Rod");
  EXPECT_EQ(dataset.nodes->at(1).xyz, (std::array<double, 3>{2.0, 1.0, 0.5}));
  EXPECT_EQ(dataset.eigenvalues->at(0).generalized_stiffness, 4.0);
  EXPECT_EQ(dataset.statistics->at(0).nodes[1], 2);
}

}  // namespace

}  // namespace fmdtest
