#include "support/memory_disk.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace fmdtest {

namespace {

constexpr int kDirectoryFile = 0;

// Descriptors of different disks never meet.
int next_descriptor = 100000;

}  // namespace

MemoryDisk::MemoryDisk() {
  install();
}

MemoryDisk::~MemoryDisk() {
  if (&fmd::file_system() == this) fmd::replace_file_system(nullptr);
}

std::vector<std::string> MemoryDisk::names() const {
  std::vector<std::string> found;
  for (const auto& [name, file] : names_) found.push_back(name.substr(std::strlen(kDirectory) + 1));
  return found;
}

void MemoryDisk::put(const std::string& name, FileBytes bytes) {
  const auto known = names_.find(path(name));
  const int file = known == names_.end() ? next_file_++ : known->second;
  names_[path(name)] = file;
  files_[file] = std::move(bytes);
}

void MemoryDisk::record() {
  recording_ = true;
  events_.clear();
  first_files_ = files_;
  first_names_ = names_;
}

std::unique_ptr<MemoryDisk> MemoryDisk::before() const {
  auto disk = std::make_unique<MemoryDisk>();
  disk->files_ = first_files_;
  disk->names_ = first_names_;
  disk->next_file_ = next_file_;
  return disk;
}

void MemoryDisk::apply(const DiskEvent& event, std::size_t bytes) {
  FileBytes& file = files_[event.file];
  switch (event.kind) {
    case DiskEvent::Kind::kWrite: {
      const std::size_t count = std::min(bytes, event.bytes.size());
      const auto offset = static_cast<std::size_t>(event.offset);
      if (count > 0) file.resize(std::max(file.size(), offset + count));
      std::copy_n(event.bytes.begin(), count, file.begin() + event.offset);
      break;
    }
    case DiskEvent::Kind::kResize:
      file.resize(static_cast<std::size_t>(event.offset));
      break;
    case DiskEvent::Kind::kSync:
      break;
    case DiskEvent::Kind::kLink:
      names_[event.name] = static_cast<int>(event.offset);
      files_[static_cast<int>(event.offset)];
      break;
    case DiskEvent::Kind::kUnlink:
      names_.erase(event.name);
      break;
  }
}

std::size_t MemoryDisk::used() const {
  std::size_t sum = 0;
  for (const auto& [number, bytes] : files_) sum += bytes.size();
  return sum;
}

int MemoryDisk::fail(int error) {
  errno = error;
  return -1;
}

bool MemoryDisk::fails(const char* call) {
  const int error = fault ? fault(call) : 0;
  if (error != 0) errno = error;
  return error != 0;
}

int MemoryDisk::file_of(int descriptor) const {
  const auto found = open_.find(descriptor);
  return found == open_.end() ? -1 : found->second;
}

int MemoryDisk::new_descriptor(int file) {
  open_[++next_descriptor] = file;
  return next_descriptor;
}

void MemoryDisk::note(DiskEvent event) {
  if (recording_) events_.push_back(std::move(event));
}

int MemoryDisk::add_name(const std::string& name, int file) {
  if (names_.count(name) != 0) return fail(EEXIST);
  names_[name] = file;
  note({DiskEvent::Kind::kLink, kDirectoryFile, file, {}, name});
  return 0;
}

int MemoryDisk::open(const char* path, int flags, mode_t) {
  if (fails("open")) return -1;
  if (std::strcmp(path, kDirectory) == 0 && (flags & O_TMPFILE) == O_TMPFILE) {
    files_[next_file_];
    return new_descriptor(next_file_++);
  }
  if (std::strcmp(path, kDirectory) == 0) return new_descriptor(kDirectoryFile);
  const auto found = names_.find(path);
  if (found != names_.end()) return new_descriptor(found->second);
  if ((flags & O_CREAT) == 0) return fail(ENOENT);
  files_[next_file_];
  add_name(path, next_file_);
  return new_descriptor(next_file_++);
}

int MemoryDisk::close(int descriptor) {
  if (open_.erase(descriptor) == 0) return fail(EBADF);
  for (auto& [place, holders] : locks_) holders.erase(descriptor);
  return fails("close") ? -1 : 0;
}

ssize_t MemoryDisk::pread(int descriptor, void* buffer, std::size_t bytes, off_t offset) {
  const int file = file_of(descriptor);
  if (file <= 0) return fail(EBADF);
  if (offset < 0) return fail(EINVAL);
  if (fails("pread")) return -1;
  const FileBytes& content = files_[file];
  const auto from = static_cast<std::size_t>(offset);
  if (from >= content.size()) return 0;
  const std::size_t count = std::min(bytes, content.size() - from);
  std::memcpy(buffer, content.data() + from, count);
  return static_cast<ssize_t>(count);
}

void MemoryDisk::resize(int file, std::size_t bytes) {
  files_[file].resize(bytes);
  note({DiskEvent::Kind::kResize, file, static_cast<std::int64_t>(bytes), {}, {}});
}

