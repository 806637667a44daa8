#pragma once

#include "simulator/mcu/wire_log.h"

namespace rolu_sim {

// Prints each line on the wire to standard error: the seconds since `start`, the direction (> to
// the MCU, < from it) and the text, bytes that are not printable as \xNN.
WireLog::LineListener PrintWireSince(TimePoint start);

}  // namespace rolu_sim
