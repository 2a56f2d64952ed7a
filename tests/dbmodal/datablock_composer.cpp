#include "dbmodal/datablock_composer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

namespace {

constexpr std::size_t kSlots = 100;

FmdPosition place_in(const FmdStream& stream) {
  FmdPosition position;
  DB_FSAVE(&position, stream);
  return position;
}

void write_ints(const FmdStream& stream, const std::vector<std::int32_t>& words) {
  ASSERT_EQ(DB_WriteINTs(stream, words.data(), static_cast<int>(words.size())), 1);
}

void write_positions(const FmdStream& stream, const FmdPosition* positions, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(DB_WriteINTs(stream, positions[i].Word, 2), 1);
}

// The words of a record, and where each of its modes begins.
std::vector<FmdPosition> write_record(const FmdStream& stream, const ComposedRecord& record) {
  std::vector<FmdPosition> modes;
  std::size_t written = 0;
  for (const std::size_t place : record.mode_places) {
    const std::size_t end = std::min(place, record.words.size());
    write_ints(stream, {record.words.begin() + static_cast<std::ptrdiff_t>(written),
                        record.words.begin() + static_cast<std::ptrdiff_t>(end)});
    written = end;
    modes.push_back(place_in(stream));
  }
  write_ints(stream, {record.words.begin() + static_cast<std::ptrdiff_t>(written), record.words.end()});
  return modes;
}

void store_one(const Datablock& datablock, int key) {
  FmdStream stream{};
  stream.Block = key;
  stream.DoublePrecision = 1;
  FmdPosition slots[kSlots] = {};
  std::vector<FmdPosition> modes[3];
  for (const ComposedRecord& record : datablock.records) {
    const int number = record.number;
    write_ints(stream, {number});
    if (number > 0 && number < static_cast<int>(kSlots)) slots[number] = place_in(stream);
    std::vector<FmdPosition> places = write_record(stream, record);
    places.resize(static_cast<std::size_t>(datablock.trailer_modes));
    if (number == 8) modes[0] = places;
    if (number == 18) modes[1] = places;
    if (number == 29) modes[2] = places;
    ASSERT_EQ(DB_WriteEOR(stream), 1);
  }
  slots[0] = place_in(stream);
  if ((datablock.version() & kTableBit) != 0) {
    write_positions(stream, slots, kSlots);
    for (const auto& places : modes) write_positions(stream, places.data(), places.size());
    ASSERT_EQ(DB_WriteEOR(stream), 1);
  }
  DB_CloseDatablk(key);
  const int trailer[7] = {key, datablock.trailer_modes, 0, 0, 2, slots[0].Word[0], slots[0].Word[1]};
  ASSERT_EQ(DB_WriteTrailer(trailer), 1);
}

}  // namespace

Datablock::Datablock(unsigned version) : version_(version) {
  records.push_back({1, {static_cast<std::int32_t>(version)}, {}});
  records.push_back({2, {}, {}});
  current_ = 1;
  text("A title", 128).text("Sat Nov 21 15:00:00 2026", 32).text("arm.inp", 128).text("deck", 16);
  text("one", 80).text("", 80).text("three", 80);
  records.push_back({3, {}, {}});
}

bool Datablock::is_single() const {
  return version_ == 50 || version_ == 51 || (version_ & 0x200) != 0;
}

Datablock& Datablock::block(int number) {
  summary[static_cast<std::size_t>(summary_byte_of(number))] = 1;
  records.push_back({number, {}, {}});
  current_ = records.size() - 1;
  return *this;
}

Datablock& Datablock::ints(const std::vector<int>& values) {
  auto& words = records[current_].words;
  words.insert(words.end(), values.begin(), values.end());
  return *this;
}

Datablock& Datablock::reals(const std::vector<double>& values) {
  for (const double value : values) {
    std::int32_t halves[2];
    const auto narrow = static_cast<float>(value);
    if (is_single()) {
      std::memcpy(halves, &narrow, sizeof narrow);
      ints({halves[0]});
    } else {
      std::memcpy(halves, &value, sizeof value);
      ints({halves[0], halves[1]});
    }
  }
  return *this;
}

Datablock& Datablock::text(const std::string& value, std::size_t width) {
  std::string field = value;
  field.resize((width + 3) / 4 * 4, '\0');
  for (std::size_t at = 0; at < field.size(); at += 4) {
    std::int32_t word;
    std::memcpy(&word, field.data() + at, 4);
    ints({word});
  }
  return *this;
}

Datablock& Datablock::mode() {
  records[current_].mode_places.push_back(records[current_].words.size());
  return *this;
}

ComposedRecord& Datablock::record(int number) {
  return *std::find_if(records.begin(), records.end(),
                       [&](const ComposedRecord& record) { return record.number == number; });
}

Datablock& Datablock::again(int number) {
  ComposedRecord& old = record(number);
  old.words.clear();
  old.mode_places.clear();
  current_ = static_cast<std::size_t>(&old - records.data());
  return *this;
}

void Datablock::remove(int number) {
  summary[static_cast<std::size_t>(summary_byte_of(number))] = 0;
  records.erase(records.begin() + (&record(number) - records.data()));
}

void Datablock::fix_summary() {
  has_fixed_summary = true;
  again(3).text(std::string(summary.begin(), summary.end()), summary.size());
}

int summary_byte_of(int number) {
  if (number <= 10) return number - 4;
  if (number <= 13) return number - 3;
  return number <= 35 ? number - 2 : 99;
}

void store_datablocks(const std::vector<Datablock>& datablocks, const std::string& master) {
  FmdBody* const body = FMD_Create(0, 0);
  std::string path = master;
  ASSERT_EQ(DB_StartWrite(body, path.data()), 1);
  int identity = 0;
  for (Datablock datablock : datablocks) {
    if (!datablock.has_fixed_summary) datablock.fix_summary();
    std::string qualifiers = "PEID=" + std::to_string(++identity);
    const int key = DB_CreateFMDblk(qualifiers.data());
    ASSERT_NE(key, 0);
    store_one(datablock, key);
    if (testing::Test::HasFatalFailure()) return;
  }
  ASSERT_EQ(DB_TermWrite(body, path.data()), 1);
  FMD_UnLink(body);
}

}  // namespace fmdtest
