#pragma once

#include <errno.h>
#include <limits.h>
#include <sys/uio.h>

#include "simulator/preload/board_client.h"

namespace rolu_sim {

// Reads and writes of devices at an offset or in parts, as the board's kernel does them.

// False with EINVAL for an offset that no file has.
inline bool IsOffset(int64_t offset) {
  if (offset >= 0) return true;
  errno = EINVAL;
  return false;
}

inline ssize_t ReadDeviceAt(DeviceId device, void* buffer, size_t size, int64_t offset) {
  return IsOffset(offset) ? ReadDevice(device, buffer, size, static_cast<uint64_t>(offset)) : -1;
}

inline ssize_t WriteDeviceAt(DeviceId device, const void* bytes, size_t size, int64_t offset) {
  return IsOffset(offset) ? WriteDevice(device, bytes, size, static_cast<uint64_t>(offset)) : -1;
}

// Each part is a call of the driver's; a short one is the last.
template <typename Transfer>
ssize_t ForEachPart(const iovec* parts, int count, Transfer transfer) {
  if (count < 0 || count > IOV_MAX) {
    errno = EINVAL;
    return -1;
  }
  ssize_t total = 0;
  for (const iovec* part = parts; part != parts + count; ++part) {
    const ssize_t moved = transfer(*part, total);
    if (moved < 0) return total > 0 ? total : -1;
    total += moved;
    if (static_cast<size_t>(moved) < part->iov_len) break;
  }
  return total;
}

inline ssize_t ReadDeviceParts(DeviceId device, const iovec* parts, int count) {
  return ForEachPart(parts, count, [device](const iovec& part, ssize_t) {
    return ReadDevice(device, part.iov_base, part.iov_len);
  });
}

inline ssize_t WriteDeviceParts(DeviceId device, const iovec* parts, int count) {
  return ForEachPart(parts, count, [device](const iovec& part, ssize_t) {
    return WriteDevice(device, part.iov_base, part.iov_len);
  });
}

inline ssize_t ReadDevicePartsAt(DeviceId device, const iovec* parts, int count, int64_t offset) {
  return ForEachPart(parts, count, [device, offset](const iovec& part, ssize_t done) {
    return ReadDeviceAt(device, part.iov_base, part.iov_len, offset + done);
  });
}

inline ssize_t WriteDevicePartsAt(DeviceId device, const iovec* parts, int count, int64_t offset) {
  return ForEachPart(parts, count, [device, offset](const iovec& part, ssize_t done) {
    return WriteDeviceAt(device, part.iov_base, part.iov_len, offset + done);
  });
}

}  // namespace rolu_sim
