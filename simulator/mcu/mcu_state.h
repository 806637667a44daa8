// What the MCU knows, by subject. The car battery and the clock have their own files. The values here are the
// factory values; the table of commands holds the answers that never change.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "protocol/values.h"
#include "simulator/mcu/mcu_time.h"

namespace rolu_sim {

// A full and idle backup battery; the owner sets anything else.
struct BackupBatteryState {
  std::uint16_t millivolts = 4200;
  std::uint16_t temperature_tenths_kelvin = 2982;  // 25.05 degrees Celsius
  std::uint16_t percent = 100;
  std::uint16_t remaining_capacity = 2000;
  std::uint16_t remaining_time = 120;
  std::uint16_t time_to_full = 0;
  std::uint16_t info = 0;
  std::uint16_t status_bits = 0;
};

// In the sensor's own units; 256 units are the acceleration of gravity.
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

  // Whether the sensor and its alarm are on, and an axis of the sample, without its sign, is above the
  // threshold.
  bool RaisesAlarm() const {
    const int limit = alarm_threshold * 16;
    const auto is_above = [limit](int axis) { return std::abs(axis) > limit; };
    return on && alarm_on && (is_above(sample.x) || is_above(sample.y) || is_above(sample.z));
  }
};

struct IgnitionState {
  bool on = true;  // the ignition key; no command turns it

  std::uint8_t mode = 1;            // 1 or 2
  bool pre_power_off_alarm = true;  // warn before the power goes off because of the ignition
  std::uint8_t keep_alive_mode = 0;
  std::uint8_t at_mode = 0;
};

// The peripheral switch that the MCU controls.
struct PeripheralSwitchState {
  bool on = false;
};

// The delays, with their numbers on the wire. The number 5 is not used.
enum class DelayType : std::uint8_t {
  kLowBattery = 0,
  kLowBatteryHard = 1,
  kIgnitionOn = 2,
  kIgnitionOffEvent = 3,
  kIgnitionHardOff = 4,
  kIgnitionSuspendHardOff = 6,
  kPrePowerOffAlarm = 7,
};

struct PowerOffState {
  bool forced_shutdown = false;
  std::uint16_t forced_shutdown_delay = 120;

  // In MCU units. kPrePowerOffAlarm counts nothing here: how the operating system shuts down is not
  // simulated.
  std::uint16_t& Delay(DelayType type) { return delays_[static_cast<std::size_t>(type)]; }
  std::uint16_t Delay(DelayType type) const { return delays_[static_cast<std::size_t>(type)]; }

 private:
  std::array<std::uint16_t, 8> delays_{30, 60, 5, 30, 180, 0, 180, 60};  // indexed by DelayType
};

struct PowerSourcesState {
  std::array<bool, 2> shutdown_enabled{true, true};
  std::array<bool, rolu_protocol::kWakeupSources> wakeup_enabled{true, true};  // the others are off
  std::uint8_t last_wakeup_code = rolu_protocol::WakeupCodeOf(rolu_protocol::kNoSource);
};

struct WatchdogState {
  bool enabled = false;
  std::uint16_t time = 60;  // in MCU units
  std::uint32_t trigger_count = 0;
  McuTimePoint last_trigger{};  // the last trigger, or the time when it was switched on
};

enum class ComputerPower { kOn, kOff, kSuspended };

// The computer behind the MCU. One that survives stays on: the event is reported, nothing else happens. So a
// test program can hold a board in its own process.
struct ComputerState {
  ComputerPower power = ComputerPower::kOn;
  bool survives_power_cut = true;  // and a reset that a program orders
  bool survives_bite = true;
};

// A condition that becomes due once it has held for a delay without a break. It becomes due only once, until
// it has ended and begun again.
class HeldCondition {
 public:
  // Call it whenever the condition may have changed.
  void Follow(bool holds, McuTimePoint now) {
    if (!holds) {
      since_.reset();
      taken_ = false;
    } else if (!since_) {
      since_ = now;
    }
  }

  std::optional<McuTimePoint> Due(std::chrono::nanoseconds delay) const {
    if (!since_ || taken_) return std::nullopt;
    return *since_ + delay;
  }

  // Whether the condition has become due. Returns true once only.
  bool TakeDue(std::chrono::nanoseconds delay, McuTimePoint now) {
    const std::optional<McuTimePoint> due = Due(delay);
    if (!due || *due > now) return false;
    taken_ = true;
    return true;
  }

 private:
  std::optional<McuTimePoint> since_;
  bool taken_ = false;
};

}  // namespace rolu_sim
