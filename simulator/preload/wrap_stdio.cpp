// Streams on device nodes. The C library reads a stream's descriptor past the wrapped calls, so a
// stream on a node is one with functions of its own.

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/board_client.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

using FopenCall = FILE* (*)(const char*, const char*);

NextCall<FopenCall> next_fopen("fopen");
NextCall<FopenCall> next_fopen64("fopen64");

void* CookieOf(int fd) {
  return reinterpret_cast<void*>(static_cast<intptr_t>(fd));
}
int DescriptorOf(void* cookie) {
  return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

ssize_t ReadCookie(void* cookie, char* buffer, size_t size) {
  return ReadDevice(DescriptorOf(cookie), buffer, size);
}

// A stream's write function reports failure by 0.
ssize_t WriteCookie(void* cookie, const char* bytes, size_t size) {
  const ssize_t written = WriteDevice(DescriptorOf(cookie), bytes, size);
  return written < 0 ? 0 : written;
}

int CloseCookie(void* cookie) {
  return CloseDevice(DescriptorOf(cookie));
}

// The open flags of a stream's mode; -1 with EINVAL when it is none.
int FlagsOfMode(const char* mode) {
  const bool update = strchr(mode, '+') != nullptr;
  const int close_on_exec = strchr(mode, 'e') != nullptr ? O_CLOEXEC : 0;
  const int write_access = update ? O_RDWR : O_WRONLY;
  switch (mode[0]) {
    case 'r':
      return (update ? O_RDWR : O_RDONLY) | close_on_exec;
    case 'w':
      return write_access | O_TRUNC | close_on_exec;
    case 'a':
      return write_access | O_APPEND | close_on_exec;
    default:
      errno = EINVAL;
      return -1;
  }
}

FILE* OpenDeviceStream(const char* path, const char* mode) {
  const int flags = FlagsOfMode(mode);
  if (flags < 0) return nullptr;
  const int fd = OpenDeviceNode(path, flags);
  if (fd < 0) return nullptr;
  FILE* const stream = fopencookie(CookieOf(fd), mode, {ReadCookie, WriteCookie, nullptr, CloseCookie});
  if (stream == nullptr) CloseDevice(fd);
  return stream;
}

FILE* OpenStream(NextCall<FopenCall>& next, const char* path, const char* mode) {
  switch (TargetOf(path)) {
    case Target::kDevice:
      return OpenDeviceStream(path, mode);
    case Target::kSerialPort:
      return next.get()(PathInRoot(kSerialLinkName).get(), mode);
    default:
      return next.get()(path, mode);
  }
}

}  // namespace
}  // namespace rolu_sim

extern "C" {

ROLU_SIM_EXPORTED FILE* fopen(const char* path, const char* mode) {
  return rolu_sim::OpenStream(rolu_sim::next_fopen, path, mode);
}

ROLU_SIM_EXPORTED FILE* fopen64(const char* path, const char* mode) {
  return rolu_sim::OpenStream(rolu_sim::next_fopen64, path, mode);
}

}  // extern "C"
