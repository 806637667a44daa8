#pragma once

#include <string>

#include "simulator/mcu/mcu_event.h"

namespace rolu_sim {

// A sentence about an event that happened `seconds` after the board's start. Empty for an event that the wire
// shows.
std::string WordsFor(const McuEvent& event, double seconds);

}  // namespace rolu_sim
