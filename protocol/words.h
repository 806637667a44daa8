#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rolu_protocol {

// Says the lines of a wire in plain words. What an answer means depends on the command before it, so one
// object follows one wire, line by line.
class Words {
 public:
  std::string OfCommand(std::string_view line);
  std::string OfAnswer(std::string_view line);

 private:
  std::string pending_;  // the command whose answer comes next
  int answers_due_ = 0;
};

}  // namespace rolu_protocol
