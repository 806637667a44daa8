#include "tools/watch_process.h"

#include <errno.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <system_error>

#include "cli/messages.h"
#include "tools/command_error.h"
#include "tools/interrupt.h"
#include "tools/port_owner.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

// Comes back when an end is asked for: by a signal, or by the reader of the events, who goes away.
void WatchUntilAsked(const EventPipe& events) {
  pollfd ends[] = {
      {events.Descriptor(), 0, 0}, {interrupt::Descriptor(), POLLIN, 0}, {DuplicateOwnPort(), 0, 0}};
  while (poll(ends, 3, -1) < 0 && errno == EINTR) continue;
  // What was up has gone with the port: nothing is left to be taken down.
  if (ends[2].revents != 0) _exit(kPortAway);
}

ExitStatus WatchBoard(const WatchTask& task, EventPipe& events) {
  BoardWatcher watcher(events, task.settings, task.told);
  Session session(task.common);
  session.Require(Family::kVpm);
  session.Require(Family::kGsensor);
  if (task.port_returns) events.Put(EventKind::kMcuBack);
  const ROLU_STATUS alarm = watcher.Start();
  if (alarm != ROLU_STATUS_SUCCESS) Say("G-sensor alarms are not watched: " + Describe(alarm));
  WatchUntilAsked(events);
  watcher.Stop();
  return session.Close();
}

int WatchAsProcess(const WatchTask& task, EventPipe& events) {
  try {
    return WatchBoard(task, events);
  } catch (const CommandError& error) {
    if (task.port_returns) return kPortAway;
    SayProblem(error.what());
    return error.status();
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}

}  // namespace

WatchProcess::WatchProcess(const WatchTask& task) {
  events_.emplace();
  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ > 0) {
    events_->BeReader();
    return;
  }
  events_->BeWriter();
  interrupt::Watch();
  _exit(WatchAsProcess(task, *events_));
}

int WatchProcess::End() {
  if (pid_ < 0) return status_;
  events_.reset();
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) continue;
  pid_ = -1;
  status_ = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) {
    SayProblem(fmt::format("the process that watches was ended by signal {}", WTERMSIG(status)));
    status_ = kSignalBase + WTERMSIG(status);
  }
  return status_;
}

}  // namespace rolu
