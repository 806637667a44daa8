#include "tools/board_watcher.h"

#include <fmt/format.h>
#include <time.h>

#include <cmath>

#include "cli/messages.h"
#include "tools/setting.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

timespec FromNow(std::chrono::milliseconds time) {
  timespec deadline{};
  clock_gettime(CLOCK_REALTIME, &deadline);
  const std::int64_t nanoseconds = deadline.tv_nsec + (time.count() % 1000) * 1'000'000;
  deadline.tv_sec += static_cast<time_t>(time.count() / 1000 + nanoseconds / 1'000'000'000);
  deadline.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
  return deadline;
}

}  // namespace

SignalWaiter::SignalWaiter(EventPipe& events, EventKind kind) : events_(events), kind_(kind) {
  thread_ = std::thread([this] { Run(); });
  pthread_mutex_lock(&mutex_);
  while (!waiting_) pthread_cond_wait(&waiting_changed_, &mutex_);
  pthread_mutex_unlock(&mutex_);
}

SignalWaiter::~SignalWaiter() {
  Stop();
  pthread_cond_destroy(&waiting_changed_);
  pthread_cond_destroy(&condition_);
  pthread_mutex_destroy(&mutex_);
}

// No time-out: between two waits a signal would be lost. glibc ends this wait only when it is
// signalled.
void SignalWaiter::Run() {
  pthread_mutex_lock(&mutex_);
  waiting_ = true;
  pthread_cond_signal(&waiting_changed_);
  while (true) {
    pthread_cond_wait(&condition_, &mutex_);
    if (stopping_) break;
    events_.Put(kind_);
  }
  pthread_mutex_unlock(&mutex_);
}

void SignalWaiter::Stop() {
  if (!thread_.joinable()) return;
  pthread_mutex_lock(&mutex_);
  stopping_ = true;
  pthread_cond_signal(&condition_);
  pthread_mutex_unlock(&mutex_);
  thread_.join();
}

BoardWatcher::BoardWatcher(EventPipe& events, const WatchSettings& settings, const BoardState& told)
    : events_(events),
      settings_(settings),
      ignition_warning_(events, EventKind::kIgnitionWarning),
      battery_warning_(events, EventKind::kBatteryWarning),
      told_(told) {}

ROLU_STATUS BoardWatcher::Start() {
  ThrowUnlessDone(KAVO_ROLU_VPM_SetIgnPowerOffEvent(ignition_warning_.condition()), "watch the warnings");
  ThrowUnlessDone(KAVO_ROLU_VPM_SetLBPPowerOffEvent(battery_warning_.condition()), "watch the warnings");
  ThrowUnlessDone(KAVO_ROLU_GSENSOR_SetAlarmEvent(&shock_), "watch the G-sensor");
  const ROLU_STATUS alarm = KAVO_ROLU_GSENSOR_AlarmEnabled(true);
  poller_ = std::thread([this] { Poll(); });
  shock_taker_ = std::thread([this] { TakeShocks(); });
  return alarm;
}

void BoardWatcher::Stop() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  stop_asked_.notify_all();
  if (poller_.joinable()) poller_.join();
  if (shock_taker_.joinable()) shock_taker_.join();
  ignition_warning_.Stop();
  battery_warning_.Stop();
}

bool BoardWatcher::WaitUnlessStopped(std::chrono::milliseconds time) {
  std::unique_lock<std::mutex> lock(mutex_);
  return !stop_asked_.wait_for(lock, time, [this] { return stopping_; });
}

void BoardWatcher::Poll() {
  do {
    const bool first = !told_.IsKnown();
    if (LookAtIgnition()) LookAtVoltage();
    if (first && told_.IsKnown()) TellState();
  } while (WaitUnlessStopped(settings_.interval));
}

void BoardWatcher::TellState() {
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

bool BoardWatcher::NoteAnswer(ROLU_STATUS status, const char* subject) {
  const bool answered = status != ROLU_STATUS_VPM_NO_REPLY && status != ROLU_STATUS_VPM_SEND_FAILED;
  if (answered == silent_) {
    silent_ = !answered;
    events_.Put(silent_ ? EventKind::kMcuSilent : EventKind::kMcuBack);
  }
  if (answered && status != ROLU_STATUS_SUCCESS && complained_.insert(subject).second) {
    SayProblem(fmt::format("{} cannot be watched: {}", subject, Describe(status)));
  }
  return answered;
}

bool BoardWatcher::LookAtIgnition() {
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

bool BoardWatcher::LookAtVoltage() {
  float measured = 0;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&measured);
  if (status == ROLU_STATUS_SUCCESS) {
    const double volts = Thousandths(measured);
    const bool is_first = !told_.volts;
    if (is_first || std::abs(volts - *told_.volts) >= settings_.volts_step) {
      told_.volts = volts;
      if (!is_first) events_.Put(EventKind::kVoltage, {{"volts", volts}}, VoltsText(volts) + " V");
    }
  }
  return NoteAnswer(status, "the car battery");
}

// A signal that came while nobody waited is made good by looking at the queue now and then.
void BoardWatcher::TakeShocks() {
  constexpr std::chrono::milliseconds kLookAgain{200};
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  pthread_mutex_lock(&mutex);
  while (WaitUnlessStopped(std::chrono::milliseconds(0))) {
    ROLU_GSENSOR_DATA sample{};
    while (KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS) {
      events_.Put(EventKind::kShock, {{"x", sample.x}, {"y", sample.y}, {"z", sample.z}},
                  fmt::format("x {} y {} z {}", sample.x, sample.y, sample.z));
    }
    const timespec deadline = FromNow(kLookAgain);
    pthread_cond_timedwait(&shock_, &mutex, &deadline);
  }
  pthread_mutex_unlock(&mutex);
  pthread_mutex_destroy(&mutex);
}

}  // namespace rolu
