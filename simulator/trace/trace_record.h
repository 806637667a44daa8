#pragma once

#include <chrono>
#include <string>

#include "simulator/json.h"

namespace rolu_sim {

enum class TraceDirection {
  kToMcu,
  kFromMcu,
  kBoard,  // nothing on the wire: what the board did by itself
  kDesk,   // nothing on the wire: what was done to the board
};

// One line on the wire, or one event beside it.
struct TraceRecord {
  std::chrono::nanoseconds time{0};  // since the board came up
  TraceDirection direction = TraceDirection::kBoard;
  std::string line;   // without its line end; empty for the other two
  std::string words;  // what it means
};

// "    1.234567 > MCVG           measure the car battery's voltage", without a line end.
std::string ToText(const TraceRecord& record);

// An object with the members t_s, direction, line, words, and hex for a line that is not printable.
Json ToJson(const TraceRecord& record);

// Throws std::invalid_argument with what is wrong. Words need not be there.
TraceRecord TraceRecordFromJson(const Json& object);

}  // namespace rolu_sim
