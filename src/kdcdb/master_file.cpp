#include "kdcdb/master_file.h"

#include <sys/random.h>

#include <algorithm>
#include <cstdio>

#include "kdcdb/locks.h"
#include "kdcdb/master_pages.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

std::uint64_t random_id() {
  std::uint64_t id = 0;
  if (getrandom(&id, sizeof id, 0) != static_cast<ssize_t>(sizeof id))
    id = static_cast<std::uint64_t>(time(nullptr));
  return id;
}

// Whether a file system cannot do something at all; naming an unnamed file needs the process file system too.
bool has_no_such_call(int error) {
  return error == ENOENT || error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == EPERM ||
         error == ENOSYS;
}

// Moves a file to a name that nobody has: by links, or where files can have one name only, by renaming.
bool move_to_new_name(const char* from, const char* to) {
  fmd::FileSystem& system = fmd::file_system();
  if (system.link(from, to) == 0) {
    system.unlink(from);
    return true;
  }
  return has_no_such_call(errno) && system.rename_new(from, to) == 0;
}

Status flush_directory(const std::string& path) {
  fmd::FileSystem& system = fmd::file_system();
  const int directory = system.open(path.c_str(), O_RDONLY | O_DIRECTORY, 0);
  if (directory < 0) return status_of_error(errno);
  const Status status = system.fsync(directory) == 0 ? kOk : status_of_error(errno);
  system.close(directory);
  return status;
}

}  // namespace

std::string directory_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return path.substr(0, std::max<std::size_t>(slash, 1));
}

// Memory is taken before the first file is made, so that nothing is left behind for want of it.
Status MasterFile::create(const char* path, bool lasting) {
  fmd::FileSystem& system = fmd::file_system();
  const std::string directory = directory_of(path);
  std::string other_name = std::string(path) + "_XXXXXX";
  file_ = system.open(directory.c_str(), O_TMPFILE | O_RDWR, 0666);
  int error = errno;
  Status status = status_of_error(error);
  if (file_ >= 0) status = create_unnamed(path, lasting, error);
  if (status != kOk && has_no_such_call(error)) {
    close();
    status = create_under_another_name(other_name.data(), path, lasting);
  }
  if (status == kOk && lasting) {
    status = flush_directory(directory);
    if (status != kOk) system.unlink(path);
  }
  if (status != kOk) close();
  return status;
}

Status MasterFile::create_unnamed(const char* path, bool lasting, int& error) {
  error = 0;
  const Status status = write_new(lasting);
  if (status != kOk || fmd::file_system().linkat(file_, path) == 0) return status;
  error = errno;
  return status_of_error(error);
}

Status MasterFile::create_under_another_name(char* other_name, const char* path, bool lasting) {
  fmd::FileSystem& system = fmd::file_system();
  file_ = system.mkstemp(other_name);
  if (file_ < 0) return status_of_error(errno);
  Status status = write_new(lasting);
  if (status == kOk && !move_to_new_name(other_name, path)) status = status_of_error(errno);
  if (status != kOk) system.unlink(other_name);
  return status;
}

// Header page, root of generation 1, empty second slot.
Status MasterFile::write_new(bool lasting) {
  const std::time_t now = std::time(nullptr);
  std::tm created{};
  localtime_r(&now, &created);
  Root root;
  root.file_id = random_id();
  root.generation = 1;
  const HeaderBytes header = encode_header(root.file_id, created);
  const RootPageBytes slot = encode_root_page(root);
  if (fmd::file_system().ftruncate(file_, kFirstFreePage * kPageBytes) != 0 ||
      !fmd::write_all_at(file_, header.data(), header.size(), 0) ||
      !fmd::write_all_at(file_, slot.data(), slot.size(), root_page(root.generation) * kPageBytes))
    return status_of_error(errno);
  if (lasting && fmd::file_system().fsync(file_) != 0) return status_of_error(errno);
  const Status status = lock_for_writing(file_);
  return status == kOk ? writer_.begin(file_) : status;
}

Status MasterFile::open(const char* path) {
  file_ = fmd::file_system().open(path, O_RDWR, 0);
  if (file_ < 0) return status_of_error(errno);
  Status status = lock_for_writing(file_);
  if (status == kOk) status = check_name(path);
  if (status == kOk) status = writer_.begin(file_);
  if (status != kOk) close();
  return status;
}

Status MasterFile::resume(const char* path) {
  const Status status = check_name(path);
  return status == kOk ? writer_.begin(file_) : status;
}

// The name may have come to mean another file between opening and locking.
Status MasterFile::check_name(const char* path) {
  fmd::FileSystem& system = fmd::file_system();
  struct stat locked {};
  struct stat named {};
  if (system.fstat(file_, &locked) != 0 || system.stat(path, &named) != 0) return status_of_error(errno);
  return locked.st_dev == named.st_dev && locked.st_ino == named.st_ino ? kOk : kLocked;
}

void MasterFile::close() {
  writer_ = MasterWriter();
  if (file_ >= 0) fmd::file_system().close(file_);
  file_ = -1;
}

}  // namespace kdcdb
