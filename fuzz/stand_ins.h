// Stand-ins for parts of the library: for the link to the MCU (mcu/link.h), with the answers there already,
// and for its deadlines (core/deadline.h), as a fuzzer has no time to wait. No call sleeps, and the wait for
// a reply that will not come ends when the MCU has received the command.
#ifndef FUZZ_STAND_INS_H
#define FUZZ_STAND_INS_H

#include <atomic>
#include <deque>
#include <string>

namespace rolu_fuzz {

// The reply lines to come, and all commands since this was last emptied.
extern std::deque<std::string> replies_to_come;
extern std::string commands_sent;

// Ends the next wait. Until then waits last as long as the library says or longer, however busy the machine
// is.
extern std::atomic<bool> time_is_up;

// The time that the library asked to sleep since this was last set to 0.
extern std::atomic<int> slept_ms;

}  // namespace rolu_fuzz

#endif  // FUZZ_STAND_INS_H
