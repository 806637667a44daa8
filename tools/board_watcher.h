#pragma once

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "tools/watch_events.h"

namespace rolu {

struct WatchSettings {
  std::chrono::milliseconds interval{500};  // between two looks at ignition and voltage
  double volts_step = 0.1;                  // the smallest change of the voltage that is told
};

// Waits on a condition variable that the library signals, from before it is registered until it is
// stopped: a signal that finds nobody waiting is lost.
class SignalWaiter {
 public:
  SignalWaiter(EventPipe& events, EventKind kind);
  ~SignalWaiter();
  SignalWaiter(const SignalWaiter&) = delete;
  SignalWaiter& operator=(const SignalWaiter&) = delete;

  // What to register; lives as long as this object.
  pthread_cond_t* condition() { return &condition_; }

  void Stop();

 private:
  void Run();

  EventPipe& events_;
  const EventKind kind_;
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t condition_ = PTHREAD_COND_INITIALIZER;
  pthread_cond_t waiting_changed_ = PTHREAD_COND_INITIALIZER;
  bool waiting_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

// Sees what happens on the board and sends it through a pipe. VPM and GSENSOR must be up from Start to
// Stop, and be taken down before this object goes: the library signals its condition variables
// until then.
class BoardWatcher {
 public:
  // `told` is what has been told before: what has changed since is an event.
  BoardWatcher(EventPipe& events, const WatchSettings& settings, const BoardState& told);
  ~BoardWatcher() { Stop(); }
  BoardWatcher(const BoardWatcher&) = delete;
  BoardWatcher& operator=(const BoardWatcher&) = delete;

  // Registers for the events and starts to look. The status of switching the G-sensor's alarm on:
  // without it the rest is watched all the same. Throws CommandError when nothing can be watched.
  ROLU_STATUS Start();

  // Ends the threads: after the question in hand, at most 3 s later.
  void Stop();

 private:
  void Poll();
  void TakeShocks();
  bool WaitUnlessStopped(std::chrono::milliseconds time);
  // False when the MCU did not answer.
  bool LookAtIgnition();
  bool LookAtVoltage();
  bool NoteAnswer(ROLU_STATUS status, const char* subject);
  void TellState();

  EventPipe& events_;
  const WatchSettings settings_;
  SignalWaiter ignition_warning_;
  SignalWaiter battery_warning_;
  pthread_cond_t shock_ = PTHREAD_COND_INITIALIZER;

  std::mutex mutex_;
  std::condition_variable stop_asked_;
  bool stopping_ = false;

  // Of the polling thread.
  bool silent_ = false;
  std::set<std::string> complained_;
  BoardState told_;

  std::thread poller_;
  std::thread shock_taker_;
};

}  // namespace rolu
