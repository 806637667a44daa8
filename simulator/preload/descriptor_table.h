#pragma once

namespace rolu_sim {

// Which descriptors of this process are device nodes of the board. Async-signal-safe and without
// locks. A descriptor that was closed behind our back (close_range, dup2 over it) and given out
// again is recognised by its socket's inode and is no device any more.

// False with EMFILE for a descriptor beyond the table.
bool MarkAsDevice(int fd);
void UnmarkDevice(int fd);
bool IsMarkedAsDevice(int fd);

// A forked child inherits descriptors that another process opened.
bool IsOwnedByThisProcess(int fd);

}  // namespace rolu_sim
