// What programs read from, write to and ask of an open descriptor.

#include <stdarg.h>
#include <stdint.h>
#include <sys/ioctl.h>
#include <sys/uio.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/device_io.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

template <typename Offset>
using PreadCall = ssize_t (*)(int, void*, size_t, Offset);
template <typename Offset>
using CheckedPreadCall = ssize_t (*)(int, void*, size_t, Offset, size_t);
template <typename Offset>
using PwriteCall = ssize_t (*)(int, const void*, size_t, Offset);
using VectorCall = ssize_t (*)(int, const iovec*, int);
template <typename Offset>
using VectorAtCall = ssize_t (*)(int, const iovec*, int, Offset);
template <typename Offset>
using SeekCall = Offset (*)(int, Offset, int);
using IoctlCall = int (*)(int, unsigned long, ...);

NextCall<ssize_t (*)(int, void*, size_t)> next_read("read");
NextCall<ssize_t (*)(int, void*, size_t, size_t)> next_read_chk("__read_chk");
NextCall<PreadCall<off_t>> next_pread("pread");
NextCall<PreadCall<off64_t>> next_pread64("pread64");
NextCall<CheckedPreadCall<off_t>> next_pread_chk("__pread_chk");
NextCall<CheckedPreadCall<off64_t>> next_pread64_chk("__pread64_chk");
NextCall<VectorCall> next_readv("readv");
NextCall<VectorAtCall<off_t>> next_preadv("preadv");
NextCall<VectorAtCall<off64_t>> next_preadv64("preadv64");
NextCall<ssize_t (*)(int, const void*, size_t)> next_write("write");
NextCall<PwriteCall<off_t>> next_pwrite("pwrite");
NextCall<PwriteCall<off64_t>> next_pwrite64("pwrite64");
NextCall<VectorCall> next_writev("writev");
NextCall<VectorAtCall<off_t>> next_pwritev("pwritev");
NextCall<VectorAtCall<off64_t>> next_pwritev64("pwritev64");
NextCall<SeekCall<off_t>> next_lseek("lseek");
NextCall<SeekCall<off64_t>> next_lseek64("lseek64");
NextCall<IoctlCall> next_ioctl("ioctl");
#if __TIMESIZE == 32
NextCall<IoctlCall> next_ioctl_time64("__ioctl_time64");
#endif

}  // namespace
}  // namespace rolu_sim

using rolu_sim::DeviceId;
using rolu_sim::DeviceOf;

extern "C" {

ROLU_SIM_EXPORTED ssize_t read(int fd, void* buffer, size_t size) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDevice(device, buffer, size);
  return rolu_sim::next_read.get()(fd, buffer, size);
}

ROLU_SIM_EXPORTED ssize_t pread(int fd, void* buffer, size_t size, off_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDeviceAt(device, buffer, size, offset);
  return rolu_sim::next_pread.get()(fd, buffer, size, offset);
}

ROLU_SIM_EXPORTED ssize_t pread64(int fd, void* buffer, size_t size, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDeviceAt(device, buffer, size, offset);
  return rolu_sim::next_pread64.get()(fd, buffer, size, offset);
}

// What the reads become in a fortified program; the next ones end the program on an overflow.

ROLU_SIM_EXPORTED ssize_t __read_chk(int fd, void* buffer, size_t size, size_t buffer_size) {
  const DeviceId device = size <= buffer_size ? DeviceOf(fd) : 0;
  if (device != 0) return rolu_sim::ReadDevice(device, buffer, size);
  return rolu_sim::next_read_chk.get()(fd, buffer, size, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t __pread_chk(int fd, void* buffer, size_t size, off_t offset, size_t buffer_size) {
  const DeviceId device = size <= buffer_size ? DeviceOf(fd) : 0;
  if (device != 0) return rolu_sim::ReadDeviceAt(device, buffer, size, offset);
  return rolu_sim::next_pread_chk.get()(fd, buffer, size, offset, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t __pread64_chk(int fd, void* buffer, size_t size, off64_t offset,
                                        size_t buffer_size) {
  const DeviceId device = size <= buffer_size ? DeviceOf(fd) : 0;
  if (device != 0) return rolu_sim::ReadDeviceAt(device, buffer, size, offset);
  return rolu_sim::next_pread64_chk.get()(fd, buffer, size, offset, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t readv(int fd, const iovec* parts, int count) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDeviceParts(device, parts, count);
  return rolu_sim::next_readv.get()(fd, parts, count);
}

ROLU_SIM_EXPORTED ssize_t preadv(int fd, const iovec* parts, int count, off_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDevicePartsAt(device, parts, count, offset);
  return rolu_sim::next_preadv.get()(fd, parts, count, offset);
}

ROLU_SIM_EXPORTED ssize_t preadv64(int fd, const iovec* parts, int count, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::ReadDevicePartsAt(device, parts, count, offset);
  return rolu_sim::next_preadv64.get()(fd, parts, count, offset);
}

ROLU_SIM_EXPORTED ssize_t write(int fd, const void* bytes, size_t size) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDevice(device, bytes, size);
  return rolu_sim::next_write.get()(fd, bytes, size);
}

ROLU_SIM_EXPORTED ssize_t pwrite(int fd, const void* bytes, size_t size, off_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDeviceAt(device, bytes, size, offset);
  return rolu_sim::next_pwrite.get()(fd, bytes, size, offset);
}

ROLU_SIM_EXPORTED ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDeviceAt(device, bytes, size, offset);
  return rolu_sim::next_pwrite64.get()(fd, bytes, size, offset);
}

ROLU_SIM_EXPORTED ssize_t writev(int fd, const iovec* parts, int count) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDeviceParts(device, parts, count);
  return rolu_sim::next_writev.get()(fd, parts, count);
}

ROLU_SIM_EXPORTED ssize_t pwritev(int fd, const iovec* parts, int count, off_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDevicePartsAt(device, parts, count, offset);
  return rolu_sim::next_pwritev.get()(fd, parts, count, offset);
}

ROLU_SIM_EXPORTED ssize_t pwritev64(int fd, const iovec* parts, int count, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::WriteDevicePartsAt(device, parts, count, offset);
  return rolu_sim::next_pwritev64.get()(fd, parts, count, offset);
}

ROLU_SIM_EXPORTED off_t lseek(int fd, off_t offset, int whence) noexcept {
  const DeviceId device = DeviceOf(fd);
  if (device != 0) return static_cast<off_t>(rolu_sim::SeekDevice(device, offset, whence));
  return rolu_sim::next_lseek.get()(fd, offset, whence);
}

ROLU_SIM_EXPORTED off64_t lseek64(int fd, off64_t offset, int whence) noexcept {
  if (const DeviceId device = DeviceOf(fd)) return rolu_sim::SeekDevice(device, offset, whence);
  return rolu_sim::next_lseek64.get()(fd, offset, whence);
}

ROLU_SIM_EXPORTED int ioctl(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const DeviceId device = DeviceOf(fd);
  if (device != 0) return rolu_sim::IoctlDevice(device, request, reinterpret_cast<uintptr_t>(argument));
  return rolu_sim::next_ioctl.get()(fd, request, argument);
}

#if __TIMESIZE == 32
ROLU_SIM_EXPORTED int __ioctl_time64(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const DeviceId device = DeviceOf(fd);
  if (device != 0) return rolu_sim::IoctlDevice(device, request, reinterpret_cast<uintptr_t>(argument));
  return rolu_sim::next_ioctl_time64.get()(fd, request, argument);
}
#endif

}  // extern "C"
