// The stat calls of 32-bit programs that are compiled for 64-bit time. With these two definitions
// the C library's header gives its stat functions the names that such programs call.
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64

#include <sys/stat.h>

#if __TIMESIZE == 32
#include "simulator/preload/exported.h"
#include "simulator/preload/stat_path.h"

namespace rolu_sim {
namespace {

NextCall<StatCall<struct stat>> next_stat("__stat64_time64");
NextCall<StatCall<struct stat>> next_lstat("__lstat64_time64");
NextCall<StatDescriptorCall<struct stat>> next_fstat("__fstat64_time64");
NextCall<StatAtCall<struct stat>> next_fstatat("__fstatat64_time64");

}  // namespace
}  // namespace rolu_sim

extern "C" {

ROLU_SIM_EXPORTED int stat(const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_stat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int lstat(const char* path, struct stat* record) noexcept {
  return rolu_sim::StatPath(rolu_sim::next_lstat, rolu_sim::next_stat, path, record);
}

ROLU_SIM_EXPORTED int fstat(int fd, struct stat* record) noexcept {
  return rolu_sim::StatDescriptor(rolu_sim::next_fstat, fd, record);
}

ROLU_SIM_EXPORTED int fstatat(int directory, const char* path, struct stat* record, int flags) noexcept {
  return rolu_sim::StatPathAt(rolu_sim::next_fstatat, directory, path, record, flags);
}

}  // extern "C"
#endif
