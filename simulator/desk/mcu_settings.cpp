#include "simulator/desk/mcu_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "cli/nearest_name.h"

namespace rolu_sim {
namespace {

enum class Kind { kUnits, kSwitch, kVoltsOf12, kVoltsOf24 };

// {0} in a command is the value, {1} and {2} are the switches of the pre-boot and the low-battery protection,
// which have one command for both.
struct McuSetting {
  std::string_view name;
  Kind kind;
  std::string_view command;
};

constexpr McuSetting kSettings[] = {
    {"battery.12v.preboot-threshold", Kind::kVoltsOf12, "MCPS30{0:04X}"},
    {"battery.12v.lbp-threshold", Kind::kVoltsOf12, "MCPS31{0:04X}"},
    {"battery.24v.preboot-threshold", Kind::kVoltsOf24, "MCPS20{0:04X}"},
    {"battery.24v.lbp-threshold", Kind::kVoltsOf24, "MCPS21{0:04X}"},
    {"battery.low-event-delay", Kind::kUnits, "MCUS0{0:04X}"},
    {"battery.low-hard-off-delay", Kind::kUnits, "MCUS1{0:04X}"},
    {"battery.preboot", Kind::kSwitch, "MCCS{0}{2}"},
    {"battery.lbp", Kind::kSwitch, "MCCS{1}{0}"},
    {"ignition.on-delay", Kind::kUnits, "MCUS2{0:04X}"},
    {"ignition.off-event-delay", Kind::kUnits, "MCUS3{0:04X}"},
    {"ignition.hard-off-delay", Kind::kUnits, "MCUS4{0:04X}"},
    {"ignition.suspend-hard-off-delay", Kind::kUnits, "MCUS6{0:04X}"},
    {"poweroff.warning-delay", Kind::kUnits, "MCUS7{0:04X}"},
    {"poweroff.warning", Kind::kSwitch, "MPAS{0}"},
    {"shutdown.source-0", Kind::kSwitch, "SDMS0{0}"},
    {"shutdown.source-1", Kind::kSwitch, "SDMS1{0}"},
    {"shutdown.forced-delay", Kind::kUnits, "MSDS{0:04X}"},
    {"shutdown.forced", Kind::kSwitch, "MSSS{0}"},
    {"wakeup.source-0", Kind::kSwitch, "WKMS0{0}"},
    {"wakeup.source-1", Kind::kSwitch, "WKMS1{0}"},
    {"wakeup.source-2", Kind::kSwitch, "WKMS2{0}"},
    {"wakeup.source-3", Kind::kSwitch, "WKMS3{0}"},
    {"wakeup.source-4", Kind::kSwitch, "WKMS4{0}"},
    {"wakeup.source-5", Kind::kSwitch, "WKMS5{0}"},
    {"wakeup.source-10", Kind::kSwitch, "WKMS10{0}"},
    {"alarm.active", Kind::kSwitch, "WKMS6{0}"},
    {"watchdog.time", Kind::kUnits, "WDTS{0:04X}"},
};

struct ValueForm {
  double most;
  const char* words;
  double step;  // a value on the wire counts these
};

ValueForm FormOf(Kind kind) {
  const auto volts = [](BatteryMode mode) {
    return ValueForm{VoltageCurve::kMaxVolts, "a voltage, such as 11.5", SystemOf(mode).volts_per_unit};
  };
  switch (kind) {
    case Kind::kVoltsOf12:
      return volts(BatteryMode::k12V);
    case Kind::kVoltsOf24:
      return volts(BatteryMode::k24V);
    case Kind::kSwitch:
      return {1, "on or off", 1};
    case Kind::kUnits:
      return {65535, "a whole number of MCU units up to 65535", 1};
  }
  return {};
}

std::optional<double> ParseValue(Kind kind, const std::string& value) {
  if (kind == Kind::kSwitch) {
    if (value != "on" && value != "off") return std::nullopt;
    return value == "on" ? 1 : 0;
  }
  double number = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, number);
  const bool is_whole = std::trunc(number) == number;
  if (error != std::errc{} || stop != end || (kind == Kind::kUnits && !is_whole)) return std::nullopt;
  return number;
}

// The value as it goes over the wire.
unsigned RawOf(const McuSetting& setting, const std::string& value) {
  const ValueForm form = FormOf(setting.kind);
  const std::optional<double> number = ParseValue(setting.kind, value);
  if (!number || !(*number >= 0 && *number <= form.most)) {
    throw UsageError(fmt::format("{} must be {}, not \"{}\"", setting.name, form.words, value));
  }
  return static_cast<unsigned>(std::lround(*number / form.step));
}

}  // namespace

std::vector<std::string> McuSettingNames() {
  std::vector<std::string> names;
  for (const McuSetting& setting : kSettings) names.emplace_back(setting.name);
  return names;
}

std::function<void(McuModel&)> McuSettingOrder(const std::string& name, const std::string& value) {
  const auto* const setting = std::ranges::find(kSettings, name, &McuSetting::name);
  if (setting == std::end(kSettings)) {
    throw UsageError(
        fmt::format("the MCU has no setting \"{}\"{}", name, rolu::Suggestion(name, McuSettingNames())));
  }
  return [setting, value, raw = RawOf(*setting, value)](McuModel& mcu) {
    const auto& [preboot, low_battery] = mcu.battery.protection_enabled;
    const std::string command =
        fmt::format(fmt::runtime(setting->command), raw, preboot ? 1 : 0, low_battery ? 1 : 0);
    const std::string answer = mcu.Execute(command, std::chrono::steady_clock::now()).back();
    if (answer == rolu_protocol::kDoneReply) return;
    throw UsageError(fmt::format("the MCU refuses {}={} ({})", setting->name, value, answer));
  };
}

std::pair<std::string, std::string> SplitMcuSetting(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) {
    throw UsageError(fmt::format("\"{}\" is not NAME=VALUE, as in ignition.hard-off-delay=3", text));
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace rolu_sim
