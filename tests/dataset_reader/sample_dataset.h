// A small dataset with a value in every block that can stand beside the others, made by hand.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_SAMPLE_DATASET_H
#define FMDTOOLKIT_TESTS_DATASET_READER_SAMPLE_DATASET_H

#include <vector>

#include "dataset_reader/bytes.h"

namespace dataset_reader {

// Every form of the stream: the levels, both encodings, both precisions, coarsened ones too.
extern const std::vector<Form> kForms;

// Three nodes, two modes, and all blocks but 5, which stands where 14 does not.
std::vector<unsigned char> sample_dataset(const Form& form);

}  // namespace dataset_reader

#endif
