#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rolu_protocol {

// Puts the lines of a wire into plain words. An answer depends on the command before it, so one object must
// get all lines of one wire in their order.
class Words {
 public:
  std::string OfCommand(std::string_view line);
  std::string OfAnswer(std::string_view line);

 private:
  std::string pending_;  // the command whose answer comes next
  int answers_due_ = 0;
};

}  // namespace rolu_protocol
