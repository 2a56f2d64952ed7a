// The record primitives: words, reals and text through a record stream, its positions and its trailer.
//
// A write primitive answers 1 as long as the store took the words and 0 when it could not, so that a full
// disk is reported by whoever knows what was being written.
#include "solverdb/records.h"

#include <cstring>
#include <memory>

#include "fmdtoolkit/fmdtoolkit.h"
#include "kdcdb/kdcdb.h"
#include "messages/memory.h"

namespace {

constexpr int kCharsPerWord = 4;

int read_words(int block, void* words, std::int64_t count) {
  std::int64_t actual = 0;
  return count >= 0 && kdcdb::Read(block, words, count, &actual) == kdcdb::kOk ? 1 : 0;
}

int write_words(int block, const void* words, std::int64_t count) {
  return kdcdb::Write(block, words, count, false) == kdcdb::kOk ? 1 : 0;
}

std::int64_t words_of_text(int n) {
  return n == 0 ? 0 : (static_cast<std::int64_t>(n) - 1) / kCharsPerWord + 1;
}

std::int64_t words_of_reals(const FmdStream& stream, int n) {
  return stream.DoublePrecision != 0 ? std::int64_t{2} * n : n;
}

// Room for a text in whole words, zeroed: on the stack for all texts but long ones.
class WordBuffer {
 public:
  explicit WordBuffer(std::int64_t words) {
    if (words <= kOnStack) {
      words_ = stack_;
      return;
    }
    heap_.reset(static_cast<std::int32_t*>(fmd::allocate_quietly(words, sizeof(std::int32_t))));
    words_ = heap_.get();
  }
  std::int32_t* words() const { return words_; }

 private:
  static constexpr int kOnStack = 256;
  std::int32_t stack_[kOnStack] = {};
  fmd::CArray<std::int32_t> heap_;
  std::int32_t* words_ = nullptr;
};

std::int64_t offset_of(const FmdPosition& position) {
  std::int64_t offset;
  static_assert(sizeof offset == sizeof position.Word);
  std::memcpy(&offset, position.Word, sizeof offset);
  return offset;
}

}  // namespace

int DB_ReadINTs(FmdStream stream, int* values, int n) {
  return read_words(stream.Block, values, n);
}

int DB_ReadDOUBLEs(FmdStream stream, double* values, int n) {
  if (read_words(stream.Block, values, words_of_reals(stream, n)) == 0) return 0;
  if (stream.DoublePrecision == 0) float2double(values, reinterpret_cast<const float*>(values), n);
  return 1;
}

int DB_ReadMODE(FmdStream stream, void* values, int n) {
  return read_words(stream.Block, values, words_of_reals(stream, n));
}

int DB_ReadCHARs(FmdStream stream, char* text, int n) {
  if (n < 0) return 0;
  const WordBuffer buffer(words_of_text(n));
  if (buffer.words() == nullptr || read_words(stream.Block, buffer.words(), words_of_text(n)) == 0) return 0;
  if (n > 0) std::memcpy(text, buffer.words(), static_cast<std::size_t>(n));
  return 1;
}

int DB_WriteINTs(FmdStream stream, const int* values, int n) {
  return write_words(stream.Block, values, n);
}

int DB_WriteDOUBLEs(FmdStream stream, const double* values, int n) {
  if (stream.DoublePrecision != 0) return write_words(stream.Block, values, std::int64_t{2} * n);
  if (stream.FloatBuffer == nullptr) return 0;
  return write_words(stream.Block, double2float(stream.FloatBuffer, values, n), n);
}

int DB_WriteCHARs(FmdStream stream, const char* text, int n) {
  if (n < 0) return 0;
  const WordBuffer buffer(words_of_text(n));
  if (buffer.words() == nullptr) return 0;
  if (n > 0) std::memcpy(buffer.words(), text, static_cast<std::size_t>(n));
  return write_words(stream.Block, buffer.words(), words_of_text(n));
}

int DB_WriteEOR(FmdStream stream) {
  return kdcdb::Write(stream.Block, nullptr, 0, true) == kdcdb::kOk ? 1 : 0;
}

int DB_SkipRecord(FmdStream stream) {
  return kdcdb::Fwdrec(stream.Block) == kdcdb::kOk ? 1 : 0;
}

int DB_FSAVE(FmdPosition* position, FmdStream stream) {
  std::int64_t offset = 0;
  bool end_of_record = false;
  bool end_of_file = false;
  // A place that could not be saved is no place: restoring it leaves the stream without one.
  if (kdcdb::Savps3(stream.Block, &offset, &end_of_record, &end_of_file) != kdcdb::kOk) offset = -1;
  std::memcpy(position->Word, &offset, sizeof offset);
  return 1;
}

int DB_FRESTORE(const FmdPosition* position, FmdStream stream) {
  kdcdb::Filps3(stream.Block, offset_of(*position));
  return 1;
}

int DB_REWIND(FmdStream stream) {
  return DB_FRESTORE(&stream.StartPosition, stream);
}

int DB_SeekFWD(FmdStream stream, int words) {
  std::int64_t actual = 0;
  return words >= 0 && kdcdb::Read(stream.Block, nullptr, -std::int64_t{words}, &actual) == kdcdb::kOk ? 1
                                                                                                       : 0;
}

int DB_WriteTrailer(const int* words) {
  return kdcdb::Wrttrl(words) == kdcdb::kOk ? 1 : 0;
}

int DB_ReadTrailer(int* words) {
  return kdcdb::Rdtrl(words) == kdcdb::kOk ? 1 : 0;
}

namespace fmd {

std::int64_t words_left_in_record(const FmdStream& stream) {
  std::int64_t words = 0;
  return kdcdb::Remaining(stream.Block, &words) == kdcdb::kOk ? words : 0;
}

}  // namespace fmd
