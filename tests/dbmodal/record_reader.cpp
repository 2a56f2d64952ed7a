#include "dbmodal/record_reader.h"

#include <cstring>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

namespace {

using Bytes = std::vector<unsigned char>;

void append_word(Bytes& bytes, std::int32_t word) {
  unsigned char four[4];
  std::memcpy(four, &word, 4);
  bytes.insert(bytes.end(), four, four + 4);
}

// Row and column of an inertia are one byte each in a plain file, and a word each here.
void append_inertias(Bytes& bytes, const std::vector<std::int32_t>& record, bool single) {
  const std::size_t entry = single ? 4 : 5;
  append_word(bytes, record[1]);
  for (std::size_t at = 2; at + entry <= record.size(); at += entry) {
    append_word(bytes, record[at]);
    bytes.push_back(static_cast<unsigned char>(record[at + 1]));
    bytes.push_back(static_cast<unsigned char>(record[at + 2]));
    for (std::size_t word = 3; word < entry; ++word) append_word(bytes, record[at + word]);
  }
}

}  // namespace

std::vector<std::int32_t> StoredWords::block(int number) const {
  for (std::size_t i = 0; i + 1 < records.size(); ++i) {
    if (records[i].at(0) == number) return {records[i].begin() + 1, records[i].end()};
  }
  return {};
}

StoredWords read_stored_words(const std::string& master, int index) {
  StoredWords stored;
  std::string path = master;
  int id = 0;
  FmdStream stream{};
  stream.Block = stored.key = DB_OpenDatablk(path.data(), index, &id);
  if (stored.key == 0) return stored;
  do {
    stored.records.emplace_back();
    int word = 0;
    while (DB_ReadINTs(stream, &word, 1) == 1) stored.records.back().push_back(word);
  } while (DB_SkipRecord(stream) == 1);
  while (!stored.records.empty() && stored.records.back().empty()) stored.records.pop_back();
  stored.trailer.assign(7, 0);
  stored.trailer[0] = stored.key;
  DB_ReadTrailer(stored.trailer.data());
  return stored;
}

std::vector<unsigned char> as_plain_file(const StoredWords& stored) {
  Bytes bytes;
  const std::int32_t word = stored.records.at(0).at(1) & ~0x1000;
  const bool single = word == 50 || word == 51 || (word & 0x200) != 0;
  for (std::size_t i = 0; i + 1 < stored.records.size(); ++i) {
    const std::vector<std::int32_t>& record = stored.records[i];
    if (i == 0) {
      append_word(bytes, word);
    } else if (record.at(0) == 10) {
      append_inertias(bytes, record, single);
    } else {
      for (std::size_t at = 1; at < record.size(); ++at) append_word(bytes, record[at]);
    }
  }
  return bytes;
}

}  // namespace fmdtest
