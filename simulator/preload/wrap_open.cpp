// The open family. Each variant that a program may have been compiled to call is wrapped.

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

using OpenCall = int (*)(const char*, int, ...);
using OpenAtCall = int (*)(int, const char*, int, ...);
using CheckedOpenCall = int (*)(const char*, int);
using CheckedOpenAtCall = int (*)(int, const char*, int);

NextCall<OpenCall> next_open("open");
NextCall<OpenCall> next_open64("open64");
NextCall<OpenAtCall> next_openat("openat");
NextCall<OpenAtCall> next_openat64("openat64");
NextCall<CheckedOpenCall> next_open_2("__open_2");
NextCall<CheckedOpenCall> next_open64_2("__open64_2");
NextCall<CheckedOpenAtCall> next_openat_2("__openat_2");
NextCall<CheckedOpenAtCall> next_openat64_2("__openat64_2");

// What the board has is there or not: no flag makes a file of it.
constexpr int kMaking = O_CREAT | O_EXCL;

// Opens a path of the board; of a target other than kUntouched.
int OpenOnBoard(Place& place, int flags) {
  if (place.target() == Target::kDevice) {
    if ((flags & O_DIRECTORY) == 0) return OpenDeviceNode(place.board_path(), flags);
    errno = ENOTDIR;
    return -1;
  }
  if (place.target() == Target::kSerialPort) AnnounceSerialOpen();
  const char* const path = place.SystemPath();
  return path == nullptr ? -1 : next_open.get()(path, flags & ~kMaking);
}

bool TakesMode(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

// A callee that does not look at the mode takes any.
int Open(NextCall<OpenCall>& next, const char* path, int flags, mode_t mode) {
  Place place(path);
  if (place.target() != Target::kUntouched) return OpenOnBoard(place, flags);
  return next.get()(place.SystemPath(), flags, mode);
}

int OpenAt(NextCall<OpenAtCall>& next, int directory, const char* path, int flags, mode_t mode) {
  Place place(path, directory);
  if (place.target() != Target::kUntouched) return OpenOnBoard(place, flags);
  return next.get()(directory, place.SystemPath(), flags, mode);
}

int OpenChecked(NextCall<CheckedOpenCall>& next, const char* path, int flags) {
  Place place(path);
  if (place.target() != Target::kUntouched) return OpenOnBoard(place, flags);
  return next.get()(place.SystemPath(), flags);
}

int OpenAtChecked(NextCall<CheckedOpenAtCall>& next, int directory, const char* path, int flags) {
  Place place(path, directory);
  if (place.target() != Target::kUntouched) return OpenOnBoard(place, flags);
  return next.get()(directory, place.SystemPath(), flags);
}

}  // namespace
}  // namespace rolu_sim

extern "C" {

ROLU_SIM_EXPORTED int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = rolu_sim::TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return rolu_sim::Open(rolu_sim::next_open, path, flags, mode);
}

ROLU_SIM_EXPORTED int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = rolu_sim::TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return rolu_sim::Open(rolu_sim::next_open64, path, flags, mode);
}

ROLU_SIM_EXPORTED int openat(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = rolu_sim::TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return rolu_sim::OpenAt(rolu_sim::next_openat, directory, path, flags, mode);
}

ROLU_SIM_EXPORTED int openat64(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = rolu_sim::TakesMode(flags) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return rolu_sim::OpenAt(rolu_sim::next_openat64, directory, path, flags, mode);
}

// What the open calls without a mode become in a fortified program.

ROLU_SIM_EXPORTED int __open_2(const char* path, int flags) {
  return rolu_sim::OpenChecked(rolu_sim::next_open_2, path, flags);
}

ROLU_SIM_EXPORTED int __open64_2(const char* path, int flags) {
  return rolu_sim::OpenChecked(rolu_sim::next_open64_2, path, flags);
}

ROLU_SIM_EXPORTED int __openat_2(int directory, const char* path, int flags) {
  return rolu_sim::OpenAtChecked(rolu_sim::next_openat_2, directory, path, flags);
}

ROLU_SIM_EXPORTED int __openat64_2(int directory, const char* path, int flags) {
  return rolu_sim::OpenAtChecked(rolu_sim::next_openat64_2, directory, path, flags);
}

}  // extern "C"
