#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rolu_sim {

// The end of each line that the MCU sends.
inline constexpr std::string_view kLineEnd = "\r\n";

// Bytes that leave `delay` after the previous chunk of the same reply, or after the command.
struct ReplyChunk {
  std::string bytes;
  std::chrono::microseconds delay{0};
};

// What the MCU sends for one command. A reply without chunks is silence.
//
//   Reply::Line("02EB")                       one line at once
//   Reply::Line("02EB", 3200ms)               a late line
//   Reply::Lines({"OK", "OK"})                lines in one chunk
//   Reply::Silence()                          nothing
//   Reply::Bytes("\xff\x00["s)                raw bytes, no line end added
//   Reply::Line("[GI:").Then("0001...]\r", 2ms)   fragments: any chunks, one after another
class Reply {
 public:
  static Reply Silence() { return {}; }
  static Reply Bytes(std::string bytes, std::chrono::microseconds delay = {}) {
    return Reply().Then(std::move(bytes), delay);
  }
  static Reply Line(std::string_view text, std::chrono::microseconds delay = {}) {
    return Lines({text}, delay);
  }
  template <typename Texts = std::initializer_list<std::string_view>>
  static Reply Lines(const Texts& texts, std::chrono::microseconds delay = {}) {
    std::string bytes;
    for (const std::string_view text : texts) bytes.append(text).append(kLineEnd);
    return Bytes(std::move(bytes), delay);
  }

  Reply Then(std::string bytes, std::chrono::microseconds delay) && {
    chunks_.push_back({std::move(bytes), delay});
    return std::move(*this);
  }

  const std::vector<ReplyChunk>& chunks() const { return chunks_; }

 private:
  std::vector<ReplyChunk> chunks_;
};

// Lets the model carry out the present command, at most once, and returns its answer.
using AskModel = std::function<Reply()>;

// Decides the reply to a command that has no scripted reply. The MCU's thread calls it. It must not call that
// McuSerial.
using AnswerRoute = std::function<Reply(std::string_view command, const AskModel& ask_model)>;

// Which commands a scripted reply answers.
class CommandMatch {
 public:
  static CommandMatch Exactly(std::string command) { return {std::move(command), false}; }
  static CommandMatch StartingWith(std::string prefix) { return {std::move(prefix), true}; }
  static CommandMatch Any() { return StartingWith(""); }

  bool Matches(std::string_view command) const {
    return is_prefix_ ? command.starts_with(text_) : command == text_;
  }

 private:
  CommandMatch(std::string text, bool is_prefix) : text_(std::move(text)), is_prefix_(is_prefix) {}

  std::string text_;
  bool is_prefix_;
};

inline constexpr int kEveryTime = -1;

}  // namespace rolu_sim
