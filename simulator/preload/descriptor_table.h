#pragma once

#include <stdint.h>

namespace rolu_sim {

// Knows which descriptors of this process are device nodes of the board. The process may have opened,
// duplicated or inherited them over fork and exec. Async-signal-safe and without locks.
//
// A device descriptor is a socket, and the socket's inode is the device's id (never 0). A descriptor is
// checked at its first use; an ordinary one costs nothing after that. A device descriptor is checked at each
// use: close_range may have closed it unnoticed, and its number may stand for another file.

// The device of a descriptor; 0 when it is not a device. Keeps errno.
uint64_t DeviceOf(int fd);

// The device of a descriptor that is already known as one, else 0.
uint64_t KnownDeviceOf(int fd);

// From now on `device` is what `fd` stands for; 0 means unknown.
void NoteDevice(int fd, uint64_t device);

// The C library's streams do not use the wrapped calls, so a stream on a device must be a stream with
// functions of its own (wrap_stdio.cpp). A shell redirects its standard output to a file, then its echo
// writes there. So while descriptor 0, 1 or 2 is a device, stdin, stdout or stderr is such a stream.
void FollowStandardStream(int fd, bool is_device);

// The inode of the socket `fd`; 0 when `fd` is not a socket.
uint64_t SocketInode(int fd);

}  // namespace rolu_sim
