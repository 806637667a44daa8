#pragma once

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

// What the events so far say; nothing where none did.
struct BoardState {
  std::optional<bool> ignition;
  std::optional<double> volts;

  bool IsKnown() const { return ignition || volts; }
};

// From the process that sees events to the one that tells them: made before the one starts the other.
class EventPipe {
 public:
  EventPipe();
  ~EventPipe();
  EventPipe(const EventPipe&) = delete;
  EventPipe& operator=(const EventPipe&) = delete;

  // Each process says once, first of all, which it is.
  void BeWriter();
  void BeReader();

  // The writer's; any thread may call it.
  void Put(EventKind kind, Document values = Document::object(), const std::string& detail = {}) const;

  // The reader's: the next event, if there is one now.
  std::optional<Event> Take();
  // The writer is gone, and all its events were taken.
  bool IsAtEnd() const { return at_end_; }

  // For poll: readable for the reader while Take has something to say; hung up for the writer once the
  // reader is gone.
  int Descriptor() const { return writer_ >= 0 ? writer_ : reader_; }

 private:
  int reader_ = -1;
  int writer_ = -1;
  bool at_end_ = false;
};

}  // namespace rolu
