// Calls that read, write or control an open descriptor.

#include <errno.h>
#include <limits.h>
#include <stdarg.h>
#include <stdint.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/uio.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/i2c_requests.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

// Runs ReadDevice or WriteDevice for one part after another, and stops after a short one.
template <auto kTransfer>
ssize_t EachPart(DeviceId device, const iovec* parts, int count, uint64_t offset) {
  if (count < 0 || count > IOV_MAX) {
    errno = EINVAL;
    return -1;
  }
  ssize_t total = 0;
  for (const iovec* part = parts; part != parts + count; ++part) {
    const uint64_t start = offset == kAtPosition ? offset : offset + static_cast<uint64_t>(total);
    const ssize_t moved = kTransfer(device, part->iov_base, part->iov_len, start);
    if (moved < 0) return total > 0 ? total : -1;
    total += moved;
    if (static_cast<size_t>(moved) < part->iov_len) break;
  }
  return total;
}

// Runs one of these at an offset. Fails with EINVAL for a negative offset.
template <auto kTransfer, typename Bytes, typename Size>
ssize_t TransferAt(DeviceId device, Bytes* bytes, Size size, int64_t offset) {
  if (offset >= 0) return kTransfer(device, bytes, size, static_cast<uint64_t>(offset));
  errno = EINVAL;
  return -1;
}

// Copies the text of one attribute at most; a caller that wants more calls again.
template <typename Call, typename Offset>
ssize_t Copy(Call next, int target, int source, Offset* offset, size_t count) {
  if (DeviceOf(target) == 0 && DeviceOf(source) == 0) return next(target, source, offset, count);
  char text[kAttributeSize];
  const size_t wanted = count < sizeof text ? count : sizeof text;
  const ssize_t length =
      offset == nullptr ? read(source, text, wanted) : pread64(source, text, wanted, *offset);
  if (length <= 0) return length;
  const ssize_t written = write(target, text, static_cast<size_t>(length));
  if (written > 0 && offset != nullptr) *offset += static_cast<Offset>(written);
  return written;
}

template <typename Call>
int Ioctl(Call next, int fd, unsigned long request, void* argument) {
  const DeviceId device = DeviceOf(fd);
  if (device != 0) return ControlDevice(device, request, argument);
  return next(fd, request, argument);
}

}  // namespace
}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

ssize_t read(int fd, void* buffer, size_t size) {
  if (const DeviceId device = DeviceOf(fd)) return ReadDevice(device, buffer, size, kAtPosition);
  return Next<read>("read")(fd, buffer, size);
}

ssize_t pread64(int fd, void* buffer, size_t size, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return TransferAt<ReadDevice>(device, buffer, size, offset);
  return Next<pread64>("pread64")(fd, buffer, size, offset);
}

ssize_t pread(int fd, void* buffer, size_t size, off_t offset) {
  return pread64(fd, buffer, size, offset);
}

ssize_t readv(int fd, const iovec* parts, int count) {
  if (const DeviceId device = DeviceOf(fd)) return EachPart<ReadDevice>(device, parts, count, kAtPosition);
  return Next<readv>("readv")(fd, parts, count);
}

ssize_t preadv64(int fd, const iovec* parts, int count, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd))
    return TransferAt<EachPart<ReadDevice>>(device, parts, count, offset);
  return Next<preadv64>("preadv64")(fd, parts, count, offset);
}

ssize_t preadv(int fd, const iovec* parts, int count, off_t offset) {
  return preadv64(fd, parts, count, offset);
}

// The read calls of a fortified program.

ssize_t __read_chk(int fd, void* buffer, size_t size, size_t buffer_size) {
  return read(fd, buffer, Checked(size, buffer_size));
}

ssize_t __pread_chk(int fd, void* buffer, size_t size, off_t offset, size_t buffer_size) {
  return pread64(fd, buffer, Checked(size, buffer_size), offset);
}

ssize_t __pread64_chk(int fd, void* buffer, size_t size, off64_t offset, size_t buffer_size) {
  return pread64(fd, buffer, Checked(size, buffer_size), offset);
}

ssize_t write(int fd, const void* bytes, size_t size) {
  if (const DeviceId device = DeviceOf(fd)) return WriteDevice(device, bytes, size, kAtPosition);
  return Next<write>("write")(fd, bytes, size);
}

ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd)) return TransferAt<WriteDevice>(device, bytes, size, offset);
  return Next<pwrite64>("pwrite64")(fd, bytes, size, offset);
}

ssize_t pwrite(int fd, const void* bytes, size_t size, off_t offset) {
  return pwrite64(fd, bytes, size, offset);
}

ssize_t writev(int fd, const iovec* parts, int count) {
  if (const DeviceId device = DeviceOf(fd)) return EachPart<WriteDevice>(device, parts, count, kAtPosition);
  return Next<writev>("writev")(fd, parts, count);
}

ssize_t pwritev64(int fd, const iovec* parts, int count, off64_t offset) {
  if (const DeviceId device = DeviceOf(fd))
    return TransferAt<EachPart<WriteDevice>>(device, parts, count, offset);
  return Next<pwritev64>("pwritev64")(fd, parts, count, offset);
}

ssize_t pwritev(int fd, const iovec* parts, int count, off_t offset) {
  return pwritev64(fd, parts, count, offset);
}

off_t lseek(int fd, off_t offset, int whence) noexcept {
  if (const DeviceId device = DeviceOf(fd)) return static_cast<off_t>(SeekDevice(device, offset, whence));
  return Next<lseek>("lseek")(fd, offset, whence);
}

off64_t lseek64(int fd, off64_t offset, int whence) noexcept {
  if (const DeviceId device = DeviceOf(fd)) return SeekDevice(device, offset, whence);
  return Next<lseek64>("lseek64")(fd, offset, whence);
}

ssize_t sendfile(int target, int source, off_t* offset, size_t count) noexcept {
  return Copy(Next<sendfile>("sendfile"), target, source, offset, count);
}

ssize_t sendfile64(int target, int source, off64_t* offset, size_t count) noexcept {
  return Copy(Next<sendfile64>("sendfile64"), target, source, offset, count);
}

// The board's kernel does not have this call, so programs copy by other means.
ssize_t copy_file_range(int source, off64_t* source_offset, int target, off64_t* target_offset, size_t count,
                        unsigned flags) {
  if (DeviceOf(source) == 0 && DeviceOf(target) == 0) {
    return Next<copy_file_range>("copy_file_range")(source, source_offset, target, target_offset, count,
                                                    flags);
  }
  errno = ENOSYS;
  return -1;
}

int ioctl(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return Ioctl(Next<ioctl>("ioctl"), fd, request, argument);
}

#if __TIMESIZE == 32
int __ioctl_time64(int fd, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return Ioctl(Next<__ioctl_time64>("__ioctl_time64"), fd, request, argument);
}
#endif

}  // extern "C"
#pragma GCC visibility pop
