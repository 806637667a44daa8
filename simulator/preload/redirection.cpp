#include "simulator/preload/redirection.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/board_client.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

bool StartsWith(const char* path, const char* start) {
  return strncmp(path, start, strlen(start)) == 0;
}

// Whether `path` is `directory` or inside it.
bool IsWithin(const char* path, const char* directory) {
  const size_t length = strlen(directory);
  return StartsWith(path, directory) && (path[length] == '/' || path[length] == '\0');
}

// Every attribute path of a GPIO line counts as a node. If the line is not exported, the board answers that
// the node does not exist.
bool IsGpioAttribute(const char* path) {
  if (!IsWithin(path, kGpioDirectory)) return false;
  const char* const name = strrchr(path, '/') + 1;
  for (const char* const attribute : kGpioAttributes) {
    if (strcmp(name, attribute) == 0) return true;
  }
  return false;
}

Target TargetOf(const char* path) {
  if (strcmp(path, kSerialPath) == 0) return Target::kSerialPort;
  for (const char* const device : {kI2cBusPath, kGpioExportPath, kBacklightPath, kLuxPath}) {
    if (strcmp(path, device) == 0) return Target::kDevice;
  }
  if (IsGpioAttribute(path)) return Target::kDevice;
  for (const char* const directory : kBoardDirectories) {
    if (IsWithin(path, directory)) return Target::kDirectory;
  }
  return Target::kUntouched;
}

// The board's path of an open directory or the working directory. Null when it is not a directory of the
// board. Keeps errno.
const char* BoardDirectoryAt(int directory, char (&link)[PATH_MAX]) {
  char name[32] = "/proc/self/cwd";
  if (directory != AT_FDCWD) snprintf(name, sizeof name, "/proc/self/fd/%d", directory);
  const int error = errno;
  const ssize_t length = Next<readlink>("readlink")(name, link, sizeof link - 1);
  errno = error;
  if (length < 0) return nullptr;
  link[length] = '\0';
  const PathInRoot shown(kShownDirectory);
  return IsWithin(link, shown.get()) ? link + strlen(shown.get()) : nullptr;
}

}  // namespace

const char* BoardRootPath() {
  const char* const root = getenv(kRootVariable);
  return root == nullptr || *root == '\0' ? nullptr : root;
}

PathInRoot::PathInRoot(const char* name, const char* rest) {
  const char* const root = BoardRootPath();
  const int length = root == nullptr ? -1 : snprintf(path_, sizeof path_, "%s%s%s", root, name, rest);
  if (length < 0 || length >= static_cast<int>(sizeof path_)) path_[0] = '\0';
}

Place::Place(const char* path, int directory) : path_(path) {
  board_path_[0] = '\0';
  if (path == nullptr || *path == '\0' || BoardRootPath() == nullptr) return;
  if (*path == '/') {
    if (!StartsWith(path, "/sys/") && !StartsWith(path, "/dev/") && !StartsWith(path, "/proc/")) return;
  } else {
    char link[PATH_MAX];
    const char* const start = BoardDirectoryAt(directory, link);
    if (start == nullptr || !Append(start)) return;
    path_ = board_path_;  // even if the path leads out of the board's directories
  }
  if (Append(path)) target_ = TargetOf(board_path_);
}

// Appends a path and resolves its "." and ".." parts and its repeated slashes. False when there is no room.
bool Place::Append(const char* path) {
  size_t length = strlen(board_path_);
  for (const char* part = path + strspn(path, "/"); *part != '\0'; part += strspn(part, "/")) {
    const size_t size = strcspn(part, "/");
    if (size == 2 && strncmp(part, "..", size) == 0) {
      while (length > 0 && board_path_[--length] != '/') continue;
    } else if (size != 1 || *part != '.') {
      if (length + 1 + size >= sizeof board_path_) return false;
      board_path_[length] = '/';
      memcpy(board_path_ + length + 1, part, size);
      length += 1 + size;
    }
    board_path_[length] = '\0';
    part += size;
  }
  return true;
}

const char* Place::SystemPath() {
  switch (target_) {
    case Target::kUntouched:
      if (path_ == nullptr) errno = EFAULT;
      return path_;
    case Target::kSerialPort:
      in_root_ = PathInRoot(kSerialLinkName);
      break;
    default:
      if (AskBoard(DeviceRequest::kShow, board_path_, nullptr, 0) < 0) return nullptr;
      in_root_ = PathInRoot(kShownDirectory, board_path_);
  }
  return in_root_.get();
}

}  // namespace rolu_sim
