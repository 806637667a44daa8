#pragma once

#include <cstddef>
#include <cstdint>

namespace rolu_sim {

// What the preloaded object and the board say to each other over SOCK_SEQPACKET sockets, one message
// per datagram: a DeviceMessage, then its payload. Each request has a connection of its own and gets
// one answer.
//
// The connection of an open that went well stays: its program's end is the descriptor that the program
// gets. Whatever dup, fork and exec make of it is the same device, and where a read goes on is kept by
// the board; the descriptor is closed when its last copy is. Nothing is ever sent to the program on it:
// a read past the preloaded object is at its end at once, and bytes written past it are a write.
//
// All widths are fixed: a 32-bit program talks to a 64-bit board.
enum class DeviceRequest : std::uint32_t {
  kOpen,    // payload: path; descriptor: the new one; request: O_RDONLY, O_WRONLY or O_RDWR
  kRead,    // descriptor; length: bytes wanted; argument: offset. Answer: result and payload
  kWrite,   // descriptor; payload: bytes; argument: offset
  kSeek,    // descriptor; request: SEEK_SET or another; argument: offset. Answer: argument is the position
  kIoctl,   // descriptor; request and argument
  kSettle,  // the answer comes when the board knows of all closes so far
  kStat,    // payload: path. Answer: request is the mode, descriptor the inode
  kStatDescriptor,  // descriptor. Answer as that of kStat
  kShow,            // payload: path of a directory or node. It is there below the board root when answered
  kSerialOpens,     // a program is about to open the serial port
  kUname,           // answer: payload is a utsname, which is the same to every program
};

// The offset of reads and writes that go on where the last one ended.
inline constexpr std::uint64_t kAtPosition = UINT64_MAX;

struct DeviceMessage {
  DeviceRequest operation{};  // an answer repeats it
  std::int32_t result = 0;    // answers: 0 or a count, or a negative errno
  std::uint32_t length = 0;
  std::uint32_t request = 0;
  std::uint64_t descriptor = 0;  // the inode of the program's socket
  std::uint64_t argument = 0;
};
static_assert(sizeof(DeviceMessage) == 32 && alignof(DeviceMessage) <= 8);

// What sysfs shows as the size of any attribute.
inline constexpr std::int64_t kAttributeSize = 4096;

// Longer reads and writes are cut to this, as the kernel's own device files do.
inline constexpr std::size_t kMaxPayload = 8192;

}  // namespace rolu_sim
