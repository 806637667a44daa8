#pragma once

#include <stdio.h>

namespace rolu_sim {

// The C library reads and writes its streams past the wrapped calls, so a stream on a device is one
// with functions of its own. Null when there is no memory.
FILE* OpenStreamOn(int fd, const char* mode);

// A shell's echo writes to standard output, which it has led to a file before: while descriptor 0, 1 or
// 2 is a device, stdin, stdout or stderr is a stream of the kind above.
void FollowStandardStream(int fd, bool is_device);

}  // namespace rolu_sim
