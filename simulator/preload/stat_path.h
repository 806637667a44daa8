#pragma once

#include <fcntl.h>

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
  Place place(path);
  if (place.target() == Target::kDevice) return StatNode(place.board_path(), record);
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr) return -1;
  return (place.target() == Target::kSerialPort ? following : next).get()(system_path, record);
}

// The flags for a call about the place itself.
inline int FlagsFor(const Place& place, int flags) {
  return place.target() == Target::kSerialPort ? flags & ~AT_SYMLINK_NOFOLLOW : flags;
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
  Place place(path, directory);
  if (place.target() == Target::kDevice) return StatNode(place.board_path(), record);
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr) return -1;
  return next.get()(directory, system_path, record, FlagsFor(place, flags));
}

}  // namespace rolu_sim
