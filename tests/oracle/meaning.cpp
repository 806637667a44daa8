#include "tests/oracle/meaning.h"

#include <algorithm>

#include "tests/oracle/plain_reading.h"

namespace rolu_test {
namespace {

// The part of a line that the operation uses: up to a NUL, and 31 characters of the firmware's name.
std::string Seen(const std::string& line, const std::string& command) {
  const std::string text = line.substr(0, line.find('\0'));
  return command == "ATF0\r" ? text.substr(0, 31) : text;
}

// Handles the reply to a command. Returns false when the operation ends here.
bool TakeReply(const CallRow& row, size_t command, const std::string& reply, Course& course) {
  ROLU_STATUS& status = course.ending.status;
  status = StatusOfReply(reply);
  if (status != ROLU_STATUS_SUCCESS) return false;
  if (command < row.readings.size() && !row.readings[command](reply, course)) status = row.unreadable;
  return status == ROLU_STATUS_SUCCESS;
}

}  // namespace

char CharacterOf(const std::string& reply, size_t position) {
  return position < reply.size() ? reply[position] : '\0';
}

Reading Flag(size_t position) {
  return [=](const std::string& reply, Course& course) {
    return course.Write(static_cast<char>(CharacterOf(reply, position) == '1' ? 1 : 0));
  };
}

Reading Switch(size_t position) {
  return [=](const std::string& reply, Course& course) {
    const char state = CharacterOf(reply, position);
    return (state == '0' || state == '1') && course.Write(static_cast<char>(state - '0'));
  };
}

Replies HealthyReplies(const CallRow& row) {
  Replies replies;
  for (const Answer& answer : row.answers) replies.emplace_back(ReplyLines(BytesOf(answer)).back());
  return replies;
}

Ending MeaningOf(const CallRow& row, const Replies& replies) {
  Course course;
  const std::vector<std::string> commands = CommandsOf(row.wire);
  for (size_t i = 0; i < commands.size(); ++i) {
    course.ending.wire += course.next_command.empty() ? commands[i] : course.next_command;
    course.next_command.clear();
    if (std::count(row.indifferent.begin(), row.indifferent.end(), i) != 0) continue;
    if (!replies[i]) course.ending.status = ROLU_STATUS_VPM_NO_REPLY;
    if (!replies[i] || !TakeReply(row, i, Seen(*replies[i], commands[i]), course)) break;
  }
  return course.ending;
}

}  // namespace rolu_test
