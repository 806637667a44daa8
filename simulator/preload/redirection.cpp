#include "simulator/preload/redirection.h"

#include <stdlib.h>
#include <string.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preloaded.h"

namespace rolu_sim {

const char* BoardRootPath() {
  const char* const root = getenv(kRootVariable);
  return root == nullptr || *root == '\0' ? nullptr : root;
}

Target TargetOf(const char* path) {
  if (path == nullptr || path[0] != '/' || BoardRootPath() == nullptr) return Target::kUntouched;
  if (strcmp(path, kSerialPath) == 0) return Target::kSerialPort;
  for (const char* const device : kDevicePaths) {
    if (strcmp(path, device) == 0) return Target::kDevice;
  }
  return Target::kUntouched;
}

PathInRoot::PathInRoot(const char* name) : path_{} {
  const char* const root = BoardRootPath();
  const size_t root_length = root == nullptr ? 0 : strlen(root);
  if (root_length == 0 || root_length + strlen(name) >= sizeof path_) return;
  memcpy(path_, root, root_length);
  memcpy(path_ + root_length, name, strlen(name));
}

}  // namespace rolu_sim
