#pragma once

#include <string_view>

#include "simulator/mcu/battery.h"
#include "simulator/mcu/identity.h"
#include "simulator/mcu/mcu_command.h"
#include "simulator/mcu/watchdog.h"

namespace rolu_sim {

// The microcontroller as a state machine: a command and the time go in, answer lines come out. It
// has no thread, no clock and no lock; McuSerial guards the one behind a port (see its WithModel).
//
// A setting answers "OK". An unknown command answers "ERR-C01". A field that is malformed or that
// the MCU refuses (a battery mode other than 2 and 3, a threshold outside the range that MCPR
// reports, a watchdog time of 0) answers "ERR-M08" and changes nothing.
class McuModel {
 public:
  // `command` comes without its carriage return.
  AnswerLines Execute(std::string_view command, TimePoint now);

  // The state of each subject, to be read and set at will.
  BatteryState battery;
  IdentityState identity;
  WatchdogState watchdog;

  // A vehicle of this electrical system, with a good battery.
  void SetVehicle(BatteryMode mode);

  // From now on the battery is at `volts`.
  void SetBatteryVolts(double volts) { battery.curve = VoltageCurve(volts); }

  // The battery follows `curve`, whose time 0 is `start`.
  void SetBatteryCurve(VoltageCurve curve, TimePoint start);
};

}  // namespace rolu_sim
