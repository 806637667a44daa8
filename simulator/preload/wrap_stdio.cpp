// Streams on device nodes.

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"
#include "simulator/preload/standard_streams.h"

namespace rolu_sim {
namespace {

using FopenCall = FILE* (*)(const char*, const char*);

NextCall<FopenCall> next_fopen("fopen");
NextCall<FopenCall> next_fopen64("fopen64");
NextCall<FILE* (*)(int, const char*)> next_fdopen("fdopen");
NextCall<int (*)(FILE*)> next_fileno("fileno");

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
  FILE* const stream = OpenStreamOn(fd, mode);
  if (stream == nullptr) close(fd);
  return stream;
}

FILE* OpenStream(NextCall<FopenCall>& next, const char* path, const char* mode) {
  Place place(path);
  if (place.target() == Target::kDevice) return OpenDeviceStream(place.board_path(), mode);
  if (place.target() == Target::kSerialPort) AnnounceSerialOpen();
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? nullptr : next.get()(system_path, mode);
}

// The C library gives none for a stream with functions of its own.
int DescriptorOf(FILE* stream) {
  return stream->_fileno >= 0 ? stream->_fileno : next_fileno.get()(stream);
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

ROLU_SIM_EXPORTED FILE* fdopen(int fd, const char* mode) noexcept {
  if (rolu_sim::DeviceOf(fd) == 0) return rolu_sim::next_fdopen.get()(fd, mode);
  return rolu_sim::FlagsOfMode(mode) < 0 ? nullptr : rolu_sim::OpenStreamOn(fd, mode);
}

ROLU_SIM_EXPORTED int fileno(FILE* stream) noexcept {
  return rolu_sim::DescriptorOf(stream);
}

ROLU_SIM_EXPORTED int fileno_unlocked(FILE* stream) noexcept {
  return rolu_sim::DescriptorOf(stream);
}

}  // extern "C"
