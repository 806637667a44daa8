#pragma once

#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "simulator/devices/device.h"
#include "simulator/preload/board_client.h"

namespace rolu_sim {

// The major number of the kernel's i2c-dev, and the bus.
inline constexpr unsigned kI2cMajor = 89;
inline constexpr unsigned kI2cMinor = 3;

struct NodeAttributes {
  mode_t mode;
  unsigned major;
  unsigned minor;
  int64_t size;
  uint64_t inode;
};

inline NodeAttributes AttributesIn(const DeviceMessage& answer) {
  const bool is_device = answer.argument == static_cast<uint64_t>(NodeKind::kCharacterDevice);
  return {(is_device ? S_IFCHR : S_IFREG) | answer.request, is_device ? kI2cMajor : 0,
          is_device ? kI2cMinor : 0, is_device ? 0 : kAttributeSize, answer.descriptor};
}

// -1 with the board's errno for a node that is not there.
inline int AskAttributes(const char* path, NodeAttributes& attributes) {
  DeviceMessage answer{};
  if (AskBoard(DeviceRequest::kStat, path, answer, nullptr, 0) < 0) return -1;
  attributes = AttributesIn(answer);
  return 0;
}

inline int AskAttributes(DeviceId device, NodeAttributes& attributes) {
  DeviceMessage answer{};
  if (AskAbout(device, DeviceRequest::kStatDescriptor, answer) < 0) return -1;
  attributes = AttributesIn(answer);
  return 0;
}

// Fills any of the C library's stat records. `node` is a path or the id of a device.
template <typename Node, typename StatRecord>
int StatNode(Node node, StatRecord* record) {
  NodeAttributes attributes{};
  if (AskAttributes(node, attributes) < 0) return -1;
  memset(record, 0, sizeof *record);
  record->st_mode = attributes.mode;
  record->st_ino = static_cast<decltype(record->st_ino)>(attributes.inode);
  record->st_nlink = 1;
  record->st_rdev = makedev(attributes.major, attributes.minor);
  record->st_size = static_cast<decltype(record->st_size)>(attributes.size);
  record->st_blksize = 4096;
  return 0;
}

}  // namespace rolu_sim
