#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/report.h"
#include "tools/session.h"

namespace rolu {

enum class EventKind {
  kState,  // the state at the start; not a change, and not counted
  kIgnitionOn,
  kIgnitionOff,
  kVoltage,
  kIgnitionWarning,
  kBatteryWarning,
  kShock,
  kMcuSilent,
  kMcuBack,
};

struct EventName {
  EventKind kind;
  std::string_view name;   // in JSON and after --on
  std::string_view words;  // in text
};

// The events that --on takes.
const std::vector<EventName>& EventNames();

struct Event {
  EventKind kind = EventKind::kState;
  Document values = Document::object();  // {"volts": 12.6}
  std::string detail{};                  // the same for people: "12.600 V"; may be empty
  std::string time{};                    // when it was seen
};

// The state that the events so far have reported. A member is empty until an event reports it.
struct BoardState {
  std::optional<bool> ignition;
  std::optional<double> volts;

  bool IsKnown() const { return ignition || volts; }
};

struct WatchTask {
  CommonOptions common;
  std::chrono::milliseconds interval{500};  // between two readings of ignition and voltage
  double volts_step = 0.1;                  // the smallest change of the voltage to report
  BoardState told{};          // the state that was reported before; an event is a change from it
  bool port_returns = false;  // the port hung up in the previous process
};

// A process of its own that uses the library and watches the board. When the port hangs up, the process that
// opened it cannot use it again: the library opens the port again only after all families are down, and the
// G-sensor goes down only with the MCU's answer. A new process can take over.
class BoardWatcher {
 public:
  // The exit status of a process whose port hung up, or has not come back yet. No command exits with it.
  static constexpr int kPortAway = 64;

  // Call it while no other thread runs. Throws std::system_error.
  explicit BoardWatcher(const WatchTask& task);
  ~BoardWatcher() { End(); }
  BoardWatcher(const BoardWatcher&) = delete;
  BoardWatcher& operator=(const BoardWatcher&) = delete;

  // The next event, if one is waiting.
  std::optional<Event> Take();
  // True when the process has ended and all its events are taken.
  bool IsOver() const { return is_over_; }
  // A descriptor for poll: it is readable when Take has an event or IsOver has changed.
  int Descriptor() const { return events_; }

  // Ends the process, which first finishes the present question and takes the families down. Returns its exit
  // status.
  int End();

 private:
  int events_ = -1;
  bool is_over_ = false;
  pid_t pid_ = -1;
  int status_ = 0;
};

}  // namespace rolu
