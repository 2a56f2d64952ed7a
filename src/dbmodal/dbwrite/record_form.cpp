#include "dbmodal/dbwrite/record_form.h"

#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

constexpr SummaryByte kVectorBlocks[TOTAL_MODE_INFO_TYPES] = {kModeShapes, kModalStress, kModalStrain};

void put_positions(Sink& sink, const FmdPosition* positions, int count) {
  for (int i = 0; i < count; ++i) sink.put_ints(positions[i].Word, 2);
}

}  // namespace

bool DatablockMedium::take(const unsigned char* bytes, std::size_t count) {
  // The sink stages whole words, no more than fit an int.
  return DB_WriteINTs(stream_, reinterpret_cast<const int*>(bytes), static_cast<int>(count / 4)) != 0;
}

bool RecordForm::provide_modes(const WriteJob& job) {
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (job.summary[kVectorBlocks[type]] == 0 || job.mode_count < 1) continue;
    modes_[type] = allocate<FmdPosition>(job.mode_count, "dbwrite");
    if (modes_[type] == nullptr) return false;
  }
  return true;
}

void RecordForm::begin_block(Sink& sink, int number) {
  sink.put_int(number);
  if (sink.drain()) DB_FSAVE(&blocks_[number], stream_);
}

bool RecordForm::end_block(Sink& sink) {
  return sink.drain() && DB_WriteEOR(stream_) != 0;
}

void RecordForm::note_mode(Sink& sink, int type, int exported) {
  if (modes_[type] != nullptr && sink.drain()) DB_FSAVE(&modes_[type][as_size(exported)], stream_);
}

bool RecordForm::write_positions(WriteJob& job) {
  Sink& sink = *job.sink;
  if (!sink.drain()) return false;
  DB_FSAVE(&blocks_[0], stream_);
  put_positions(sink, blocks_, kSlots);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (job.summary[kVectorBlocks[type]] != 0) put_positions(sink, modes_[type].get(), job.mode_count);
  }
  return end_block(sink);
}

}  // namespace fmd
