#pragma once

#include <sys/types.h>

#include "tools/board_watcher.h"
#include "tools/common_options.h"
#include "tools/watch_events.h"

namespace rolu {

struct WatchTask {
  WatchSettings settings;
  CommonOptions common;
  BoardState told;            // what has been told before
  bool port_returns = false;  // the port hung up under the process before this one
};

// The exit status of a process whose port hung up, or has not come back yet. No command ends with it.
inline constexpr int kPortAway = 64;

// A process of its own that uses the library, and sees what happens on the board. A port that hung up is
// dead for the process that opened it, and stays so: the library opens it again only when all families
// are down, and the G-sensor goes down only with the MCU's answer. Another process can take over.
class WatchProcess {
 public:
  // Call it while no other thread runs. Throws std::system_error.
  explicit WatchProcess(const WatchTask& task);
  ~WatchProcess() { End(); }
  WatchProcess(const WatchProcess&) = delete;
  WatchProcess& operator=(const WatchProcess&) = delete;

  EventPipe& events() { return *events_; }

  // Lets it take down what it brought up, after the question in hand, and gives its exit status.
  int End();

 private:
  std::optional<EventPipe> events_;
  pid_t pid_ = -1;
  int status_ = 0;
};

}  // namespace rolu
