// Stored datablocks as plain data: written through the store's operations, read back beside its session.
#ifndef FMDTOOLKIT_TESTS_STORED_BODIES_H
#define FMDTOOLKIT_TESTS_STORED_BODIES_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "kdcdb/kdcdb.h"

namespace kdcdbtest {

struct Body {
  std::string label;
  std::array<std::int32_t, 5> numbers{1, 1, 0, 0, 0};  // PROJNO, VERSION, PEID, DESITER, STEPCUR
  std::array<std::int32_t, 6> trailer{};
  std::vector<std::vector<std::int32_t>> records;

  bool operator==(const Body& other) const {
    return label == other.label && numbers == other.numbers && trailer == other.trailer &&
           records == other.records;
  }
};

// Records of so many words each, of values that no other body has.
Body make_body(const std::string& label, int seed, const std::vector<std::size_t>& lengths);

// Into the open database: create, open, write, close, trailer. The key stays.
kdcdb::Status write_body(const Body& body, int* key = nullptr);

// One write as the toolkit does it: the database, new or not, is opened, gets the bodies, is closed, and is
// opened again to be cleaned up. The status of the first step that fails; the session is over in any case.
kdcdb::Status export_bodies(const std::string& base, const std::vector<Body>& bodies);

// What a master file says to a reader. A body whose words cannot be read makes it a failure.
kdcdb::Status read_bodies(const std::string& master_path, std::vector<Body>& bodies);

// The datablock of an open key, from its start.
std::vector<std::vector<std::int32_t>> read_records(int key);

// What the check reports, and its status.
kdcdb::Status check(const std::string& master_path, std::vector<std::string>* reports = nullptr);

}  // namespace kdcdbtest

#endif
