#pragma once

#include <cstddef>
#include <cstdint>

namespace rolu_sim {

// What the preloaded object and the board say to each other, one message per datagram of a
// SOCK_SEQPACKET socket: a DeviceMessage, then its payload. Each request gets one answer. A
// descriptor that a program opened on a device node is one connection, from kOpen on; questions
// about paths use a connection of their own. All widths are fixed: a 32-bit program talks to a
// 64-bit board.
enum class DeviceRequest : std::uint32_t {
  kOpen,   // payload: path; argument: OpenBits
  kRead,   // length: bytes wanted. Answer: result and payload
  kWrite,  // payload: bytes
  kIoctl,  // request and argument
  kClose,  // the descriptor is closed; the connection ends after the answer
  kStat,   // payload: path. Answer: argument is a NodeKind, request the permission bits
  kUname,  // answer: payload is machine, release and version, each ended by a NUL
};

// Open flags by our own numbers: those of O_NOFOLLOW and others differ between processors.
enum OpenBits : std::uint64_t { kOpenRead = 1, kOpenWrite = 2, kOpenTruncate = 4, kOpenAppend = 8 };

struct DeviceMessage {
  std::uint32_t operation;  // DeviceRequest; an answer repeats it
  std::int32_t result;      // answers: 0 or a count, or a negative errno
  std::uint32_t length;
  std::uint32_t request;
  std::uint64_t argument;
};
static_assert(sizeof(DeviceMessage) == 24 && alignof(DeviceMessage) <= 8);

// Longer reads and writes are cut to this, as the kernel's own device files do.
inline constexpr std::size_t kMaxPayload = 8192;

}  // namespace rolu_sim
