// The words of a stored dataset as they stand, and the plain file that has the same items.
#ifndef FMDTOOLKIT_TESTS_RECORD_READER_H
#define FMDTOOLKIT_TESTS_RECORD_READER_H

#include <cstdint>
#include <string>
#include <vector>

namespace fmdtest {

struct StoredWords {
  std::vector<std::vector<std::int32_t>> records;  // with their numbers, the table last
  std::vector<std::int32_t> trailer;               // seven words, the key of the open datablock first
  int key = 0;

  // The body of a block; empty where there is none.
  std::vector<std::int32_t> block(int number) const;
};

// Reads all of a body's datablock, word by word.
StoredWords read_stored_words(const std::string& master, int index);

// The words without record numbers, table and the bit that tells of it, in native encoding.
std::vector<unsigned char> as_plain_file(const StoredWords& words);

}  // namespace fmdtest

#endif
