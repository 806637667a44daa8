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

// The families of the library that need an initialization, in the order of bringing them up.
enum class Family { kCore, kVpm, kWatchdog, kGsensor, kPeripherals };

// A setting's value as JSON: a number, a boolean, a text, or a list of numbers.
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

// Which changes must be confirmed first.
enum class AsksFirst { kNever, kAlways, kSwitchingOff, kSwitchingOn };

using Reader = std::function<ROLU_STATUS(Value&)>;
using Writer = std::function<ROLU_STATUS(const Value&)>;

// One thing that the board can tell, and perhaps be told: a row of the table that help, man page, completion
// and all commands share.
struct Setting {
  std::string_view name;
  std::string_view help;
  Family family = Family::kVpm;
  Kind kind = Kind::kNumber;
  std::string_view unit{};
  double minimum = 0;
  double maximum = 0;
  std::vector<std::string_view> choices{};
  // How far the value that reads back may differ from the value that was set: the MCU rounds to this step.
  double rounding = 0;

  Reader read{};
  Writer write{};  // null: the setting is read-only

  // Whether `save` and `load` include the setting. They leave out the switches of peripherals, which are
  // momentary.
  bool saved = true;
  AsksFirst asks = AsksFirst::kNever;
  std::string_view consequence{};  // what the change does, for the question before it

  bool IsWritable() const { return write != nullptr; }
  bool IsSaved() const { return IsWritable() && saved; }
};

// All settings, group by group. `load` and `set` apply changes in this order: the battery mode before the
// protections that it switches off, a delay before the switch that starts it.
const std::vector<Setting>& Settings();

struct SettingGroup {
  std::string_view name;   // the part before the dot
  std::string_view title;  // "Car battery"
};
const std::vector<SettingGroup>& SettingGroups();

// The two digital inputs, whose lines must be prepared before they can be read.
inline constexpr std::string_view kInputPins = "pins.inputs";

// The unit of delays and the like. The MCU does not tell how long it is.
inline constexpr std::string_view kMcuUnits = "MCU units";
inline constexpr char kMcuUnitsHelp[] =
    "MCU units are the MCU's own: it does not tell how long one is. 'rolu doctor --calibrate' measures it.";

// Null when there is no setting of this name.
const Setting* FindSetting(std::string_view name);

// The setting of this name. Otherwise throws CommandError(kWrongUse) and suggests the nearest name.
const Setting& SettingNamed(std::string_view name);

// The settings of these names, in this order. A name may be a setting or a group ("battery"); without names,
// all settings. Throws as SettingNamed does.
std::vector<const Setting*> SettingsNamed(const std::vector<std::string>& names);

// The message: there is no setting "battery.mod"; did you mean battery.mode?
std::string NoSetting(std::string_view name);

// The part of the name before the first dot.
std::string_view GroupOf(const Setting& setting);

// The values that can be set or, for a read-only setting, read: "on or off", "12V or 24V".
std::string RangeText(const Setting& setting);

// Reads the whole of `text` as a value of the setting. Otherwise throws CommandError(kWrongUse) with the
// reason: watchdog.time must be a whole number from 1 to 65535, not "0x".
Value ParseValue(const Setting& setting, std::string_view text);

// The same for a value in JSON. A time of day is a text there too, so "7:30" becomes "07:30".
Value Normalised(const Setting& setting, const Value& value);

// The same reason for a value from a file; empty when the setting takes the value.
std::string WhyNotTaken(const Setting& setting, const Value& value);

// The value for people and scripts: "12.600", "on", "07:30", "1 0". It does not have the unit.
std::string ValueText(const Setting& setting, const Value& value);

// A voltage in steps of 0.001 V, and its text: "12.600".
double Thousandths(float volts);
std::string VoltsText(double volts);

struct TimeOfDay {
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
};
// Reads "07:30" or "7:30". Nothing when `text` is not a time of day.
std::optional<TimeOfDay> ParseTimeOfDay(std::string_view text);

// The time of the MCU's clock as "2026-11-24 21:38:15".
std::string ClockText(const VPM_RTC_TIME& time);

// Whether the values are equal. Numbers may differ by `allowance`, which is usually the setting's rounding.
bool IsSame(const Value& wanted, const Value& found, double allowance = 0);

// Whether the user must confirm before the setting gets `value`.
bool MustAsk(const Setting& setting, const Value& value);

}  // namespace rolu
