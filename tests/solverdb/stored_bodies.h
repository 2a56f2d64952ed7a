// Bodies that go into databases and come back, and all that they say.
#ifndef FMDTOOLKIT_TESTS_STORED_BODIES_H
#define FMDTOOLKIT_TESTS_STORED_BODIES_H

#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/sample_body.h"
#include "support/session.h"

namespace fmdtest {

using Strings = std::vector<std::string>;

// Nodes and modes whose vectors of all three types take several pages of a file. Bodies of different seeds
// have no value in common. The generalized matrices are diagonal, or full, so that a write transforms the
// modes.
FmdBody* make_large_body(int seed, int nodes = 700, int modes = 4, bool orthonormal = true);

// Node tables, masses, and every mode vector, whole and by halves and by node, past any cache.
std::string vectors_of(FmdBody* body);

// Besides, the invariants, which stay from then on as they are.
std::string numbers_of(FmdBody* body);

// Besides, the contents report of all blocks but the header's.
std::string everything_of(FmdBody* body);

std::size_t open_files();

class StoredBodiesTest : public SessionTest {
 protected:
  // The messages of the call alone stay in the log.
  int store(FmdBody* body, const std::string& path, const std::string& qualifiers = "",
            const std::string& options = "");
  FmdBody* open(std::string path, int index = 1);
  int count(std::string path) { return DB_BodyCount(path.data()); }
  std::string row(std::string path, int index);

  // Makes a database of large bodies, one for each seed, SELABEL 's<seed>'; the bodies are gone afterwards.
  void make_database(const std::string& path, const std::vector<int>& seeds);

  // Names of what is in the directory beside the session's own files.
  Strings files() const;
};

}  // namespace fmdtest

#endif
