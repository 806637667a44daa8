#pragma once

#include <chrono>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rolu_sim {

// Bytes that leave `delay` after the previous chunk of the same reply, or after the command.
struct ReplyChunk {
  std::string bytes;
  std::chrono::microseconds delay{0};
};

// What the MCU sends for one command in place of the model's answer: no chunk is silence.
// Lines end in CR LF, as the model's do.
//
//   Reply::Line("02EB")                       one line at once
//   Reply::Line("02EB", 3200ms)               a late line
//   Reply::Lines({"OK", "OK"})                lines in one chunk
//   Reply::Silence()                          nothing
//   Reply::Bytes("\xff\x00["s)                raw bytes, no line end added
//   Reply::Trickle("02EB\r\n", 1ms)           single bytes, 1 ms before each
//   Reply::Line("[GI:").Then("0001...]\r", 2ms)   fragments: any chunks, one after another
class Reply {
 public:
  static Reply Silence() { return Reply(); }
  static Reply Bytes(std::string bytes, std::chrono::microseconds delay = {});
  static Reply Line(std::string_view text, std::chrono::microseconds delay = {});
  static Reply Lines(std::initializer_list<std::string_view> texts, std::chrono::microseconds delay = {});
  static Reply Trickle(std::string_view bytes, std::chrono::microseconds gap);

  Reply Then(std::string bytes, std::chrono::microseconds delay) &&;

  const std::vector<ReplyChunk>& chunks() const { return chunks_; }

 private:
  std::vector<ReplyChunk> chunks_;
};

// Which commands a scripted reply is for.
class CommandMatch {
 public:
  static CommandMatch Exactly(std::string command) { return {std::move(command), false}; }
  static CommandMatch StartingWith(std::string prefix) { return {std::move(prefix), true}; }
  static CommandMatch Any() { return {"", true}; }

  bool Matches(std::string_view command) const;

 private:
  CommandMatch(std::string text, bool is_prefix) : text_(std::move(text)), is_prefix_(is_prefix) {}

  std::string text_;
  bool is_prefix_;
};

inline constexpr int kEveryTime = -1;

// Scripted replies in the order they were added; the first one that matches and is not used up
// answers. Not locked: McuSerial guards its own.
class ReplyScript {
 public:
  // `times` is 1 or more, or kEveryTime.
  void Add(CommandMatch match, Reply reply, int times);
  void Clear() { entries_.clear(); }

  // The reply for `command`, counted as used; nothing when the model shall answer.
  std::optional<Reply> Take(std::string_view command);

 private:
  struct Entry {
    CommandMatch match;
    Reply reply;
    int times_left;
  };

  std::vector<Entry> entries_;
};

}  // namespace rolu_sim
