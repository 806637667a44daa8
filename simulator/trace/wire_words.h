#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rolu_sim {

// Says lines of the wire in plain words, from one table of the MCU's commands. What an answer means
// depends on the command before it, so one object follows one wire, line by line.
class WireWords {
 public:
  std::string OfCommand(std::string_view line);
  std::string OfAnswer(std::string_view line);

 private:
  std::string pending_;  // the command whose answer comes next
  std::size_t answers_due_ = 0;
};

// A line of the MCU that no command asked for.
bool IsBracketedMessage(std::string_view line);

}  // namespace rolu_sim
