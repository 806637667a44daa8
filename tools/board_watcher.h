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
  kState,  // how things are at the start; no change, and not counted
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

// Those that --on takes.
const std::vector<EventName>& EventNames();

struct Event {
  EventKind kind = EventKind::kState;
  Document values = Document::object();  // {"volts": 12.6}
  std::string detail{};                  // the same for people: "12.600 V"; may be empty
  std::string time{};                    // when it was seen
};

// What the events so far have told; a member is empty while none has told it.
struct BoardState {
  std::optional<bool> ignition;
  std::optional<double> volts;

  bool IsKnown() const { return ignition || volts; }
};

struct WatchTask {
  CommonOptions common;
  std::chrono::milliseconds interval{500};  // between two looks at ignition and voltage
  double volts_step = 0.1;                  // the smallest change of the voltage that is told
  BoardState told;                          // what was told before; a change of it is an event
  bool port_returns = false;                // the port hung up under the process before this one
};

// A process of its own that uses the library, and sees what happens on the board. A port that hung up is
// dead for the process that opened it, and stays so: the library opens it again only when all families
// are down, and the G-sensor goes down only with the MCU's answer. Another process can take over.
class BoardWatcher {
 public:
  // The exit status of a process whose port hung up, or has not come back yet. No command ends with it.
  static constexpr int kPortAway = 64;

  // Call it while no other thread runs. Throws std::system_error.
  explicit BoardWatcher(const WatchTask& task);
  ~BoardWatcher() { End(); }
  BoardWatcher(const BoardWatcher&) = delete;
  BoardWatcher& operator=(const BoardWatcher&) = delete;

  // The next event, if there is one now.
  std::optional<Event> Take();
  // The process has ended, and all its events were taken.
  bool IsOver() const { return is_over_; }
  // For poll: readable while Take or IsOver has something to say.
  int Descriptor() const { return events_; }

  // Ends the process: it finishes the question in hand and takes the families down. Gives its exit status.
  int End();

 private:
  int events_ = -1;
  bool is_over_ = false;
  pid_t pid_ = -1;
  int status_ = 0;
};

}  // namespace rolu