ssize_t MemoryDisk::pwrite(int descriptor, const void* buffer, std::size_t bytes, off_t offset) {
  const int file = file_of(descriptor);
  if (file <= 0) return fail(EBADF);
  if (offset < 0) return fail(EINVAL);
  if (fails("pwrite")) return -1;
  FileBytes& content = files_[file];
  const auto from = static_cast<std::size_t>(offset);
  const std::size_t total = used();
  const std::size_t room = content.size() + (capacity > total ? capacity - total : 0);
  if (bytes > 0 && from >= room && from + bytes > content.size()) return fail(ENOSPC);
  const std::size_t count = from + bytes > content.size() ? std::min(bytes, room - from) : bytes;
  content.resize(std::max(content.size(), from + count));
  const auto* const source = static_cast<const unsigned char*>(buffer);
  std::copy_n(source, count, content.begin() + offset);
  note({DiskEvent::Kind::kWrite, file, offset, FileBytes(source, source + count), {}});
  return static_cast<ssize_t>(count);
}

int MemoryDisk::fallocate(int descriptor, int, off_t offset, off_t bytes) {
  const int file = file_of(descriptor);
  if (file <= 0) return fail(EBADF);
  if (fails("fallocate")) return -1;
  const auto end = static_cast<std::size_t>(offset + bytes);
  const std::size_t now = files_[file].size();
  if (end <= now) return 0;
  if (end - now > capacity - std::min(capacity, used())) return fail(ENOSPC);
  resize(file, end);
  return 0;
}

int MemoryDisk::ftruncate(int descriptor, off_t bytes) {
  const int file = file_of(descriptor);
  if (file <= 0) return fail(EBADF);
  if (bytes < 0) return fail(EINVAL);
  if (fails("ftruncate")) return -1;
  resize(file, static_cast<std::size_t>(bytes));
  return 0;
}

int MemoryDisk::fdatasync(int descriptor) {
  const int file = file_of(descriptor);
  if (file < 0) return fail(EBADF);
  if (fails("fdatasync")) return -1;
  note({DiskEvent::Kind::kSync, file, 0, {}, {}});
  return 0;
}

int MemoryDisk::fsync(int descriptor) {
  const int file = file_of(descriptor);
  if (file < 0) return fail(EBADF);
  if (fails("fsync")) return -1;
  note({DiskEvent::Kind::kSync, file, 0, {}, {}});
  return 0;
}

int MemoryDisk::fstat(int descriptor, struct stat* status) {
  const int file = file_of(descriptor);
  if (file < 0) return fail(EBADF);
  if (fails("fstat")) return -1;
  *status = {};
  status->st_ino = static_cast<ino_t>(file);
  status->st_mode = S_IFREG;
  status->st_size = static_cast<off_t>(files_[file].size());
  return 0;
}

int MemoryDisk::stat(const char* path, struct stat* status) {
  if (fails("stat")) return -1;
  const auto found = names_.find(path);
  if (found == names_.end()) return fail(ENOENT);
  *status = {};
  status->st_ino = static_cast<ino_t>(found->second);
  status->st_mode = S_IFREG;
  status->st_size = static_cast<off_t>(files_[found->second].size());
  return 0;
}

int MemoryDisk::unlink(const char* path) {
  if (fails("unlink")) return -1;
  if (names_.erase(path) == 0) return fail(ENOENT);
  note({DiskEvent::Kind::kUnlink, kDirectoryFile, 0, {}, path});
  return 0;
}

int MemoryDisk::link(const char* from, const char* to) {
  if (fails("link")) return -1;
  const auto found = names_.find(from);
  return found == names_.end() ? fail(ENOENT) : add_name(to, found->second);
}

int MemoryDisk::linkat(int descriptor, const char* to) {
  if (fails("linkat")) return -1;
  const int file = file_of(descriptor);
  return file <= 0 ? fail(EBADF) : add_name(to, file);
}

int MemoryDisk::rename_new(const char* from, const char* to) {
  if (fails("rename")) return -1;
  const auto found = names_.find(from);
  if (found == names_.end()) return fail(ENOENT);
  if (add_name(to, found->second) != 0) return -1;
  names_.erase(from);
  note({DiskEvent::Kind::kUnlink, kDirectoryFile, 0, {}, from});
  return 0;
}

int MemoryDisk::mkstemp(char* path_template) {
  const std::size_t length = std::strlen(path_template);
  char number[16];
  std::snprintf(number, sizeof number, "%06d", next_file_ % 1000000);
  std::memcpy(path_template + length - 6, number, 6);
  return open(path_template, O_CREAT | O_RDWR, 0600);
}

int MemoryDisk::lock(int descriptor, int command, struct flock* range) {
  const int file = file_of(descriptor);
  if (file <= 0) return fail(EBADF);
  if (fails("lock")) return -1;
  auto& holders = locks_[{file, range->l_start}];
  const bool taken = std::any_of(holders.begin(), holders.end(), [&](const auto& holder) {
    return holder.first != descriptor && (holder.second == F_WRLCK || range->l_type == F_WRLCK);
  });
  if (command == F_OFD_GETLK) {
    if (!taken) range->l_type = F_UNLCK;
    return 0;
  }
  if (taken) return fail(EAGAIN);
  holders[descriptor] = range->l_type;
  return 0;
}

char* MemoryDisk::realpath(const char* path, char* resolved) {
  if (fails("realpath")) return nullptr;
  const bool known = std::strcmp(path, kDirectory) == 0 || path[0] == '.';
  if (!known) {
    errno = ENOENT;
    return nullptr;
  }
  std::snprintf(resolved, PATH_MAX, "%s", kDirectory);
  return resolved;
}

}  // namespace fmdtest
