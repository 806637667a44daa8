#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include "simulator/devices/device_protocol.h"

namespace rolu_sim {

// Calls to the board. Failures are -1 with an errno, as the kernel would give them: what the board
// answers, ENODEV when no board answers at a path, EIO when it went away under an open descriptor.

// Opens a device node. The descriptor is the connection to the board and is known as a device.
int OpenDeviceNode(const char* path, int flags);

// A descriptor that OpenDeviceNode gave and that was not closed since, by whatever means.
bool IsDevice(int fd);

ssize_t ReadDevice(int fd, void* buffer, size_t size);
ssize_t WriteDevice(int fd, const void* bytes, size_t size);
int IoctlDevice(int fd, unsigned long request, uintptr_t argument);
// Also closes the descriptor.
int CloseDevice(int fd);

// Asks the board a question about a path or about itself. The answer's payload is cut to `size`.
int AskBoard(DeviceRequest question, const char* path, DeviceMessage& answer, void* buffer, size_t size);

}  // namespace rolu_sim
