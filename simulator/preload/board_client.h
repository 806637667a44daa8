#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include "simulator/devices/device_protocol.h"

namespace rolu_sim {

// Calls to the board. Failures are -1 with an errno, as the kernel would give them: what the board
// answers, ENODEV when no board answers at a path, EIO when it went away under an open descriptor.
// Each call has a connection of its own, so that threads, signal handlers and processes which share a
// descriptor do not wait for each other here, and nothing is held over a fork. It takes a descriptor
// for that time: EMFILE when there is none.

// Opens a device node.
int OpenDeviceNode(const char* path, int flags);

// What is asked of a device goes by its id, which descriptor_table.h tells.
using DeviceId = uint64_t;

// From `offset`, or kAtPosition.
ssize_t ReadDevice(DeviceId device, void* buffer, size_t size, uint64_t offset);
ssize_t WriteDevice(DeviceId device, const void* bytes, size_t size, uint64_t offset);
int64_t SeekDevice(DeviceId device, int64_t offset, int whence);
int IoctlDevice(DeviceId device, unsigned long request, uintptr_t argument);

// These keep errno.

// Returns once the board knows of all closes so far.
void SettleDevices();

// What the MCU sent to the last program that had the serial port open is gone when this returns.
void AnnounceSerialOpen();

// Asks the board a question about a path or about itself. The answer's payload is cut to `size`.
int AskBoard(DeviceRequest question, const char* path, void* buffer, size_t size);

// What stat tells of a device, or of the node at `path` when `device` is 0.
int AskNode(DeviceId device, const char* path, DeviceMessage& answer);

}  // namespace rolu_sim
