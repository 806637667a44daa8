#pragma once

#include <fcntl.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/node_stat.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {

template <typename Record>
using StatCall = int (*)(const char*, Record*);
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

template <typename Record>
int StatPathAt(NextCall<StatAtCall<Record>>& next, int directory, const char* path, Record* record,
               int flags) {
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
