// Loaded into the server with LD_PRELOAD: records every change of a file in the folder KALVOR_CUT_FOLDER, and every
// synchronization, in the file KALVOR_CUT_RECORD. What a power cut would leave is computed from that; instead of the real
// synchronization there is a pause by the number of changes, so that some cuts come during it. With KALVOR_CUT_LIES set
// no synchronization is recorded, as if the disk acknowledged what it has not done.
//
// Left out is the index of the write-ahead log ("-shm"): shared memory that SQLite makes anew.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>

#include "write_record.h"

using kalvor::testing::WriteRecord;

namespace {

constexpr int fileTable = 4096;

template <typename Function>
Function next(const char* name)
{
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

struct Recorder {
  std::mutex mutex;  // a change and its record are one step
  std::string folder;
  int record = -1;
  uint64_t records = 0;
  bool lies = false;
  bool followed[fileTable] = {};  // by descriptor
  bool isFolder[fileTable] = {};
  int changes[fileTable] = {};  // since the last synchronization

  Recorder()
  {
    const char* named = std::getenv("KALVOR_CUT_FOLDER");
    const char* file = std::getenv("KALVOR_CUT_RECORD");
    lies = std::getenv("KALVOR_CUT_LIES") != nullptr;
    if (named && file) {
      folder = named;
      record = next<int (*)(const char*, int, ...)>("open64")(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
      if (record < 0) {
        std::abort();
      }
    }
  }
  bool concerns(const char* path) const
  {
    const std::string_view text(path);
    return record >= 0 && text.starts_with(folder) && text.size() > folder.size() && text[folder.size()] == '/' &&
           !text.ends_with("-shm");
  }
  bool follows(int fd) const { return fd >= 0 && fd < fileTable && followed[fd]; }
  void add(WriteRecord head, const void* bytes = nullptr)
  {
    iovec parts[] = {{&head, sizeof head}, {const_cast<void*>(bytes), head.size}};
    if (writev(record, parts, 2) != ssize_t(sizeof head + head.size)) {
      std::abort();
    }
    ++records;
  }
};

// Made with the first call, which may come before any constructor of this library.
Recorder& recorder()
{
  static auto* the = new Recorder;
  return *the;
}

uint64_t inode(int fd)
{
  struct stat64 facts;
  return fstat64(fd, &facts) == 0 ? facts.st_ino : 0;
}

int openFollowed(const char* path, int flags, mode_t mode)
{
  static const auto real = next<int (*)(const char*, int, ...)>("open64");
  Recorder& to = recorder();
  const bool file = to.concerns(path);
  const bool folder = to.record >= 0 && to.folder == path;
  if (!file && !folder) {
    return real(path, flags, mode);
  }
  const std::lock_guard lock(to.mutex);
  struct stat64 facts;
  const bool isNew = stat64(path, &facts) != 0;
  const int fd = real(path, flags, mode);
  if (fd < 0) {
    return fd;
  }
  if (fd >= fileTable) {
    std::abort();
  }
  to.followed[fd] = true;
  to.isFolder[fd] = folder;
  to.changes[fd] = 0;
  if (file && isNew) {
    to.add({WriteRecord::Created, uint32_t(std::strlen(path)), inode(fd), 0}, path);
  } else if (file && (flags & O_TRUNC)) {
    to.add({WriteRecord::Truncate, 0, inode(fd), 0});
  }
  return fd;
}

int syncFollowed(int fd, const char* name)
{
  Recorder& to = recorder();
  if (!to.follows(fd)) {
    return next<int (*)(int)>(name)(fd);
  }
  uint64_t covered = 0;
  int changes = 0;
  {
    const std::lock_guard lock(to.mutex);
    covered = to.records;
    std::swap(changes, to.changes[fd]);
  }
  usleep(useconds_t(500 + 50 * changes));
  const std::lock_guard lock(to.mutex);
  if (!to.lies) {
    to.add({to.isFolder[fd] ? WriteRecord::SyncFolder : WriteRecord::Sync, 0, inode(fd), covered});
  }
  return 0;
}

mode_t modeOf(int flags, va_list arguments) { return flags & O_CREAT ? va_arg(arguments, mode_t) : 0; }

}  // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED int open64(const char* path, int flags, ...)
{
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openFollowed(path, flags, mode);
}

EXPORTED int open(const char* path, int flags, ...)
{
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openFollowed(path, flags, mode);
}

EXPORTED int close(int fd)
{
  static const auto real = next<int (*)(int)>("close");
  Recorder& to = recorder();
  if (to.follows(fd)) {
    const std::lock_guard lock(to.mutex);
    to.followed[fd] = false;
    return real(fd);
  }
  return real(fd);
}

EXPORTED ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t offset)
{
  static const auto real = next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
  Recorder& to = recorder();
  if (!to.follows(fd)) {
    return real(fd, bytes, size, offset);
  }
  const std::lock_guard lock(to.mutex);
  const ssize_t written = real(fd, bytes, size, offset);
  if (written > 0) {
    ++to.changes[fd];
    to.add({WriteRecord::Write, uint32_t(written), inode(fd), uint64_t(offset)}, bytes);
  }
  return written;
}

EXPORTED ssize_t pwrite(int fd, const void* bytes, size_t size, off_t offset) { return pwrite64(fd, bytes, size, offset); }

EXPORTED ssize_t write(int fd, const void* bytes, size_t size)
{
  static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write");
  Recorder& to = recorder();
  if (!to.follows(fd)) {
    return real(fd, bytes, size);
  }
  const off64_t offset = lseek64(fd, 0, SEEK_CUR);
  const ssize_t written = pwrite64(fd, bytes, size, offset);
  if (written > 0) {
    lseek64(fd, written, SEEK_CUR);
  }
  return written;
}

EXPORTED int ftruncate64(int fd, off64_t size)
{
  static const auto real = next<int (*)(int, off64_t)>("ftruncate64");
  Recorder& to = recorder();
  if (!to.follows(fd)) {
    return real(fd, size);
  }
  const std::lock_guard lock(to.mutex);
  const int result = real(fd, size);
  if (result == 0) {
    to.add({WriteRecord::Truncate, 0, inode(fd), uint64_t(size)});
  }
  return result;
}

EXPORTED int ftruncate(int fd, off_t size) { return ftruncate64(fd, size); }
EXPORTED int fsync(int fd) { return syncFollowed(fd, "fsync"); }
EXPORTED int fdatasync(int fd) { return syncFollowed(fd, "fdatasync"); }

EXPORTED int unlink(const char* path)
{
  static const auto real = next<int (*)(const char*)>("unlink");
  Recorder& to = recorder();
  if (!to.concerns(path)) {
    return real(path);
  }
  const std::lock_guard lock(to.mutex);
  const int result = real(path);
  if (result == 0) {
    to.add({WriteRecord::Unlink, uint32_t(std::strlen(path)), 0, 0}, path);
  }
  return result;
}

EXPORTED int rename(const char* from, const char* to)
{
  static const auto real = next<int (*)(const char*, const char*)>("rename");
  Recorder& recorded = recorder();
  if (!recorded.concerns(from) || !recorded.concerns(to)) {
    return real(from, to);
  }
  const std::lock_guard lock(recorded.mutex);
  const int result = real(from, to);
  if (result == 0) {
    const std::string both = std::string(from) + '\0' + to;
    recorded.add({WriteRecord::Rename, uint32_t(both.size()), 0, 0}, both.data());
  }
  return result;
}
