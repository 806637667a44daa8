#pragma once

#include "kavo_rolu.h"

namespace rolu {

// Whether the GPS receiver's power line is prepared and high.
//
// Bringing the peripherals up gives that line its direction anew, and the kernel then drives it
// low: a receiver that is on loses its power for that moment, and stays off unless it is switched
// on again.
bool GpsLineIsOn();

// Whether the lines of the digital inputs are there, or the system has no lines at all.
bool PinsArePrepared();

// Brings the peripherals up and leaves the receiver as it was.
ROLU_STATUS BringUpPeripherals();

}  // namespace rolu
