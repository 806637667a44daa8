#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kavo_rolu.h"

namespace rolu {

// The parts of the library, each with an initialisation of its own, in the order of bringing them up.
enum class Family { kCore, kVpm, kWatchdog, kGsensor, kPeripherals };

// A setting's value, as JSON has it: number, boolean, text, or a list of numbers.
using Value = nlohmann::json;

enum class Kind {
  kNumber,     // a whole number
  kVolts,      // rounded to three decimals
  kCelsius,    // rounded to one decimal
  kFlag,       // on or off
  kChoice,     // one of a few words
  kTimeOfDay,  // HH:MM
  kText,
  kList,  // numbers
};

// When a change must be confirmed first.
enum class AsksFirst { kNever, kAlways, kSwitchingOff, kSwitchingOn };

using Reader = std::function<ROLU_STATUS(Value&)>;
using Writer = std::function<ROLU_STATUS(const Value&)>;

// One thing that can be read from the board, and perhaps written: a row of the one table that
// help, man page, completion and all commands share.
struct Setting {
  std::string_view name;
  std::string_view help;
  Family family = Family::kVpm;
  Kind kind = Kind::kNumber;
  std::string_view unit{};
  double minimum = 0;
  double maximum = 0;
  std::vector<std::string_view> choices{};
  // How far the value that reads back may be from the one that was set: the MCU rounds to this step.
  double rounding = 0;

  Reader read{};
  Writer write{};  // null: cannot be written

  // Whether `save` and `load` include it; the momentary switches of peripherals are left out.
  bool saved = true;
  AsksFirst asks = AsksFirst::kNever;
  std::string_view consequence{};  // what a change that is asked about does

  bool IsWritable() const { return write != nullptr; }
  bool IsSaved() const { return IsWritable() && saved; }
};

// All settings, group by group. `load` and `set` apply changes in this order: the battery mode
// before what it switches off, a delay before the switch that starts it.
const std::vector<Setting>& Settings();

struct SettingGroup {
  std::string_view name;   // the part before the dot
  std::string_view title;  // "Car battery"
};
const std::vector<SettingGroup>& SettingGroups();

// Null when there is none.
const Setting* FindSetting(std::string_view name);

// The setting of that name. Throws CommandError(kWrongUse) that suggests the nearest.
const Setting& SettingNamed(std::string_view name);

// The settings of these names, in their order. Each name is that of a setting or of a group ("battery"); no
// name at all means all settings. The same throw.
std::vector<const Setting*> SettingsNamed(const std::vector<std::string>& names);

// there is no setting "battery.mod"; did you mean battery.mode?
std::string NoSetting(std::string_view name);

// The part of the name before the first dot.
std::string_view GroupOf(const Setting& setting);

// The values that can be set, or those that a read-only setting gives: "on or off", "12V or 24V".
std::string RangeText(const Setting& setting);

// The whole of `text` as a value that the setting takes. Throws CommandError(kWrongUse) with the reason:
// watchdog.time must be a whole number from 1 to 65535, not "0x".
Value ParseValue(const Setting& setting, std::string_view text);

// The same reason for a value out of a file; empty when the setting takes it.
std::string WhyNotTaken(const Setting& setting, const Value& value);

// For people and scripts: "12.600", "on", "07:30", "1 0". The unit is not part of it.
std::string ValueText(const Setting& setting, const Value& value);

// A voltage as a multiple of a thousandth, and how it is written: "12.600".
double Thousandths(float volts);
std::string VoltsText(double volts);

struct TimeOfDay {
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
};
// "07:30"; nothing when `text` is no time of day.
std::optional<TimeOfDay> ParseTimeOfDay(std::string_view text);

// "2026-11-24 21:38:15", as the MCU's clock tells it.
std::string ClockText(const VPM_RTC_TIME& time);

// Whether they are equal; numbers may be `allowance` apart, which as a rule is the setting's rounding.
bool IsSame(const Value& wanted, const Value& found, double allowance = 0);

// Whether setting it to `value` must be confirmed.
bool MustAsk(const Setting& setting, const Value& value);

}  // namespace rolu
