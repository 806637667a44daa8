// The stat calls of 32-bit programs that are compiled for 64-bit time. With these two definitions
// the C library's header gives its stat functions the names that such programs call.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64

#include <sys/stat.h>

#if __TIMESIZE == 32
#include "simulator/preload/node_stat.h"

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

int fstatat(int directory, const char* path, struct stat* record, int flags) noexcept {
  return StatAt(Next<fstatat>("__fstatat64_time64"), directory, path, record, flags);
}

int stat(const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("__fstatat64_time64"), AT_FDCWD, path, record, 0);
}

int lstat(const char* path, struct stat* record) noexcept {
  return StatAt(Next<fstatat>("__fstatat64_time64"), AT_FDCWD, path, record, AT_SYMLINK_NOFOLLOW);
}

int fstat(int fd, struct stat* record) noexcept {
  return StatDescriptor(Next<fstat>("__fstat64_time64"), fd, record);
}

}  // extern "C"
#pragma GCC visibility pop
#endif
