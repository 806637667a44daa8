#pragma once

#include "tools/session.h"

namespace rolu {

// Measures how long a unit of the MCU is, with the help of someone at the ignition: the MCU counts a known
// number of units from ignition off to its warning. Changes no setting; the G-sensor and its alarm are on
// meanwhile, as in 'rolu watch'. Throws CommandError.
ExitStatus CalibrateMcuUnit(const CommonOptions& common);

}  // namespace rolu
