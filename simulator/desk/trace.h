#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/words.h"
#include "simulator/desk/json.h"
#include "simulator/line/wire_log.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// The bytes of a line as text; bytes that are not printable become \xNN.
std::string Printable(std::string_view bytes);

std::string ToHex(std::string_view bytes);

// Nothing when the text is not pairs of hexadecimal digits.
std::optional<std::string> BytesFromHex(std::string_view digits);

enum class TraceDirection {
  kToMcu,
  kFromMcu,
  kBoard,  // nothing on the wire: what the board did on its own
  kDesk,   // nothing on the wire: what was done to the board
};

bool IsOnWire(TraceDirection direction);

// One line on the wire, or one event beside it.
struct TraceRecord {
  std::chrono::nanoseconds time{0};  // since the board came up
  TraceDirection direction = TraceDirection::kBoard;
  std::string line;   // without its line end; empty for kBoard and kDesk
  std::string words;  // what it means
};

// "    1.234567 > MCVG           measure the car battery's voltage", without a line end.
std::string ToText(const TraceRecord& record);

// An object with the members t_s, direction, line, words, and hex for a line that is not printable.
Json ToJson(const TraceRecord& record);

// Throws std::invalid_argument with the problem. The words may be missing.
TraceRecord TraceRecordFromJson(const Json& object);

enum class TraceFormat { kText, kJson };

// One record as a line, with its line end.
std::string FormatLine(const TraceRecord& record, TraceFormat format);

// Writes each record at once, with one write, to a file or to standard error: the program under test may
// write to the same place.
class TraceWriter {
 public:
  // "-" is standard error. Throws std::system_error when the file cannot be written.
  TraceWriter(const std::string& path, TraceFormat format);

  // When a write fails, says so once on standard error and writes no more.
  void Write(const TraceRecord& record);

 private:
  const std::string path_;
  const TraceFormat format_;
  UniqueFd file_;
  bool failed_ = false;
};

// What happened on a board since its start, in plain words. Keeps the newest kCapacity records. Any thread
// may call any member.
class Trace {
 public:
  static constexpr std::size_t kCapacity = 65536;

  using Listener = std::function<void(const TraceRecord&)>;

  explicit Trace(TimePoint start) : start_(start) {}

  void RecordLine(const WireEvent& line);
  void RecordEvent(TraceDirection direction, std::string words);

  // `listener` gets each record from now on, in order, on the thread that recorded it. It must not call this
  // object.
  void AddListener(Listener listener);

  // At most `limit` records, beginning with number `from`; number 0 is the first since the start. If the
  // trace no longer keeps that record, the records begin with the oldest one. `first` is the number of the
  // first record given.
  struct Excerpt {
    std::uint64_t first = 0;
    std::vector<TraceRecord> records;
  };
  Excerpt From(std::uint64_t from, std::size_t limit = kCapacity) const;

  // How many records there were since the start.
  std::uint64_t Count() const;

 private:
  void Add(TraceRecord record);

  const TimePoint start_;
  mutable std::mutex mutex_;
  rolu_protocol::Words words_;
  std::deque<TraceRecord> records_;
  std::uint64_t first_ = 0;
  std::vector<Listener> listeners_;
};

}  // namespace rolu_sim
