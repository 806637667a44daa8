#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// In the sensor's own units, of which 256 are the acceleration of gravity.
struct GSensorSample {
  std::int16_t x = 0;
  std::int16_t y = 0;
  std::int16_t z = 0;
};

struct GSensorState {
  bool on = false;
  GSensorSample sample{0, 0, 256};  // at rest

  bool alarm_on = false;
  std::uint8_t resolution = 0;
  std::uint8_t alarm_threshold = 0x20;  // thresholds are in steps of 16 units of a sample
  std::uint8_t wakeup_threshold = 0x10;

  // Whether sensor and alarm are on and an axis of the sample, whatever its sign, is above the
  // threshold.
  bool RaisesAlarm() const;

  void RestoreDefaults();
};

// The line with which the MCU reports an alarm.
std::string AlarmLine(const GSensorSample& sample);

// GSO, GSF, GSV, GSRG, GSRS, ARGI, GSIG, GSIS, GSWG, GSWS.
std::vector<McuCommand> GSensorCommands();

}  // namespace rolu_sim
