// Sketch files: a face list as text. First the number of faces, then for each face its corner count and its
// node ids, whole numbers in decimal with any white space between them.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_SKETCH_FILE_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_SKETCH_FILE_H

#include <cstdint>
#include <cstdio>

namespace fmd {

// Reads the next number; false at the end of the file, at anything else, and beyond 32 bits. What follows the
// digits stays in the file.
bool read_sketch_number(std::FILE* file, std::int32_t& value);

// A face list that grows by steps as it is read, so that it is never larger than what the file really holds.
class SketchedFaces {
 public:
  SketchedFaces() = default;
  ~SketchedFaces();
  SketchedFaces(const SketchedFaces&) = delete;
  SketchedFaces& operator=(const SketchedFaces&) = delete;

  // False without memory. The list keeps what it has.
  bool reserve(std::int64_t entries);
  bool append(std::int32_t entry);

  std::int32_t length() const { return static_cast<std::int32_t>(length_); }
  // Hands the list over to the caller, to be freed there.
  std::int32_t* release();

 private:
  std::int32_t* entries_ = nullptr;
  std::int64_t length_ = 0;
  std::int64_t capacity_ = 0;
};

}  // namespace fmd

#endif
