// What programs do with an open descriptor.

#include <stdarg.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

using IoctlCall = int (*)(int, unsigned long, ...);

NextCall<ssize_t (*)(int, void*, size_t)> next_read("read");
NextCall<ssize_t (*)(int, void*, size_t, size_t)> next_read_chk("__read_chk");
NextCall<ssize_t (*)(int, const void*, size_t)> next_write("write");
NextCall<int (*)(int)> next_close("close");
NextCall<IoctlCall> next_ioctl("ioctl");
#if __TIMESIZE == 32
NextCall<IoctlCall> next_ioctl_time64("__ioctl_time64");
#endif

}  // namespace
}  // namespace rolu_sim

using rolu_sim::IsDevice;

extern "C" {

ROLU_SIM_EXPORTED ssize_t read(int fd, void* buffer, size_t size) {
  if (IsDevice(fd)) return rolu_sim::ReadDevice(fd, buffer, size);
  return rolu_sim::next_read.get()(fd, buffer, size);
}

// What `read` becomes in a fortified program; the next one ends the program on an overflow.
ROLU_SIM_EXPORTED ssize_t __read_chk(int fd, void* buffer, size_t size, size_t buffer_size) {
  if (IsDevice(fd) && size <= buffer_size) return rolu_sim::ReadDevice(fd, buffer, size);
  return rolu_sim::next_read_chk.get()(fd, buffer, size, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t write(int fd, const void* bytes, size_t size) {
  if (IsDevice(fd)) return rolu_sim::WriteDevice(fd, bytes, size);
  return rolu_sim::next_write.get()(fd, bytes, size);
}

ROLU_SIM_EXPORTED int close(int fd) {
  if (IsDevice(fd)) return rolu_sim::CloseDevice(fd);
  return rolu_sim::next_close.get()(fd);
}

ROLU_SIM_EXPORTED int ioctl(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (IsDevice(fd)) return rolu_sim::IoctlDevice(fd, request, reinterpret_cast<uintptr_t>(argument));
  return rolu_sim::next_ioctl.get()(fd, request, argument);
}

#if __TIMESIZE == 32
ROLU_SIM_EXPORTED int __ioctl_time64(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (IsDevice(fd)) return rolu_sim::IoctlDevice(fd, request, reinterpret_cast<uintptr_t>(argument));
  return rolu_sim::next_ioctl_time64.get()(fd, request, argument);
}
#endif

}  // extern "C"
