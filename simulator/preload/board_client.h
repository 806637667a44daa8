#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/uio.h>

#include "simulator/devices/device_protocol.h"

namespace rolu_sim {

// The program's buffers for the payload of a message.
struct Payload {
  Payload() = default;
  Payload(void* bytes, size_t count) { Add(bytes, count); }
  void Add(void* bytes, size_t count);
  // The datagram of a message with this payload.
  msghdr Behind(DeviceMessage& message) const;

  mutable iovec parts[1 + 2 * kMaxI2cMessages];  // the first one is for the message itself
  size_t part_count = 1;
  size_t size = 0;
};

// Calls to the board. A failure is -1 with an errno, as from the kernel: the errno that the board answers,
// ENODEV when no board answers at a path, EIO when the board went away under an open descriptor. Each call
// has its own connection, so that threads, signal handlers and processes that share a descriptor do not wait
// for each other, and nothing is held over a fork. The connection takes a descriptor for that time: the call
// fails with EMFILE when none is free.

// Opens a device node.
int OpenDeviceNode(const char* path, int flags);

// The id that names an open device to the board. descriptor_table.h finds it.
using DeviceId = uint64_t;

// Reads from `offset`, or from the position if `offset` is kAtPosition.
ssize_t ReadDevice(DeviceId device, void* buffer, size_t size, uint64_t offset);
ssize_t WriteDevice(DeviceId device, const void* bytes, size_t size, uint64_t offset);
int64_t SeekDevice(DeviceId device, int64_t offset, int whence);
int IoctlDevice(DeviceId device, unsigned long request, uintptr_t argument);

// An ioctl with a pointer: `sent` says what the program has there, `received` takes the answer.
int ExchangeWithDevice(DeviceId device, unsigned long request, const Payload& sent, const Payload& received);

// Returns once the board has handled all closes so far. Keeps errno.
void SettleDevices();

// When this returns, the MCU's bytes for the last program that had the serial port open are dropped. Returns
// false, with errno, if the board refuses the open; keeps errno otherwise.
bool AnnounceSerialOpen();

// Asks the board about a path or about the board itself. The answer's payload is cut to `size`.
int AskBoard(DeviceRequest question, const char* path, void* buffer, size_t size);

// What stat reports for a device, or for the node at `path` when `device` is 0.
int AskNode(DeviceId device, const char* path, DeviceMessage& answer);

}  // namespace rolu_sim
