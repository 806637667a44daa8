#pragma once

#include <stdint.h>

namespace rolu_sim {

// Which descriptors of this process are device nodes of the board, whether it opened them itself,
// inherited them over fork and exec, or had them duplicated. Async-signal-safe and without locks.
//
// A device is told by its socket, whose inode is its id (never 0). A descriptor is looked at when it is
// first used; an ordinary one costs nothing after that. One that is known as a device is looked at
// each time: it may have been closed behind our back (close_range) and given out again.

// The device behind a descriptor, 0 when it is none. Keeps errno.
uint64_t DeviceOf(int fd);

// The device behind a descriptor if it is known already, else 0.
uint64_t KnownDeviceOf(int fd);

// `device` is what is behind `fd` from now on; 0: not known.
void NoteDevice(int fd, uint64_t device);

// The C library reads and writes its streams past the wrapped calls, so a stream on a device is one with
// functions of its own (wrap_stdio.cpp). A shell's echo writes to standard output, which it has led to a file
// before: while descriptor 0, 1 or 2 is a device, stdin, stdout or stderr is such a stream.
void FollowStandardStream(int fd, bool is_device);

// The inode of the socket behind `fd`, 0 when there is none.
uint64_t SocketInode(int fd);

}  // namespace rolu_sim
