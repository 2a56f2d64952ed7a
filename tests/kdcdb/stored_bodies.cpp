#include "kdcdb/stored_bodies.h"

#include <algorithm>

#include "kdcdb/stored_block.h"
#include "system/file_system.h"

namespace kdcdbtest {

namespace {

using kdcdb::Status;

std::string creation_of(const Body& body) {
  std::string text = "dbcreate datablk=(fmddb) quals(selabel='" + body.label + "'";
  for (int i = 0; i < 5; ++i)
    text += std::string(";") + kdcdb::kQualifierNames[i] + '=' +
            std::to_string(body.numbers[static_cast<std::size_t>(i)]);
  return text + ')';
}

bool is_there(const std::string& path) {
  struct stat status {};
  return fmd::file_system().stat(path.c_str(), &status) == 0;
}

Status clean_up(const std::string& base) {
  kdcdb::DbaseBst("message", "./");
  Status status = kdcdb::DbaseOld(base.c_str(), "dbsetdel dbfmd");
  if (status == kdcdb::kOk) status = kdcdb::DbaseCls();
  return status;
}

std::vector<std::vector<std::int32_t>> cut_into_records(const std::vector<std::int32_t>& words,
                                                        const std::vector<std::int64_t>& ends) {
  std::vector<std::vector<std::int32_t>> records;
  auto from = words.begin();
  for (const std::int64_t end : ends) {
    records.emplace_back(from, words.begin() + end);
    from = words.begin() + end + 1;
  }
  if (from != words.end()) records.emplace_back(from, words.end());
  return records;
}

}  // namespace

Body make_body(const std::string& label, int seed, const std::vector<std::size_t>& lengths) {
  Body body;
  body.label = label;
  std::uint32_t value = static_cast<std::uint32_t>(seed) * 2654435761U + 1;
  for (const std::size_t length : lengths) {
    body.records.emplace_back(length);
    for (std::int32_t& word : body.records.back()) {
      value = value * 1664525U + 1013904223U;
      word = static_cast<std::int32_t>(value);
    }
  }
  for (std::int32_t& word : body.trailer) word = seed++;
  return body;
}

Status write_body(const Body& body, int* key_out) {
  int key = 0;
  Status status = kdcdb::CreateDatablk(creation_of(body).c_str(), &key);
  if (key_out != nullptr) *key_out = key;
  if (status == kdcdb::kOk) status = kdcdb::Gopen(key, kdcdb::kOpenNew);
  for (const auto& record : body.records) {
    if (status == kdcdb::kOk)
      status = kdcdb::Write(key, record.data(), static_cast<std::int64_t>(record.size()), true);
  }
  if (status != kdcdb::kOk) return status;
  std::int32_t trailer[7] = {key};
  std::copy(body.trailer.begin(), body.trailer.end(), trailer + 1);
  kdcdb::Close(key, 1);
  return kdcdb::Wrttrl(trailer);
}

Status export_bodies(const std::string& base, const std::vector<Body>& bodies) {
  Status status = kdcdb::DbaseBst("message", "./");
  if (status != kdcdb::kOk) return status;
  status = is_there(base + ".MASTER") ? kdcdb::DbaseOld(base.c_str(), "init dbfmd")
                                      : kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball");
  if (status != kdcdb::kOk) {
    kdcdb::DbaseCls();
    return status;
  }
  for (const Body& body : bodies) {
    if (status == kdcdb::kOk) status = write_body(body);
  }
  const Status closed = kdcdb::DbaseCls();
  const Status cleaned = clean_up(base);
  if (status == kdcdb::kOk) status = closed;
  return status == kdcdb::kOk ? cleaned : status;
}

Status read_bodies(const std::string& master_path, std::vector<Body>& bodies) {
  bodies.clear();
  std::shared_ptr<const kdcdb::StoredFile> stored;
  Status status = kdcdb::StoredFile::open(master_path.c_str(), nullptr, stored);
  if (status != kdcdb::kOk) return status;
  for (std::size_t i = 0; i < stored->entries().size(); ++i) {
    kdcdb::StoredBlock block(stored, i);
    std::vector<std::int32_t> words(static_cast<std::size_t>(block.words));
    status = block.prepare();
    if (status == kdcdb::kOk) status = block.read(0, words.data(), block.words);
    if (status != kdcdb::kOk) return status;
    Body body;
    body.label = block.entry().qualifiers.label;
    body.numbers = block.entry().qualifiers.numbers;
    body.trailer = block.trailer;
    body.records = cut_into_records(words, block.record_ends);
    bodies.push_back(std::move(body));
  }
  return kdcdb::kOk;
}

std::vector<std::vector<std::int32_t>> read_records(int key) {
  std::vector<std::vector<std::int32_t>> records;
  if (kdcdb::Filps3(key, 0) != kdcdb::kOk) return records;
  do {
    std::int64_t words = 0;
    if (kdcdb::Remaining(key, &words) != kdcdb::kOk) break;
    bool end_of_record = false;
    bool end_of_file = false;
    std::int64_t position = 0;
    kdcdb::Savps3(key, &position, &end_of_record, &end_of_file);
    if (end_of_file && !end_of_record) break;
    records.emplace_back(static_cast<std::size_t>(words));
    std::int64_t actual = 0;
    if (kdcdb::Read(key, records.back().data(), words, &actual) != kdcdb::kOk) {
      records.pop_back();
      break;
    }
  } while (kdcdb::Fwdrec(key) == kdcdb::kOk);
  return records;
}

Status check(const std::string& master_path, std::vector<std::string>* reports) {
  std::vector<std::string> own;
  std::vector<std::string>* const texts = reports == nullptr ? &own : reports;
  texts->clear();
  return kdcdb::CheckDatabase(
      master_path.c_str(),
      [](const char* text, void* context) {
        static_cast<std::vector<std::string>*>(context)->emplace_back(text);
      },
      texts);
}

}  // namespace kdcdbtest
