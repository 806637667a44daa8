#include "simulator/preload/standard_streams.h"

#include <stdint.h>
#include <stdio_ext.h>
#include <unistd.h>

namespace rolu_sim {
namespace {

constexpr int kStandardStreams = 3;

// What was and what is in place of each; a stream that is in place of nothing waits for its next use.
FILE* ordinary_streams[kStandardStreams];
FILE* device_streams[kStandardStreams];

FILE*& StandardStream(int fd) {
  if (fd == STDIN_FILENO) return stdin;
  return fd == STDOUT_FILENO ? stdout : stderr;
}

int DescriptorOf(void* cookie) {
  return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

ssize_t ReadCookie(void* cookie, char* buffer, size_t size) {
  return read(DescriptorOf(cookie), buffer, size);
}

// A stream's write function reports failure by 0.
ssize_t WriteCookie(void* cookie, const char* bytes, size_t size) {
  const ssize_t written = write(DescriptorOf(cookie), bytes, size);
  return written < 0 ? 0 : written;
}

int SeekCookie(void* cookie, off64_t* offset, int whence) {
  const off64_t position = lseek64(DescriptorOf(cookie), *offset, whence);
  if (position < 0) return -1;
  *offset = position;
  return 0;
}

int CloseCookie(void* cookie) {
  return close(DescriptorOf(cookie));
}

int CloseStandardCookie(void* cookie) {
  const int fd = DescriptorOf(cookie);
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

}  // namespace

FILE* OpenStreamOn(int fd, const char* mode) {
  return OpenCookie(fd, mode, CloseCookie);
}

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
