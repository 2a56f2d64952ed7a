// The form of a dataset in a datablock: each block a record that begins with its number, and behind all
// blocks a table of where each block and each mode begins.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_RECORD_FORM_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_RECORD_FORM_H

#include "body/body.h"
#include "dbmodal/dbwrite/sink.h"

namespace fmd {

struct WriteJob;

// A datablock open for writing; it stays the caller's.
class DatablockMedium : public Medium {
 public:
  explicit DatablockMedium(const FmdStream& stream) : stream_(stream) {}
  bool take(const unsigned char* bytes, std::size_t count) override;

 private:
  const FmdStream& stream_;
};

class RecordForm {
 public:
  explicit RecordForm(const FmdStream& stream) : stream_(stream) {}

  // Room for the positions of the exported modes of each type that the summary names.
  bool provide_modes(const WriteJob& job);

  // The number of a block, in front of its body, and the mark that ends its record.
  void begin_block(Sink& sink, int number);
  bool end_block(Sink& sink);

  // The place of a mode's vector, in front of its word.
  void note_mode(Sink& sink, int type, int exported);

  // The table, as the last record. Where it stands goes into the trailer.
  bool write_positions(WriteJob& job);
  const FmdPosition& table_position() const { return blocks_[0]; }

 private:
  static constexpr int kSlots = 100;

  const FmdStream& stream_;
  FmdPosition blocks_[kSlots] = {};
  CArray<FmdPosition> modes_[TOTAL_MODE_INFO_TYPES];
};

}  // namespace fmd

#endif
