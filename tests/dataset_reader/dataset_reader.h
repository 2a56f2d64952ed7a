// Reads a Flexible Modal Dataset in stream form, knowing nothing of the toolkit's own code.
//
// The reader is strict: it takes a file only if every item is what the format says and the file ends after
// its last block. It never reads beyond its input and allocates no more than the input can fill.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_DATASET_READER_H
#define FMDTOOLKIT_TESTS_DATASET_READER_DATASET_READER_H

#include <string>
#include <vector>

#include "dataset_reader/dataset.h"

namespace dataset_reader {

using ByteVector = std::vector<unsigned char>;

// Both throw std::runtime_error with the offset and what was expected there. At levels 10 to 31 the blocks
// of summary bytes 17 and up are read too, although readers of those levels pass them over: so every byte
// of a file is accounted for.
Dataset read_dataset(const ByteVector& bytes);
Dataset read_dataset_file(const std::string& path);

ByteVector read_bytes(const std::string& path);

// A text field without the padding at its end.
std::string trimmed(const std::string& field);

}  // namespace dataset_reader

#endif
