#pragma once

#include <limits.h>

namespace rolu_sim {

enum class Target {
  kUntouched,   // not a path of the board, or no board is attached
  kSerialPort,  // a file in the board root
  kDevice,      // a node that the board answers for
};

// `path` may be null.
Target TargetOf(const char* path);

// The board root that the environment names; null when there is none.
const char* BoardRootPath();

// A path below the board root. Empty when it would be too long.
class PathInRoot {
 public:
  explicit PathInRoot(const char* name);
  const char* get() const { return path_; }

 private:
  char path_[PATH_MAX];
};

}  // namespace rolu_sim
