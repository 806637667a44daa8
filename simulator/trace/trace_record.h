#pragma once

#include <chrono>
#include <string>

#include "simulator/json.h"
#include "simulator/unique_fd.h"

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

enum class TraceFormat { kText, kJson };

// One record as a line, with its line end.
std::string FormatLine(const TraceRecord& record, TraceFormat format);

// Writes records to a file or to standard error, each at once and as one write: the program under
// test may write there as well.
class TraceWriter {
 public:
  // "-" is standard error. Throws std::system_error when the file cannot be written.
  TraceWriter(const std::string& path, TraceFormat format);

  // After a write that fails, says so once on standard error and writes no more.
  void Write(const TraceRecord& record);

 private:
  const std::string path_;
  const TraceFormat format_;
  UniqueFd file_;
  bool failed_ = false;
};

}  // namespace rolu_sim
