#pragma once

#include <cstddef>
#include <cstdint>

namespace rolu_sim {

// The messages between the preloaded object and the board. They go over SOCK_SEQPACKET sockets, one message
// per datagram: a DeviceMessage, then its payload. Each request has its own connection and gets one answer.
//
// After a successful open the connection stays: the program's end of it is the program's descriptor. All
// copies that dup, fork and exec make of it are the same device, and the board keeps the read position. The
// descriptor is closed when its last copy is closed. The board never sends anything to the program on this
// connection. So a read that bypasses the preloaded object finds the end of the file at once, and bytes that
// are written that way count as a write.
//
// All widths are fixed: a 32-bit program talks to a 64-bit board.
enum class DeviceRequest : std::uint32_t {
  kOpen,      // payload: path; descriptor: the new one; request: O_RDONLY, O_WRONLY or O_RDWR
  kRead,      // descriptor; length: bytes wanted; argument: offset. Answer: result and payload
  kWrite,     // descriptor; payload: bytes; argument: offset
  kSeek,      // descriptor; request: SEEK_SET or another; argument: offset. Answer: argument is the position
  kIoctl,     // descriptor; request and argument
  kExchange,  // an ioctl with a pointer. descriptor; request; payload: what is there. Answer: payload
  kSettle,    // answered once the board has handled all closes so far
  kStat,      // payload: path. Answer: request is the mode, descriptor the inode
  kStatDescriptor,  // descriptor. Answer as for kStat
  kShow,            // payload: path of a directory or node. When answered, it exists in the shown directories
  kSerialOpens,     // a program is about to open the serial port
  kUname,           // answer: payload is a utsname, the same for every program
};

// The offset of a read or write that continues at the position.
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

// A message of an I2C transfer. kExchange carries one after another, a write's bytes behind its header. The
// answer has the bytes of the reads.
struct I2cMessageHeader {
  std::uint16_t address = 0;
  std::uint16_t flags = 0;  // I2C_M_RD for a read
  std::uint32_t length = 0;
};
static_assert(sizeof(I2cMessageHeader) == 8);

// As in the kernel.
inline constexpr std::size_t kMaxI2cMessages = 42;

// The size that sysfs shows for every attribute.
inline constexpr std::int64_t kAttributeSize = 4096;

// Longer reads and writes are cut to this length, as the kernel's device files do.
inline constexpr std::size_t kMaxPayload = 8192;
inline constexpr std::size_t kMaxExchange = kMaxPayload + kMaxI2cMessages * sizeof(I2cMessageHeader);

}  // namespace rolu_sim
