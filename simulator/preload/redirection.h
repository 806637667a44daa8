#pragma once

#include <fcntl.h>
#include <limits.h>

namespace rolu_sim {

enum class Target {
  kUntouched,   // not a path of the board, or no board is attached
  kSerialPort,  // a file in the board root
  kDevice,      // a node that the board answers for
  kDirectory,   // inside a directory that belongs to the board as a whole, and not a node
};

// The board root that the environment names; null when it names none.
const char* BoardRootPath();

// The path of `name` and then `rest` below the board root. Empty when it is too long.
class PathInRoot {
 public:
  PathInRoot() { path_[0] = '\0'; }
  explicit PathInRoot(const char* name, const char* rest = "");
  const char* get() const { return path_; }

 private:
  char path_[PATH_MAX];
};

// What a path leads to. `path` and `directory` are those of openat: a path from a directory of the board is a
// path of the board. `path` may be null.
class Place {
 public:
  explicit Place(const char* path, int directory = AT_FDCWD);

  Target target() const { return target_; }
  // The path on the board, if the target belongs to the board.
  const char* board_path() const { return board_path_; }

  // The path for the system's own calls; for a node, a file that stands for it. Null with an errno when there
  // is no such path.
  const char* SystemPath();

 private:
  bool Append(const char* path);

  const char* path_;
  Target target_ = Target::kUntouched;
  char board_path_[PATH_MAX];
  PathInRoot in_root_;
};

}  // namespace rolu_sim
