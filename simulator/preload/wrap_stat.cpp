// Questions about paths.

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/node_stat.h"
#include "simulator/preload/redirection.h"
#include "simulator/preload/stat_path.h"

namespace rolu_sim {
namespace {

using AccessCall = int (*)(const char*, int);

NextCall<StatCall<struct stat>> next_stat("stat");
NextCall<StatCall<struct stat64>> next_stat64("stat64");
NextCall<StatCall<struct stat>> next_lstat("lstat");
NextCall<StatCall<struct stat64>> next_lstat64("lstat64");
NextCall<StatDescriptorCall<struct stat>> next_fstat("fstat");
NextCall<StatDescriptorCall<struct stat64>> next_fstat64("fstat64");
NextCall<StatAtCall<struct stat>> next_fstatat("fstatat");
NextCall<StatAtCall<struct stat64>> next_fstatat64("fstatat64");
NextCall<int (*)(int, const char*, int, unsigned, struct statx*)> next_statx("statx");
NextCall<AccessCall> next_access("access");
NextCall<AccessCall> next_euidaccess("euidaccess");
NextCall<int (*)(int, const char*, int, int)> next_faccessat("faccessat");

template <typename Node>
int StatxNode(Node node, struct statx* record) {
  NodeAttributes attributes{};
  if (AskAttributes(node, attributes) < 0) return -1;
  memset(record, 0, sizeof *record);
  record->stx_mask = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK | STATX_SIZE;
  record->stx_mode = static_cast<uint16_t>(attributes.mode);
  record->stx_ino = attributes.inode;
  record->stx_nlink = 1;
  record->stx_size = static_cast<uint64_t>(attributes.size);
  record->stx_blksize = 4096;
  record->stx_rdev_major = attributes.major;
  record->stx_rdev_minor = attributes.minor;
  return 0;
}

// The board's programs run as root: every node that is there may be read and written.
int AccessNode(const char* path, int mode) {
  NodeAttributes attributes{};
  if (AskAttributes(path, attributes) < 0) return -1;
  if ((mode & X_OK) == 0) return 0;
  errno = EACCES;
  return -1;
}

int Access(NextCall<AccessCall>& next, const char* path, int mode) {
  Place place(path);
  if (place.target() == Target::kDevice) return AccessNode(place.board_path(), mode);
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? -1 : next.get()(system_path, mode);
}

}  // namespace
}  // namespace rolu_sim

using rolu_sim::Place;
using rolu_sim::Target;

extern "C" {

ROLU_SIM_EXPORTED int stat(const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_stat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int stat64(const char* path, struct stat64* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_stat64, rolu_sim::next_stat64, path, record);
}

ROLU_SIM_EXPORTED int lstat(const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_lstat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int lstat64(const char* path, struct stat64* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_lstat64, rolu_sim::next_stat64, path, record);
}

ROLU_SIM_EXPORTED int fstat(int fd, struct stat* record) noexcept {
  return rolu_sim::StatDescriptor(rolu_sim::next_fstat, fd, record);
}

ROLU_SIM_EXPORTED int fstat64(int fd, struct stat64* record) noexcept {
  return rolu_sim::StatDescriptor(rolu_sim::next_fstat64, fd, record);
}

ROLU_SIM_EXPORTED int fstatat(int directory, const char* path, struct stat* record, int flags) noexcept {
  return rolu_sim::StatPathAt(rolu_sim::next_fstatat, directory, path, record, flags);
}

ROLU_SIM_EXPORTED int fstatat64(int directory, const char* path, struct stat64* record, int flags) noexcept {
  return rolu_sim::StatPathAt(rolu_sim::next_fstatat64, directory, path, record, flags);
}

ROLU_SIM_EXPORTED int statx(int directory, const char* path, int flags, unsigned mask,
                            struct statx* record) noexcept {
  if (const rolu_sim::DeviceId device = rolu_sim::DeviceNamedBy(directory, path, flags)) {
    return rolu_sim::StatxNode(device, record);
  }
  Place place(path, directory);
  if (place.target() == Target::kDevice) return rolu_sim::StatxNode(place.board_path(), record);
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr) return -1;
  return rolu_sim::next_statx.get()(directory, system_path, rolu_sim::FlagsFor(place, flags), mask, record);
}

ROLU_SIM_EXPORTED int access(const char* path, int mode) noexcept {
  return rolu_sim::Access(rolu_sim::next_access, path, mode);
}

ROLU_SIM_EXPORTED int euidaccess(const char* path, int mode) noexcept {
  return rolu_sim::Access(rolu_sim::next_euidaccess, path, mode);
}

ROLU_SIM_EXPORTED int eaccess(const char* path, int mode) noexcept {
  return rolu_sim::Access(rolu_sim::next_euidaccess, path, mode);
}

ROLU_SIM_EXPORTED int faccessat(int directory, const char* path, int mode, int flags) noexcept {
  Place place(path, directory);
  if (place.target() == Target::kDevice) return rolu_sim::AccessNode(place.board_path(), mode);
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr) return -1;
  return rolu_sim::next_faccessat.get()(directory, system_path, mode, rolu_sim::FlagsFor(place, flags));
}

// What the calls were in programs that were linked before glibc 2.33. The version names the layout of
// the record; there is one. They do not call the new ones by name: those may be a sanitizer's, which call
// these.

ROLU_SIM_EXPORTED int __xstat(int /*version*/, const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_stat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int __xstat64(int /*version*/, const char* path, struct stat64* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_stat64, rolu_sim::next_stat64, path, record);
}

ROLU_SIM_EXPORTED int __lxstat(int /*version*/, const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_lstat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int __lxstat64(int /*version*/, const char* path, struct stat64* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_lstat64, rolu_sim::next_stat64, path, record);
}

ROLU_SIM_EXPORTED int __fxstat(int /*version*/, int fd, struct stat* record) noexcept {
  return rolu_sim::StatDescriptor(rolu_sim::next_fstat, fd, record);
}

ROLU_SIM_EXPORTED int __fxstat64(int /*version*/, int fd, struct stat64* record) noexcept {
  return rolu_sim::StatDescriptor(rolu_sim::next_fstat64, fd, record);
}

ROLU_SIM_EXPORTED int __fxstatat(int /*version*/, int directory, const char* path, struct stat* record,
                                 int flags) noexcept {
  return rolu_sim::StatPathAt(rolu_sim::next_fstatat, directory, path, record, flags);
}

ROLU_SIM_EXPORTED int __fxstatat64(int /*version*/, int directory, const char* path, struct stat64* record,
                                   int flags) noexcept {
  return rolu_sim::StatPathAt(rolu_sim::next_fstatat64, directory, path, record, flags);
}

}  // extern "C"
