#pragma once

namespace rolu_sim {

// The C library reads and writes its streams past the wrapped calls, so a stream on a device is one with
// functions of its own. A shell's echo writes to standard output, which it has led to a file before: while
// descriptor 0, 1 or 2 is a device, stdin, stdout or stderr is such a stream.
void FollowStandardStream(int fd, bool is_device);

}  // namespace rolu_sim
