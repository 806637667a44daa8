#pragma once

#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {

// The major number of the kernel's i2c-dev, and the minor number: the bus.
inline constexpr unsigned kI2cMajor = 89;
inline constexpr unsigned kI2cMinor = 3;

struct NodeStat {
  explicit NodeStat(const DeviceMessage& answer)
      : mode(answer.request), inode(answer.descriptor), is_device(S_ISCHR(mode)) {}

  mode_t mode;
  uint64_t inode;
  bool is_device;  // otherwise an attribute
  unsigned major = is_device ? kI2cMajor : 0;
  unsigned minor = is_device ? kI2cMinor : 0;
  int64_t size = is_device ? 0 : kAttributeSize;
};

// Answers a question about a path, or about a descriptor if `flags` say so. For a node of the board `of_node`
// answers; for anything else `of_system` answers, with the system's path. For the serial device the answer is
// about the target of its link in the board root.
template <typename OfNode, typename OfSystem>
int AskAt(int directory, const char* path, int flags, OfNode of_node, OfSystem of_system) {
  const bool is_descriptor = (flags & AT_EMPTY_PATH) != 0 && path != nullptr && *path == '\0';
  const DeviceId device = is_descriptor ? DeviceOf(directory) : 0;
  Place place(path, directory);
  if (device != 0 || place.target() == Target::kDevice) {
    DeviceMessage answer{};
    return AskNode(device, place.board_path(), answer) < 0 ? -1 : of_node(NodeStat(answer));
  }
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr) return -1;
  return of_system(system_path, place.target() == Target::kSerialPort ? flags & ~AT_SYMLINK_NOFOLLOW : flags);
}

// Works for each of the C library's stat records.
template <typename Record>
int FillRecord(const NodeStat& node, Record* record) {
  memset(record, 0, sizeof *record);
  record->st_mode = node.mode;
  record->st_ino = static_cast<decltype(record->st_ino)>(node.inode);
  record->st_nlink = 1;
  record->st_rdev = makedev(node.major, node.minor);
  record->st_size = static_cast<decltype(record->st_size)>(node.size);
  record->st_blksize = 4096;
  return 0;
}

template <typename Call, typename Record>
int StatAt(Call next, int directory, const char* path, Record* record, int flags) {
  return AskAt(
      directory, path, flags, [=](const NodeStat& node) { return FillRecord(node, record); },
      [=](const char* at, int with) { return next(directory, at, record, with); });
}

template <typename Call, typename Record>
int StatDescriptor(Call next, int fd, Record* record) {
  const DeviceId device = DeviceOf(fd);
  if (device == 0) return next(fd, record);
  DeviceMessage answer{};
  return AskNode(device, "", answer) < 0 ? -1 : FillRecord(NodeStat(answer), record);
}

}  // namespace rolu_sim
