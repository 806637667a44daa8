#include "simulator/trace/replay.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "simulator/json.h"
#include "simulator/trace/printable.h"

namespace rolu_sim {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string AsSent(const TraceRecord& record) {
  return record.line + std::string(kLineEnd);
}

TraceRecord ParseLine(const std::string& text) {
  const Json object = Json::parse(text, nullptr, false);
  if (object.is_discarded()) {
    throw std::invalid_argument(
        "is not JSON; a trace to replay is recorded with run --trace FILE or trace --json");
  }
  return TraceRecordFromJson(object);
}

}  // namespace

Replay Replay::FromFile(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(fmt::format("{}: the trace to replay cannot be read", path));
  std::vector<TraceRecord> records;
  std::string text;
  for (std::size_t number = 1; std::getline(file, text); ++number) {
    if (text.empty()) continue;
    try {
      records.push_back(ParseLine(text));
    } catch (const std::invalid_argument& problem) {
      throw std::runtime_error(fmt::format("{}:{}: {}", path, number, problem.what()));
    }
  }
  Replay replay(records);
  if (replay.commands_ == 0) throw std::runtime_error(fmt::format("{}: the trace holds no command", path));
  return replay;
}

Replay::Replay(const std::vector<TraceRecord>& records) : progress_(std::make_unique<Progress>()) {
  Recorded* last = nullptr;
  std::chrono::nanoseconds last_time{0};
  for (const TraceRecord& record : records) {
    if (record.direction == TraceDirection::kToMcu) {
      std::deque<Recorded>& answers = progress_->answers[record.line];
      answers.push_back({commands_++, Reply::Silence()});
      last = &answers.back();
      last_time = record.time;
    } else if (record.direction == TraceDirection::kFromMcu && last == nullptr) {
      early_lines_.push_back({record.time, record.line});
    } else if (record.direction == TraceDirection::kFromMcu) {
      const auto delay = std::chrono::duration_cast<std::chrono::microseconds>(record.time - last_time);
      last->reply =
          std::move(last->reply).Then(AsSent(record), std::max(delay, std::chrono::microseconds(0)));
      last_time = record.time;
    }
  }
}

std::optional<Reply> Replay::AnswerTo(std::string_view command) {
  const std::lock_guard<std::mutex> lock(progress_->mutex);
  const auto found = progress_->answers.find(command);
  if (found == progress_->answers.end() || found->second.empty()) {
    if (++progress_->unknown[std::string(command)] == 1) {
      std::cerr << fmt::format("rolu-sim: replay: the recording holds no {}answer to {}; the model answers\n",
                               found == progress_->answers.end() ? "" : "further ", Printable(command));
    }
    return std::nullopt;
  }
  Recorded recorded = std::move(found->second.front());
  found->second.pop_front();
  ++progress_->asked;
  if (recorded.position < progress_->furthest) ++progress_->out_of_order;
  progress_->furthest = std::max(progress_->furthest, recorded.position);
  return std::move(recorded.reply);
}

std::string Replay::Summary() const {
  const std::lock_guard<std::mutex> lock(progress_->mutex);
  std::string text = fmt::format("replay: {} of {} recorded commands were sent", progress_->asked, commands_);
  if (progress_->out_of_order > 0) text += fmt::format(", {} in another order", progress_->out_of_order);
  std::size_t unknown = 0;
  for (const auto& [command, count] : progress_->unknown) unknown += count;
  if (unknown > 0) text += fmt::format("; {} that were sent are not in the recording", unknown);
  return text;
}

}  // namespace rolu_sim
