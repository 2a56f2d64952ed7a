#include "kdcdb/stored_file.h"

#include "kdcdb/locks.h"
#include "kdcdb/master_content.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

StoredFile::~StoredFile() {
  if (file_ >= 0) fmd::file_system().close(file_);
}

Status StoredFile::open(const char* path, std::shared_ptr<const StoredFile> known,
                        std::shared_ptr<const StoredFile>& opened) {
  const auto stored = std::make_shared<StoredFile>();
  stored->file_ = fmd::file_system().open(path, O_RDONLY, 0);
  if (stored->file_ < 0) return status_of_error(errno);
  MasterContent content;
  Status status = lock_for_reading(stored->file_);
  if (status == kOk) status = read_master_content(stored->file_, content);
  if (status != kOk) return status;
  if (known != nullptr && known->is_state(content)) {
    opened = std::move(known);
    return kOk;
  }
  status = stored->read_newest(content);
  if (status == kOk) opened = stored;
  return status;
}

// File ids are random, so one id and generation are one state.
bool StoredFile::is_state(const MasterContent& content) const {
  const Root* const newest = content.newest();
  return newest != nullptr && newest->file_id == root_.file_id && newest->generation == root_.generation &&
         newest->dictionary_crc == root_.dictionary_crc;
}

// A commit may have been cut short behind its root: then the state before it is still whole.
Status StoredFile::read_newest(const MasterContent& content) {
  Status status = kDamaged;
  for (const Root* root : {content.newest(), content.older()}) {
    if (root == nullptr) continue;
    root_ = *root;
    status = read_dictionary(file_, content, *root, entries_);
    if (status == kOk) break;
  }
  return status;
}

}  // namespace kdcdb
