#include "tools/board_watcher.h"

#include <errno.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <condition_variable>
#include <exception>
#include <latch>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/messages.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/port_owner.h"
#include "tools/setting.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using std::chrono::milliseconds;

// The writing end of the event socket. Any thread may send.
class EventSink {
 public:
  explicit EventSink(int socket) : socket_(socket) {}

  void Put(EventKind kind, Document values = Document::object(), const std::string& detail = {}) const {
    const Document event = {{"kind", static_cast<int>(kind)},
                            {"values", std::move(values)},
                            {"detail", detail},
                            {"time", TimeStamp()}};
    const std::string message = event.dump();
    // If the reader is gone, the watching is about to end.
    while (send(socket_, message.data(), message.size(), MSG_NOSIGNAL) < 0 && errno == EINTR) continue;
  }

  int socket() const { return socket_; }

 private:
  const int socket_;
};

// Waits on a condition variable that the library signals. It waits from before the registration until Stop,
// because a signal is lost while nobody waits.
class WarningWaiter {
 public:
  WarningWaiter(const EventSink& events, EventKind kind) {
    thread_ = std::thread([this, &events, kind] {
      std::unique_lock<std::mutex> lock(mutex_);
      started_.count_down();
      // The wait has no time-out: a signal between two waits would be lost. In glibc only a signal ends this
      // wait.
      for (condition_.wait(lock); !stopping_; condition_.wait(lock)) events.Put(kind);
    });
    started_.wait();
    const std::lock_guard<std::mutex> waiting(mutex_);  // free only once the thread waits
  }
  ~WarningWaiter() { Stop(); }
  WarningWaiter(const WarningWaiter&) = delete;
  WarningWaiter& operator=(const WarningWaiter&) = delete;

  // The condition variable to register. It lives as long as this object.
  pthread_cond_t* condition() { return condition_.native_handle(); }

  void Stop() {
    if (!thread_.joinable()) return;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stopping_ = true;
      condition_.notify_one();
    }
    thread_.join();
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  std::latch started_{1};
  bool stopping_ = false;
  std::thread thread_;
};

// The threads that watch the board. VPM and GSENSOR must be up from Start to Stop. They must be down before
// this object is destroyed: until then the library signals its condition variables.
class Lookout {
 public:
  Lookout(const EventSink& events, const WatchTask& task)
      : events_(events),
        task_(task),
        told_(task.told),
        ignition_warning_(events, EventKind::kIgnitionWarning),
        battery_warning_(events, EventKind::kBatteryWarning) {}
  ~Lookout() { Stop(); }
  Lookout(const Lookout&) = delete;
  Lookout& operator=(const Lookout&) = delete;

  // Registers for the events and starts the threads. Returns the status of switching the G-sensor's alarm on:
  // without that alarm everything else is still watched. Throws CommandError when nothing can be watched.
  ROLU_STATUS Start() {
    ThrowUnlessDone(KAVO_ROLU_VPM_SetIgnPowerOffEvent(ignition_warning_.condition()), "watch the warnings");
    ThrowUnlessDone(KAVO_ROLU_VPM_SetLBPPowerOffEvent(battery_warning_.condition()), "watch the warnings");
    ThrowUnlessDone(KAVO_ROLU_GSENSOR_SetAlarmEvent(shock_.native_handle()), "watch the G-sensor");
    const ROLU_STATUS alarm = KAVO_ROLU_GSENSOR_AlarmEnabled(true);
    poller_ = std::thread([this] { Poll(); });
    shock_taker_ = std::thread([this] { TakeShocks(); });
    return alarm;
  }

  // Ends the threads. They first finish the present question, which takes at most 3 s.
  void Stop() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stopping_ = true;
    }
    stop_asked_.notify_all();
    {
      const std::lock_guard<std::mutex> waiting(shock_mutex_);  // free only while the thread waits
      shock_.notify_all();
    }
    if (poller_.joinable()) poller_.join();
    if (shock_taker_.joinable()) shock_taker_.join();
    ignition_warning_.Stop();
    battery_warning_.Stop();
  }

 private:
  bool WaitUnlessStopped(milliseconds time) {
    std::unique_lock<std::mutex> lock(mutex_);
    return !stop_asked_.wait_for(lock, time, [this] { return stopping_; });
  }

  void Poll() {
    do {
      const bool first = !told_.IsKnown();
      if (LookAtIgnition()) LookAtVoltage();
      if (first && told_.IsKnown()) TellState();
    } while (WaitUnlessStopped(task_.interval));
  }

  void TellState() const {
    Document values = Document::object();
    std::string detail;
    if (told_.ignition) {
      values["ignition"] = *told_.ignition;
      detail = *told_.ignition ? "ignition on" : "ignition off";
    }
    if (told_.volts) {
      values["volts"] = *told_.volts;
      detail += fmt::format("{}car battery {} V", detail.empty() ? "" : ", ", VoltsText(*told_.volts));
    }
    events_.Put(EventKind::kState, std::move(values), detail);
  }

  // False when the MCU did not answer.
  bool LookAtIgnition() {
    char on = 0;
    const ROLU_STATUS status = KAVO_ROLU_VPM_GetIgnitionStatus(&on);
    if (status == ROLU_STATUS_SUCCESS) {
      const bool is_on = on == 1;
      if (told_.ignition && *told_.ignition != is_on) {
        events_.Put(is_on ? EventKind::kIgnitionOn : EventKind::kIgnitionOff);
      }
      told_.ignition = is_on;
    }
    return NoteAnswer(status, "the ignition");
  }

  void LookAtVoltage() {
    float measured = 0;
    const ROLU_STATUS status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&measured);
    if (status == ROLU_STATUS_SUCCESS) {
      const double volts = Thousandths(measured);
      const bool is_first = !told_.volts;
      if (is_first || std::abs(volts - *told_.volts) >= task_.volts_step) {
        told_.volts = volts;
        if (!is_first) events_.Put(EventKind::kVoltage, {{"volts", volts}}, VoltsText(volts) + " V");
      }
    }
    NoteAnswer(status, "the car battery");
  }

  bool NoteAnswer(ROLU_STATUS status, const char* subject) {
    guard::NoteAnswer();
    const bool answered = status != ROLU_STATUS_VPM_NO_REPLY && status != ROLU_STATUS_VPM_SEND_FAILED;
    if (answered == silent_) {
      silent_ = !answered;
      events_.Put(silent_ ? EventKind::kMcuSilent : EventKind::kMcuBack);
    }
    if (answered && status != ROLU_STATUS_SUCCESS && complained_.insert(subject).second) {
      SayProblem(fmt::format("{} cannot be watched: {}", subject, Describe(status, Act::kRead)));
    }
    return answered;
  }

  // A signal is lost while this thread does not wait, so the thread also looks at the queue from time to
  // time.
  void TakeShocks() {
    std::unique_lock<std::mutex> lock(shock_mutex_);
    while (WaitUnlessStopped(milliseconds(0))) {
      ROLU_GSENSOR_DATA sample{};
      while (KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS) {
        events_.Put(EventKind::kShock, {{"x", sample.x}, {"y", sample.y}, {"z", sample.z}},
                    fmt::format("x {} y {} z {}", sample.x, sample.y, sample.z));
      }
      shock_.wait_for(lock, milliseconds(200));
    }
  }

  const EventSink& events_;
  const WatchTask& task_;
  std::mutex mutex_;
  std::condition_variable stop_asked_;
  bool stopping_ = false;

  // Only the polling thread uses these.
  bool silent_ = false;
  std::set<std::string> complained_;
  BoardState told_;

  WarningWaiter ignition_warning_;
  WarningWaiter battery_warning_;
  std::mutex shock_mutex_;
  std::condition_variable shock_;
  std::thread poller_;
  std::thread shock_taker_;
};

