// Composes datablocks with every block, stores them and reads them.
#ifndef FMDTOOLKIT_TESTS_READ_FIXTURE_H
#define FMDTOOLKIT_TESTS_READ_FIXTURE_H

#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/datablock_composer.h"
#include "support/session.h"
#include "support/unsynced_file_system.h"

namespace fmdtest {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;
using Strings = std::vector<std::string>;

// The composed body: four nodes, two modes, stress at two nodes, strain at one.
const Ints kComposedNodes = {30, 10, 20, 40};  // in the order of block 4
const Ints kComposedModes = {7, 9};
const Ints kComposedStressNodes = {30, 20};
const Ints kComposedStrainNodes = {40};

// Multiples of an eighth that differ with everything.
Doubles composed_vector(int block, int mode, int node);
double composed_coordinate(int node, int axis);

// The word in front of a mode, by the level: none (false), or what follows.
bool has_mode_word(int level, int block);

// One block after the other; the list of nodes of block 8 is the caller's.
void add_coordinates(Datablock& to, const Ints& nodes = kComposedNodes);
void add_eigenvalues(Datablock& to, const Ints& modes = kComposedModes);
void add_vectors(Datablock& to, int block, const Ints& nodes, const Ints& modes = kComposedModes);

// Every block but 5, 12 to 14 included. With one load case, one point, one operator, one case of nodal loads.
Datablock whole_datablock(unsigned version, const Ints& mode_nodes = kComposedNodes);

// Version, header, summary and nodes only.
Datablock bare_datablock(unsigned version = 60 | kTableBit);

class ReadTest : public SessionTest {
 protected:
  // Stores one datablock and opens it; the messages of the opening alone stay in the log.
  FmdBody* read(const Datablock& datablock);
  // Opens from a database that is stored already.
  FmdBody* open(int index);
  void store(const std::vector<Datablock>& datablocks);

  // Opening this must fail with these errors, and no warnings but these.
  void expect_failure(const Datablock& datablock, const Strings& errors, const Strings& warnings = {});
  // Opening this must succeed, with these errors and warnings.
  FmdBody* expect_body(const Datablock& datablock, const Strings& errors, const Strings& warnings = {});

  std::string master = "composed.MASTER";
  UnsyncedFileSystem files;
};

// All 35 lists of the contents report.
std::string contents_of(FmdBody* body);

}  // namespace fmdtest

#endif
