// Copies between two descriptors.

#include <errno.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include "simulator/devices/device_protocol.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

template <typename Offset>
using SendfileCall = ssize_t (*)(int, int, Offset*, size_t);
using CopyFileRangeCall = ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned);

NextCall<SendfileCall<off_t>> next_sendfile("sendfile");
NextCall<SendfileCall<off64_t>> next_sendfile64("sendfile64");
NextCall<CopyFileRangeCall> next_copy_file_range("copy_file_range");

// One attribute's text at most: a caller that wants more calls again.
template <typename Offset>
ssize_t CopyPiece(int target, int source, Offset* offset, size_t count) {
  char text[kAttributeSize];
  const size_t wanted = count < sizeof text ? count : sizeof text;
  const ssize_t length =
      offset == nullptr ? read(source, text, wanted) : pread64(source, text, wanted, *offset);
  if (length <= 0) return length;
  const ssize_t written = write(target, text, static_cast<size_t>(length));
  if (written > 0 && offset != nullptr) *offset += static_cast<Offset>(written);
  return written;
}

template <typename Offset>
ssize_t Sendfile(NextCall<SendfileCall<Offset>>& next, int target, int source, Offset* offset, size_t count) {
  if (DeviceOf(target) == 0 && DeviceOf(source) == 0) return next.get()(target, source, offset, count);
  return CopyPiece(target, source, offset, count);
}

}  // namespace
}  // namespace rolu_sim

extern "C" {

ROLU_SIM_EXPORTED ssize_t sendfile(int target, int source, off_t* offset, size_t count) noexcept {
  return rolu_sim::Sendfile(rolu_sim::next_sendfile, target, source, offset, count);
}

ROLU_SIM_EXPORTED ssize_t sendfile64(int target, int source, off64_t* offset, size_t count) noexcept {
  return rolu_sim::Sendfile(rolu_sim::next_sendfile64, target, source, offset, count);
}

// The board's kernel does not have this call; programs copy by other means then.
ROLU_SIM_EXPORTED ssize_t copy_file_range(int source, off64_t* source_offset, int target,
                                          off64_t* target_offset, size_t count, unsigned flags) {
  if (rolu_sim::DeviceOf(source) == 0 && rolu_sim::DeviceOf(target) == 0) {
    return rolu_sim::next_copy_file_range.get()(source, source_offset, target, target_offset, count, flags);
  }
  errno = ENOSYS;
  return -1;
}

}  // extern "C"
