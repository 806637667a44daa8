// The open family. Each variant that a program may have been compiled to call is wrapped.

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

// The board's nodes exist or not: no flag creates one.
constexpr int kMaking = O_CREAT | O_EXCL;

bool TakesMode(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

// `mode` is present for calls that take one. A callee that does not use the mode accepts any.
template <typename Call, typename... Mode>
int Open(Call next, int directory, const char* path, int flags, Mode... mode) {
  Place place(path, directory);
  if (place.target() == Target::kDevice) {
    if ((flags & O_DIRECTORY) == 0) return OpenDeviceNode(place.board_path(), flags);
    errno = ENOTDIR;
    return -1;
  }
  if (place.target() == Target::kSerialPort && !AnnounceSerialOpen()) return -1;
  if (place.target() != Target::kUntouched) flags &= ~kMaking;
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? -1 : next(directory, system_path, flags, mode...);
}

}  // namespace
}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(Next<openat>("openat"), AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(Next<openat64>("openat64"), AT_FDCWD, path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(Next<openat>("openat"), directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(Next<openat64>("openat64"), directory, path, flags, mode);
}

// The open calls of a fortified program that take no mode.

int __openat_2(int directory, const char* path, int flags) {
  return Open(Next<__openat_2>("__openat_2"), directory, path, flags);
}

int __openat64_2(int directory, const char* path, int flags) {
  return Open(Next<__openat64_2>("__openat64_2"), directory, path, flags);
}

int __open_2(const char* path, int flags) {
  return Open(Next<__openat_2>("__openat_2"), AT_FDCWD, path, flags);
}

int __open64_2(const char* path, int flags) {
  return Open(Next<__openat64_2>("__openat64_2"), AT_FDCWD, path, flags);
}

}  // extern "C"
#pragma GCC visibility pop
