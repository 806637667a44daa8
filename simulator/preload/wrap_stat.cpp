// Calls that ask about paths.

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/preload/node_stat.h"

namespace rolu_sim {
namespace {

int FillExtendedRecord(const NodeStat& node, struct statx* record) {
  memset(record, 0, sizeof *record);
  record->stx_mask = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK | STATX_SIZE;
  record->stx_mode = static_cast<uint16_t>(node.mode);
  record->stx_ino = node.inode;
  record->stx_nlink = 1;
  record->stx_size = static_cast<uint64_t>(node.size);
  record->stx_blksize = 4096;
  record->stx_rdev_major = node.major;
  record->stx_rdev_minor = node.minor;
  return 0;
}

// The board's programs run as root: they may read and write every existing node.
int AccessNode(int mode) {
  if ((mode & X_OK) == 0) return 0;
  errno = EACCES;
  return -1;
}

int AccessAt(int directory, const char* path, int mode, int flags) {
  return AskAt(
      directory, path, flags, [=](const NodeStat&) { return AccessNode(mode); },
      [=](const char* at, int with) { return Next<faccessat>("faccessat")(directory, at, mode, with); });
}

}  // namespace
}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

int fstatat(int directory, const char* path, struct stat* record, int flags) noexcept {
  return StatAt(Next<fstatat>("fstatat"), directory, path, record, flags);
}

int fstatat64(int directory, const char* path, struct stat64* record, int flags) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), directory, path, record, flags);
}

int stat(const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("fstatat"), AT_FDCWD, path, record, 0);
}

int stat64(const char* path, struct stat64* record) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), AT_FDCWD, path, record, 0);
}

int lstat(const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("fstatat"), AT_FDCWD, path, record, AT_SYMLINK_NOFOLLOW);
}

int lstat64(const char* path, struct stat64* record) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), AT_FDCWD, path, record, AT_SYMLINK_NOFOLLOW);
}

int fstat(int fd, struct stat* record) noexcept {
  return StatDescriptor(Next<fstat>("fstat"), fd, record);
}

int fstat64(int fd, struct stat64* record) noexcept {
  return StatDescriptor(Next<fstat64>("fstat64"), fd, record);
}

int statx(int directory, const char* path, int flags, unsigned mask, struct statx* record) noexcept {
  return AskAt(
      directory, path, flags, [=](const NodeStat& node) { return FillExtendedRecord(node, record); },
      [=](const char* at, int with) { return Next<statx>("statx")(directory, at, with, mask, record); });
}

int access(const char* path, int mode) noexcept {
  return AccessAt(AT_FDCWD, path, mode, 0);
}

int euidaccess(const char* path, int mode) noexcept {
  return AccessAt(AT_FDCWD, path, mode, AT_EACCESS);
}

int eaccess(const char* path, int mode) noexcept {
  return AccessAt(AT_FDCWD, path, mode, AT_EACCESS);
}

int faccessat(int directory, const char* path, int mode, int flags) noexcept {
  return AccessAt(directory, path, mode, flags);
}

// The stat calls of programs that were linked before glibc 2.33. The version names the layout of the record;
// only one layout is in use. These functions do not call the new ones by name: a sanitizer may have replaced
// the new ones, and its versions call these.

int __xstat(int /*version*/, const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("fstatat"), AT_FDCWD, path, record, 0);
}

int __xstat64(int /*version*/, const char* path, struct stat64* record) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), AT_FDCWD, path, record, 0);
}

int __lxstat(int /*version*/, const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("fstatat"), AT_FDCWD, path, record, AT_SYMLINK_NOFOLLOW);
}

int __lxstat64(int /*version*/, const char* path, struct stat64* record) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), AT_FDCWD, path, record, AT_SYMLINK_NOFOLLOW);
}

int __fxstat(int /*version*/, int fd, struct stat* record) noexcept {
  return StatDescriptor(Next<fstat>("fstat"), fd, record);
}

int __fxstat64(int /*version*/, int fd, struct stat64* record) noexcept {
  return StatDescriptor(Next<fstat64>("fstat64"), fd, record);
}

int __fxstatat(int /*version*/, int directory, const char* path, struct stat* record, int flags) noexcept {
  return StatAt(Next<fstatat>("fstatat"), directory, path, record, flags);
}

int __fxstatat64(int /*version*/, int directory, const char* path, struct stat64* record,
                 int flags) noexcept {
  return StatAt(Next<fstatat64>("fstatat64"), directory, path, record, flags);
}

}  // extern "C"
#pragma GCC visibility pop
