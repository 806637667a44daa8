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
};

// -1 with the board's errno for a node that is not there.
inline int AskNodeAttributes(const char* path, NodeAttributes& attributes) {
  DeviceMessage answer{};
  if (AskBoard(DeviceRequest::kStat, path, answer, nullptr, 0) < 0) return -1;
  const bool is_device = answer.argument == static_cast<uint64_t>(NodeKind::kCharacterDevice);
  attributes.mode = (is_device ? S_IFCHR : S_IFREG) | answer.request;
  attributes.major = is_device ? kI2cMajor : 0;
  attributes.minor = is_device ? kI2cMinor : 0;
  attributes.size = is_device ? 0 : 4096;  // what sysfs shows for any attribute
  return 0;
}

// Fills any of the C library's stat records.
template <typename StatRecord>
int StatNode(const char* path, StatRecord* record) {
  NodeAttributes attributes{};
  if (AskNodeAttributes(path, attributes) < 0) return -1;
  memset(record, 0, sizeof *record);
  record->st_mode = attributes.mode;
  record->st_nlink = 1;
  record->st_rdev = makedev(attributes.major, attributes.minor);
  record->st_size = static_cast<decltype(record->st_size)>(attributes.size);
  record->st_blksize = 4096;
  return 0;
}

}  // namespace rolu_sim
