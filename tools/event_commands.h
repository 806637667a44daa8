#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

#include "tools/watch_events.h"

namespace rolu {

// Shell commands that run when an event is seen, beside the watching. What they print goes to
// standard error: standard output is the stream of events.
class EventCommands {
 public:
  // Throws CommandError(kWrongUse) when an event has another name than those of EventNames.
  explicit EventCommands(std::vector<std::pair<std::string, std::string>> commands);

  // Starts the commands for an event, with ROLU_EVENT and ROLU_TIME in their environment.
  void Start(const Event& event, std::string_view name);

  // Says which commands failed that have ended since.
  void Reap();

  // Waits for those that still run; when a signal asks for an end, ends them.
  void WaitForEnd();

 private:
  struct Running {
    pid_t pid;
    std::string command;
  };

  bool HasEnded(const Running& running, int flags);

  std::vector<std::pair<std::string, std::string>> commands_;
  std::vector<Running> running_;
};

}  // namespace rolu
