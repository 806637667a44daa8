#include "simulator/mcu/reply_script.h"

#include <utility>

namespace rolu_sim {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

}  // namespace

Reply Reply::Bytes(std::string bytes, std::chrono::microseconds delay) {
  Reply reply;
  reply.chunks_.push_back({std::move(bytes), delay});
  return reply;
}

Reply Reply::Line(std::string_view text, std::chrono::microseconds delay) {
  return Lines({text}, delay);
}

Reply Reply::Lines(std::initializer_list<std::string_view> texts, std::chrono::microseconds delay) {
  std::string bytes;
  for (const std::string_view text : texts) bytes.append(text).append(kLineEnd);
  return Bytes(std::move(bytes), delay);
}

Reply Reply::Trickle(std::string_view bytes, std::chrono::microseconds gap) {
  Reply reply;
  for (const char byte : bytes) reply.chunks_.push_back({std::string(1, byte), gap});
  return reply;
}

Reply Reply::Then(std::string bytes, std::chrono::microseconds delay) && {
  chunks_.push_back({std::move(bytes), delay});
  return std::move(*this);
}

bool CommandMatch::Matches(std::string_view command) const {
  return is_prefix_ ? command.substr(0, text_.size()) == text_ : command == text_;
}

void ReplyScript::Add(CommandMatch match, Reply reply, int times) {
  entries_.push_back({std::move(match), std::move(reply), times});
}

std::optional<Reply> ReplyScript::Take(std::string_view command) {
  for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
    if (!entry->match.Matches(command)) continue;
    if (entry->times_left == kEveryTime) return entry->reply;
    Reply reply = entry->reply;
    if (--entry->times_left == 0) entries_.erase(entry);
    return reply;
  }
  return std::nullopt;
}

}  // namespace rolu_sim
