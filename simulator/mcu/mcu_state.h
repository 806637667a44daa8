// What the MCU knows, by subject; the car battery and the clock have files of their own. The values here
// are those of a board from the factory; what never changes is in the table of commands.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "protocol/values.h"
#include "simulator/mcu/clock.h"

namespace rolu_sim {

// A full and idle battery; the owner sets what else it is to be.
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

  // Whether sensor and alarm are on and an axis of the sample, whatever its sign, is above the threshold.
  bool RaisesAlarm() const {
    const int limit = alarm_threshold * 16;
    const auto is_above = [limit](int axis) { return std::abs(axis) > limit; };
    return on && alarm_on && (is_above(sample.x) || is_above(sample.y) || is_above(sample.z));
  }
};

struct IgnitionState {
  bool on = true;  // the key, which no command turns

  std::uint8_t mode = 1;            // 1 or 2
  bool pre_power_off_alarm = true;  // warn before the power goes because the ignition is off
  std::uint8_t keep_alive_mode = 0;
  std::uint8_t at_mode = 0;
};

// The switch of a peripheral that the MCU holds.
struct PeripheralSwitchState {
  bool on = false;
};

// The delays, with the numbers that the wire uses; there is no number 5.
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

  // In seconds. Two of them act in the model: kIgnitionOffEvent and kLowBattery run before a warning.
  std::uint16_t& Delay(DelayType type) { return delays_[static_cast<std::size_t>(type)]; }
  std::uint16_t Delay(DelayType type) const { return delays_[static_cast<std::size_t>(type)]; }

 private:
  std::array<std::uint16_t, 8> delays_{30, 60, 5, 30, 180, 0, 180, 60};  // by DelayType
};

struct PowerSourcesState {
  std::array<bool, 2> shutdown_enabled{true, true};
  std::array<bool, rolu_protocol::kWakeupSources> wakeup_enabled{true, true};  // the others are off
  std::uint8_t last_wakeup_code = rolu_protocol::WakeupCodeOf(rolu_protocol::kNoSource);
};

struct WatchdogState {
  bool enabled = false;
  std::uint16_t time = 60;  // in seconds
  std::uint32_t trigger_count = 0;
  TimePoint last_trigger{};  // or when it was switched on

  // When it bites unless it is triggered before.
  std::optional<TimePoint> BiteDue() const {
    if (!enabled) return std::nullopt;
    return last_trigger + std::chrono::seconds(time);
  }
};

// A condition that counts once it has held, without a break, for a delay; then once until it has
// ended and begun again.
class HeldCondition {
 public:
  // Call it whenever the condition may have changed.
  void Follow(bool holds, TimePoint now) {
    if (!holds) {
      since_.reset();
      taken_ = false;
    } else if (!since_) {
      since_ = now;
    }
  }

  std::optional<TimePoint> Due(std::uint16_t delay_s) const {
    if (!since_ || taken_) return std::nullopt;
    return *since_ + std::chrono::seconds(delay_s);
  }

  // Whether the delay has passed; true only once.
  bool TakeDue(std::uint16_t delay_s, TimePoint now) {
    const std::optional<TimePoint> due = Due(delay_s);
    if (!due || *due > now) return false;
    taken_ = true;
    return true;
  }

 private:
  std::optional<TimePoint> since_;
  bool taken_ = false;
};

}  // namespace rolu_sim
