// The records of a stored body as words, and such words stored as a body again, whatever they say.
#ifndef FMDTOOLKIT_TESTS_FUZZ_RECORD_STREAM_H
#define FMDTOOLKIT_TESTS_FUZZ_RECORD_STREAM_H

#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "fuzz/mutation.h"

namespace fuzz {

constexpr std::size_t kTrailerWords = 6;

struct Stream {
  Words trailer = Words(kTrailerWords);
  std::vector<Words> records;
};

// Of the body given, stored under these options in a database of the current directory; ends the session.
Stream stored_stream(FmdBody* body, const char* options);

// As the one body of a new database.
bool store_stream(const Stream& stream, const char* path);

}  // namespace fuzz

#endif
