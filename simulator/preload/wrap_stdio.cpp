// Streams on device nodes.

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <string.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

constexpr int kStandardStreams = 3;

// The ordinary and the device stream of each standard descriptor. A device stream that is not in use is kept
// for the next time.
FILE* ordinary_streams[kStandardStreams];
FILE* device_streams[kStandardStreams];

FILE*& StandardStream(int fd) {
  if (fd == STDIN_FILENO) return stdin;
  return fd == STDOUT_FILENO ? stdout : stderr;
}

int DescriptorIn(void* cookie) {
  return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

ssize_t ReadCookie(void* cookie, char* buffer, size_t size) {
  return read(DescriptorIn(cookie), buffer, size);
}

// The write function of a stream returns 0 on failure.
ssize_t WriteCookie(void* cookie, const char* bytes, size_t size) {
  const ssize_t written = write(DescriptorIn(cookie), bytes, size);
  return written < 0 ? 0 : written;
}

int SeekCookie(void* cookie, off64_t* offset, int whence) {
  const off64_t position = lseek64(DescriptorIn(cookie), *offset, whence);
  if (position < 0) return -1;
  *offset = position;
  return 0;
}

int CloseCookie(void* cookie) {
  return close(DescriptorIn(cookie));
}

int CloseStandardCookie(void* cookie) {
  const int fd = DescriptorIn(cookie);
  FollowStandardStream(fd, false);
  device_streams[fd] = nullptr;
  return close(fd);
}

FILE* OpenCookie(int fd, const char* mode, cookie_close_function_t* close_cookie) {
  FILE* const stream = fopencookie(reinterpret_cast<void*>(static_cast<intptr_t>(fd)), mode,
                                   {ReadCookie, WriteCookie, SeekCookie, close_cookie});
  if (stream != nullptr) stream->_fileno = fd;  // for fileno
  return stream;
}

// The open flags for a stream's mode; -1 with EINVAL when the mode is not valid.
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
  FILE* const stream = OpenCookie(fd, mode, CloseCookie);
  if (stream == nullptr) close(fd);
  return stream;
}

template <typename Call>
FILE* OpenStream(Call next, const char* path, const char* mode) {
  Place place(path);
  if (place.target() == Target::kDevice) return OpenDeviceStream(place.board_path(), mode);
  if (place.target() == Target::kSerialPort && !AnnounceSerialOpen()) return nullptr;
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? nullptr : next(system_path, mode);
}

}  // namespace

void FollowStandardStream(int fd, bool is_device) {
  FILE*& stream = StandardStream(fd);
  FILE*& device_stream = device_streams[fd];
  const bool was_device = device_stream != nullptr && stream == device_stream;
  if (is_device == was_device) return;
  if (!is_device) {
    stream = ordinary_streams[fd];
    return;
  }
  if (device_stream == nullptr) {
    device_stream = OpenCookie(fd, fd == STDIN_FILENO ? "r" : "w", CloseStandardCookie);
    if (device_stream == nullptr) return;
    if (fd == STDERR_FILENO) setvbuf(device_stream, nullptr, _IONBF, 0);
  }
  __fpurge(device_stream);
  clearerr(device_stream);
  ordinary_streams[fd] = stream;
  stream = device_stream;
}

}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

FILE* fopen(const char* path, const char* mode) {
  return OpenStream(Next<fopen>("fopen"), path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  return OpenStream(Next<fopen64>("fopen64"), path, mode);
}

FILE* fdopen(int fd, const char* mode) noexcept {
  if (DeviceOf(fd) == 0) return Next<fdopen>("fdopen")(fd, mode);
  return FlagsOfMode(mode) < 0 ? nullptr : OpenCookie(fd, mode, CloseCookie);
}

// The C library gives no descriptor for a stream with functions of its own.
int fileno(FILE* stream) noexcept {
  return stream->_fileno >= 0 ? stream->_fileno : Next<fileno>("fileno")(stream);
}

int fileno_unlocked(FILE* stream) noexcept {
  return fileno(stream);
}

}  // extern "C"
#pragma GCC visibility pop