// Returns when the watching must end: after a signal, or when the reader of the events goes away.
void WaitUntilAsked(const EventSink& events) {
  pollfd ends[] = {{events.socket(), 0, 0}, {interrupt::Descriptor(), POLLIN, 0}, {DuplicateOwnPort(), 0, 0}};
  while (poll(ends, 3, -1) < 0 && errno == EINTR) continue;
  // The library's families are lost with the port, so there is nothing to take down.
  if (ends[2].revents != 0) _exit(BoardWatcher::kPortAway);
}

ExitStatus WatchBoard(const WatchTask& task, const EventSink& events) {
  Lookout lookout(events, task);
  Session session(task.common);
  session.Require(Family::kVpm);
  session.Require(Family::kGsensor);
  if (task.port_returns) events.Put(EventKind::kMcuBack);
  const ROLU_STATUS alarm = lookout.Start();
  if (alarm != ROLU_STATUS_SUCCESS) Say("G-sensor alarms are not watched: " + Describe(alarm));
  WaitUntilAsked(events);
  lookout.Stop();
  return session.Close();
}

int WatchAsProcess(const WatchTask& task, int socket) {
  try {
    return WatchBoard(task, EventSink(socket));
  } catch (const CommandError& error) {
    if (task.port_returns) return BoardWatcher::kPortAway;
    SayProblem(error.what());
    return error.status();
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}

[[noreturn]] void ThrowErrno(const char* call) {
  throw std::system_error(errno, std::generic_category(), call);
}

}  // namespace

const std::vector<EventName>& EventNames() {
  static const std::vector<EventName> names = {
      {EventKind::kIgnitionOn, "ignition-on", "ignition on"},
      {EventKind::kIgnitionOff, "ignition-off", "ignition off"},
      {EventKind::kVoltage, "voltage", "car battery"},
      {EventKind::kIgnitionWarning, "power-off-ignition", "power-off warning: the ignition is off"},
      {EventKind::kBatteryWarning, "power-off-battery", "power-off warning: the car battery is low"},
      {EventKind::kShock, "shock", "G-sensor alarm"},
      {EventKind::kMcuSilent, "mcu-silent", "the MCU does not answer"},
      {EventKind::kMcuBack, "mcu-back", "the MCU answers again"},
  };
  return names;
}

BoardWatcher::BoardWatcher(const WatchTask& task) {
  // A packet socket keeps the messages of several threads apart.
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) ThrowErrno("socketpair");
  pid_ = fork();
  if (pid_ == 0) {
    close(ends[0]);
    interrupt::Watch();
    _exit(WatchAsProcess(task, ends[1]));
  }
  guard::SetDependent(pid_);
  events_ = ends[0];
  close(ends[1]);
  if (pid_ < 0) ThrowErrno("fork");
}

std::optional<Event> BoardWatcher::Take() {
  char message[1024];
  const ssize_t length = recv(events_, message, sizeof message, MSG_DONTWAIT);
  if (length <= 0) {
    is_over_ = length == 0 || (errno != EAGAIN && errno != EINTR);
    return std::nullopt;
  }
  const Document event = Document::parse(message, message + length);
  return Event{static_cast<EventKind>(event["kind"].get<int>()), event["values"], event["detail"],
               event["time"]};
}

int BoardWatcher::End() {
  if (pid_ < 0) return status_;
  // The closed socket tells the process that its reader is gone.
  close(events_);
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) continue;
  guard::SetDependent(0);
  pid_ = -1;
  status_ = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) {
    SayProblem(fmt::format("the process that watches was ended by signal {}", WTERMSIG(status)));
    status_ = kSignalBase + WTERMSIG(status);
  }
  return status_;
}

}  // namespace rolu
