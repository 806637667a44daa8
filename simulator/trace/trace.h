#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "protocol/words.h"
#include "simulator/line/wire_log.h"
#include "simulator/trace/trace_record.h"

namespace rolu_sim {

// What happened on a board, in plain words, from its start; the newest kCapacity records are kept.
// Any thread may call any member.
class Trace {
 public:
  static constexpr std::size_t kCapacity = 65536;

  using Listener = std::function<void(const TraceRecord&)>;

  explicit Trace(TimePoint start) : start_(start) {}

  void RecordLine(const WireEvent& line);
  void RecordEvent(TraceDirection direction, std::string words);

  // `listener` hears each record from now on, in their order, on the thread that recorded it. It
  // must not call this object.
  void AddListener(Listener listener);

  // At most `limit` records from number `from` on; number 0 is the first since the start. Where they
  // are no longer kept, `first` says which number the oldest has.
  struct Excerpt {
    std::uint64_t first = 0;
    std::vector<TraceRecord> records;
  };
  Excerpt From(std::uint64_t from, std::size_t limit = kCapacity) const;

  // How many there were since the start.
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
