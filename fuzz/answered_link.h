// Stands in for the link to the MCU (mcu/link.h): the answers are there already, so a call takes no
// longer than it takes to read them.
#ifndef FUZZ_ANSWERED_LINK_H
#define FUZZ_ANSWERED_LINK_H

#include <deque>
#include <string>

namespace rolu_fuzz {

// The reply lines to come.
extern std::deque<std::string> replies_to_come;

// All commands since this was last emptied.
extern std::string commands_sent;

}  // namespace rolu_fuzz

#endif  // FUZZ_ANSWERED_LINK_H
