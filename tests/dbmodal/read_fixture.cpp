#include "dbmodal/read_fixture.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fmdtest {

namespace {

Doubles run_of(double first, std::size_t count) {
  Doubles values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = first + static_cast<double>(i) / 8;
  return values;
}

void add_matrices(Datablock& to) {
  to.block(12).ints({2, 2, 7, 7}).reals({49.0}).ints({1, 7, 9}).reals({0.5}).ints({1});
  to.block(13).ints({1, 2, 9, 9}).reals({1.0}).ints({1});
}

void add_faces(Datablock& to) {
  to.block(14).ints({16 + 4 * 8, 77, 2, 8, 3, 0, 1, 2, 3, 1, 2, 3});
}

void add_masses(Datablock& to) {
  to.block(9).ints({2, 1, 10}).reals({1.5}).ints({40}).reals({2.5});
  to.block(10)
      .ints({3, 20, 4, 4})
      .reals({1.0})
      .ints({20, 6, 4})
      .reals({0.25})
      .ints({10, 5, 6})
      .reals({0.125});
}

void add_invariants(Datablock& to) {
  to.block(19).reals({8.0});
  to.block(20).reals(run_of(20, 3));
  to.block(21).ints({2}).reals(run_of(21, 6));
  to.block(22).ints({2}).reals(run_of(22, 6));
  to.block(23).ints({2}).reals(run_of(23, 12));
  to.block(24).reals(run_of(24, 9));
  to.block(25).ints({2}).reals(run_of(25, 18));
  to.block(26).ints({2}).reals(run_of(26, 36));
}

void add_loads(Datablock& to) {
  to.block(27).ints({2, 1}).reals({0.5, -0.5});
  to.block(28).ints({2, 1}).text("gravity", 256).ints({1}).reals({2.5, 3.5});
}

void add_statistics(Datablock& to) {
  to.block(30).ints({2});
  for (int mode = 0; mode < 2; ++mode) {
    to.ints({10 + 10 * mode, 20, 30, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    to.reals({1.5 + mode, 2.5, 3.5, 4.5, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  }
}

void add_operators(Datablock& to) {
  to.block(33).ints({1, 2, 4, 12}).text("TIP", 8).text("tip of the arm", 56).ints({2, 15});
  to.reals(run_of(1, 4)).reals(run_of(2, 4)).reals(run_of(3, 4)).reals(run_of(4, 4));
  to.block(34).ints({1, 2}).text("OUT", 8).text("first row", 80).text("", 80).ints({1, 3}).text("DISP", 8);
  to.reals(run_of(5, 6));
  to.block(35).ints({1, 2, 0, 3}).reals({1.5}).ints({3, 6}).reals({-2.5});
}

}  // namespace

Doubles composed_vector(int block, int mode, int node) {
  return run_of(block + 10.0 * mode + node, 6);
}

double composed_coordinate(int node, int axis) {
  return node + axis / 4.0;
}

bool has_mode_word(int level, int block) {
  return level != 10 && (block == 8 || (level != 30 && level != 31));
}

void add_coordinates(Datablock& to, const Ints& nodes) {
  to.block(4).ints({static_cast<int>(nodes.size()), 3});
  for (const int node : nodes)
    to.ints({node}).reals(
        {composed_coordinate(node, 0), composed_coordinate(node, 1), composed_coordinate(node, 2)});
}

void add_eigenvalues(Datablock& to, const Ints& modes) {
  to.block(7).ints({static_cast<int>(modes.size())});
  for (const int mode : modes) to.ints({mode}).reals({mode * 4.0, 1.5, 2.5, 3.5, 4.5});
}

void add_vectors(Datablock& to, int block, const Ints& nodes, const Ints& modes) {
  to.block(block).ints({static_cast<int>(modes.size()), static_cast<int>(nodes.size())}).ints(nodes);
  for (const int mode : modes) {
    to.mode();
    if (has_mode_word(to.level(), block)) to.ints({mode});
    for (const int node : nodes) to.reals(composed_vector(block, mode, node));
  }
  to.trailer_modes = std::max(to.trailer_modes, static_cast<int>(modes.size()));
}

Datablock whole_datablock(unsigned version, const Ints& mode_nodes) {
  Datablock whole(version);
  add_coordinates(whole);
  whole.block(6).reals(run_of(6, 13));
  add_eigenvalues(whole);
  add_vectors(whole, 8, mode_nodes);
  add_masses(whole);
  whole.block(11).text("gram" + std::string(12, ' '), 16).text("meter", 16).text("SECOND", 16);
  whole.text("no unit" + std::string(9, ' '), 16);
  add_matrices(whole);
  add_faces(whole);
  whole.block(15).ints({1, 1, 1, 2}).reals({0.5}).ints({1});
  whole.block(16).ints({2, 1, 2}).reals(run_of(16, 4));
  whole.block(17).ints({2, 0, 3});
  add_vectors(whole, 18, kComposedStressNodes);
  add_invariants(whole);
  add_loads(whole);
  add_vectors(whole, 29, kComposedStrainNodes);
  add_statistics(whole);
  whole.block(31).ints({2}).reals(run_of(31, 12));
  whole.block(32).ints({1}).reals(run_of(32, 6));
  add_operators(whole);
  return whole;
}

Datablock bare_datablock(unsigned version) {
  Datablock bare(version);
  add_coordinates(bare);
  return bare;
}

void ReadTest::store(const std::vector<Datablock>& datablocks) {
  FMD_Terminate();
  std::filesystem::remove(master);
  log.clear();
  store_datablocks(datablocks, master);
  EXPECT_EQ(log.errors, Strings{});
  log.clear();
}

FmdBody* ReadTest::open(int index) {
  log.clear();
  return FMD_CreateFromFMD(master.data(), index);
}

FmdBody* ReadTest::read(const Datablock& datablock) {
  store({datablock});
  return open(1);
}

void ReadTest::expect_failure(const Datablock& datablock, const Strings& errors, const Strings& warnings) {
  EXPECT_EQ(read(datablock), nullptr);
  EXPECT_EQ(log.errors, errors);
  EXPECT_EQ(log.warnings, warnings);
}

FmdBody* ReadTest::expect_body(const Datablock& datablock, const Strings& errors, const Strings& warnings) {
  FmdBody* const body = read(datablock);
  EXPECT_NE(body, nullptr);
  EXPECT_EQ(log.errors, errors);
  EXPECT_EQ(log.warnings, warnings);
  return body;
}

std::string contents_of(FmdBody* body) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const out = open_memstream(&text, &size);
  for (int block = 1; block <= 35; ++block) FMD_Contents(body, block, out);
  std::fclose(out);
  std::string copy(text, size);
  std::free(text);
  return copy;
}

}  // namespace fmdtest
