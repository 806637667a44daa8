#include "simulator/trace/trace.h"

#include <algorithm>
#include <utility>

#include "simulator/trace/printable.h"

namespace rolu_sim {

void Trace::RecordLine(const WireEvent& line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  TraceRecord record;
  record.time = line.time - start_;
  record.line = line.bytes;
  if (line.direction == Direction::kToMcu) {
    record.direction = TraceDirection::kToMcu;
    record.words = words_.OfCommand(line.bytes);
  } else {
    record.direction = TraceDirection::kFromMcu;
    record.words = words_.OfAnswer(line.bytes);
  }
  Add(std::move(record));
}

void Trace::RecordEvent(TraceDirection direction, std::string words) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Add({std::chrono::steady_clock::now() - start_, direction, {}, std::move(words)});
}

void Trace::AddListener(Listener listener) {
  const std::lock_guard<std::mutex> lock(mutex_);
  listeners_.push_back(std::move(listener));
}

Trace::Excerpt Trace::From(std::uint64_t from, std::size_t limit) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Excerpt excerpt;
  excerpt.first = std::max(from, first_);
  const std::uint64_t end = std::min(first_ + records_.size(), excerpt.first + limit);
  for (std::uint64_t number = excerpt.first; number < end; ++number) {
    excerpt.records.push_back(records_[static_cast<std::size_t>(number - first_)]);
  }
  return excerpt;
}

std::uint64_t Trace::Count() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return first_ + records_.size();
}

// What a program or a fault put on the wire may hold any bytes, also in the words for it.
void Trace::Add(TraceRecord record) {
  record.words = Printable(record.words);
  for (const Listener& listener : listeners_) listener(record);
  if (records_.size() == kCapacity) {
    records_.pop_front();
    ++first_;
  }
  records_.push_back(std::move(record));
}

}  // namespace rolu_sim
