#ifndef SOAK_DRAWN_ANSWER_H
#define SOAK_DRAWN_ANSWER_H

#include <cstdint>
#include <string>

#include "protocol/commands.h"

namespace rolu_soak {

// An answer line to the command, which is the `running`th of all. A word in it is not mistaken for another
// command's, nor for the same one's a while ago. Empty for a text: the simulated MCU has that.
std::string DrawnAnswer(const rolu_protocol::Command& command, std::uint64_t running);

}  // namespace rolu_soak

#endif  // SOAK_DRAWN_ANSWER_H
