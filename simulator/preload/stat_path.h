#pragma once

#include <fcntl.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/node_stat.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {

template <typename Record>
using StatCall = int (*)(const char*, Record*);
template <typename Record>
using StatDescriptorCall = int (*)(int, Record*);
template <typename Record>
using StatAtCall = int (*)(int, const char*, Record*, int);

// The serial device answers as what its link in the board root leads to: `following` is the call
// that follows links.
template <typename Record>
int StatPath(NextCall<StatCall<Record>>& next, NextCall<StatCall<Record>>& following, const char* path,
             Record* record) {
  switch (TargetOf(path)) {
    case Target::kDevice:
      return StatNode(path, record);
    case Target::kSerialPort:
      return following.get()(PathInRoot(kSerialLinkName).get(), record);
    default:
      return next.get()(path, record);
  }
}

// fstatat and statx take a descriptor by itself as well.
inline DeviceId DeviceNamedBy(int fd, const char* path, int flags) {
  return (flags & AT_EMPTY_PATH) != 0 && path != nullptr && *path == '\0' ? DeviceOf(fd) : 0;
}

template <typename Record>
int StatDescriptor(NextCall<StatDescriptorCall<Record>>& next, int fd, Record* record) {
  if (const DeviceId device = DeviceOf(fd)) return StatNode(device, record);
  return next.get()(fd, record);
}

template <typename Record>
int StatPathAt(NextCall<StatAtCall<Record>>& next, int directory, const char* path, Record* record,
               int flags) {
  if (const DeviceId device = DeviceNamedBy(directory, path, flags)) return StatNode(device, record);
  switch (TargetOf(path)) {
    case Target::kDevice:
      return StatNode(path, record);
    case Target::kSerialPort:
      return next.get()(directory, PathInRoot(kSerialLinkName).get(), record, flags & ~AT_SYMLINK_NOFOLLOW);
    default:
      return next.get()(directory, path, record, flags);
  }
}

}  // namespace rolu_sim
