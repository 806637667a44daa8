#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/report.h"

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
  Document values;     // {"volts": 12.6}
  std::string detail;  // the same for people: "12.600 V"; may be empty
  std::string time;    // when it was seen
};

// From the threads that see events to the one that tells them.
class EventQueue {
 public:
  EventQueue();
  ~EventQueue();
  EventQueue(const EventQueue&) = delete;
  EventQueue& operator=(const EventQueue&) = delete;

  void Put(EventKind kind, Document values = Document::object(), std::string detail = {});
  std::optional<Event> Take();

  // Readable while events are there; for poll.
  int Descriptor() const { return ready_; }

 private:
  std::mutex mutex_;
  std::deque<Event> events_;
  int ready_;
};

}  // namespace rolu
