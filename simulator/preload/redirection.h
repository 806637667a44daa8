#pragma once

#include <fcntl.h>
#include <limits.h>

namespace rolu_sim {

enum class Target {
  kUntouched,   // not a path of the board, or no board is attached
  kSerialPort,  // a file in the board root
  kDevice,      // a node that the board answers for
  kDirectory,   // inside a directory that is the board's as a whole, and no node
};

// The board root that the environment names; null when there is none.
const char* BoardRootPath();

// A path below the board root, `name` and then `rest`. Empty when it would be too long.
class PathInRoot {
 public:
  PathInRoot() { path_[0] = '\0'; }
  explicit PathInRoot(const char* name, const char* rest = "");
  const char* get() const { return path_; }

 private:
  char path_[PATH_MAX];
};

// What a path leads to. Both may be as in openat: a path from a directory that is the board's is one of
// the board's. `path` may be null.
class Place {
 public:
  explicit Place(const char* path, int directory = AT_FDCWD);

  Target target() const { return target_; }
  // The path as the board knows it, for a target that is the board's.
  const char* board_path() const { return board_path_; }

  // The path at which the system's own calls find it; of a node, a file that stands for it. Null with
  // an errno when there is none.
  const char* SystemPath();

 private:
  bool Append(const char* path);

  const char* path_;
  Target target_ = Target::kUntouched;
  char board_path_[PATH_MAX];
  PathInRoot in_root_;
};

}  // namespace rolu_sim
