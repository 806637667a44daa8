#include "simulator/desk/replay.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "simulator/desk/parameter.h"

namespace rolu_sim {
namespace {

TraceRecord ParseLine(const std::string& text) {
  const Json object = Json::parse(text, nullptr, false);
  if (object.is_discarded()) {
    throw std::invalid_argument(
        "is not JSON; a trace to replay is recorded with run --trace FILE or trace --json");
  }
  return TraceRecordFromJson(object);
}

}  // namespace

Replay::Replay(const std::string& path, ReplayRule rule) : rule_(rule) {
  std::ifstream file(path);
  if (!file) throw UsageError(fmt::format("{}: the trace to replay cannot be read", path));
  std::vector<TraceRecord> records;
  std::string text;
  for (std::size_t number = 1; std::getline(file, text); ++number) {
    if (text.empty()) continue;
    try {
      records.push_back(ParseLine(text));
    } catch (const std::invalid_argument& problem) {
      throw UsageError(fmt::format("{}:{}: {}", path, number, problem.what()));
    }
  }
  Take(records);
  if (commands_ == 0) throw UsageError(fmt::format("{}: the trace holds no command", path));
}

void Replay::Take(const std::vector<TraceRecord>& records) {
  Recorded* last = nullptr;
  std::chrono::nanoseconds last_time{0};
  for (const TraceRecord& record : records) {
    if (record.direction == TraceDirection::kToMcu) {
      last = &answers_[record.line].emplace_back(Recorded{commands_++, record.time, Reply::Silence()});
      last_time = record.time;
    } else if (record.direction == TraceDirection::kFromMcu && last == nullptr) {
      early_lines_.push_back({record.time, record.line});
    } else if (record.direction == TraceDirection::kFromMcu) {
      const auto delay = std::chrono::duration_cast<std::chrono::microseconds>(record.time - last_time);
      last->reply =
          std::move(last->reply).Then(record.line + "\r\n", std::max(delay, std::chrono::microseconds(0)));
      last_time = record.time;
    }
  }
}

std::optional<Reply> Replay::AnswerTo(std::string_view command) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = answers_.find(command);
  if (found == answers_.end() || found->second.empty()) {
    if (++unknown_[std::string(command)] == 1 && rule_ != ReplayRule::kStrict) {
      std::cerr << fmt::format("rolu-sim: replay: the recording holds no {}answer to {}; the model answers\n",
                               found == answers_.end() ? "" : "further ", Printable(command));
    }
    return std::nullopt;
  }
  Recorded recorded = std::move(found->second.front());
  found->second.pop_front();
  ++asked_;
  if (recorded.position < furthest_) ++out_of_order_;
  furthest_ = std::max(furthest_, recorded.position);
  return std::move(recorded.reply);
}

std::string Replay::Next() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Recorded* next = nullptr;
  std::string_view command;
  for (const auto& [line, recorded] : answers_) {
    if (recorded.empty() || (next != nullptr && next->position < recorded.front().position)) continue;
    next = &recorded.front();
    command = line;
  }
  if (next == nullptr) return "the recording has no more";
  return fmt::format("the recording has {} next (at {:.3f} s)", Printable(command),
                     std::chrono::duration<double>(next->time).count());
}

bool Replay::LacksCommands() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return !unknown_.empty();
}

bool Replay::HasDiverged() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return asked_ < commands_ || !unknown_.empty();
}

std::string Replay::Summary() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::string text = fmt::format("replay: {} of {} recorded commands were sent", asked_, commands_);
  if (out_of_order_ > 0) text += fmt::format(", {} in another order", out_of_order_);
  std::size_t unknown = 0;
  for (const auto& [command, count] : unknown_) unknown += count;
  if (unknown > 0) text += fmt::format("; {} that were sent are not in the recording", unknown);
  return text;
}

}  // namespace rolu_sim
