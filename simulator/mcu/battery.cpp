#include "simulator/mcu/battery.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

constexpr BatterySystem k24VSystem = {0.01582, "0.01582", 0x052F, 0x05AE, 0x05ED};
constexpr BatterySystem k12VSystem = {0.015385, "0.015385", 0x02AA, 0x02EB, 0x030C};

std::optional<BatteryMode> ParseMode(std::string_view field) {
  const std::optional<std::uint16_t> number = ParseHex(field);
  if (number == 2) return BatteryMode::k24V;
  if (number == 3) return BatteryMode::k12V;
  return std::nullopt;
}

std::optional<Protection> ParseProtection(char field) {
  const std::optional<bool> flag = ParseFlag(field);
  if (!flag) return std::nullopt;
  return *flag ? Protection::kLowBattery : Protection::kPreboot;
}

AnswerLines ReadVoltage(McuModel& model, std::string_view /*fields*/, TimePoint now) {
  return {FormatHex(model.battery.RawAt(now), 4)};
}

AnswerLines ReadScale(McuModel& /*model*/, std::string_view fields, TimePoint /*now*/) {
  const std::optional<BatteryMode> mode = ParseMode(fields);
  if (!mode) return RefuseParameter();
  return {std::string(SystemOf(*mode).scale_text)};
}

AnswerLines ReadRange(McuModel& /*model*/, std::string_view fields, TimePoint /*now*/) {
  const std::optional<BatteryMode> mode = ParseMode(fields);
  if (!mode) return RefuseParameter();
  const BatterySystem& system = SystemOf(*mode);
  return {FormatHex(system.range_start, 4) + FormatHex(system.range_mid, 4) + FormatHex(system.range_end, 4)};
}

AnswerLines ReadMode(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(static_cast<std::uint16_t>(model.battery.mode), 2)};
}

AnswerLines WriteMode(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<BatteryMode> mode = ParseMode(fields);
  if (!mode) return RefuseParameter();
  model.battery.mode = *mode;
  return AnswerOk();
}

AnswerLines ReadProtections(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  std::string flags;
  for (const bool enabled : model.battery.protection_enabled) flags += FormatFlag(enabled);
  return {flags};
}

AnswerLines WriteProtections(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<bool> preboot = ParseFlag(fields[0]);
  const std::optional<bool> low_battery = ParseFlag(fields[1]);
  if (!preboot || !low_battery) return RefuseParameter();
  model.battery.protection_enabled = {*preboot, *low_battery};
  return AnswerOk();
}

AnswerLines ReadThreshold(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<BatteryMode> mode = ParseMode(fields.substr(0, 1));
  const std::optional<Protection> protection = ParseProtection(fields[1]);
  if (!mode || !protection) return RefuseParameter();
  return {FormatHex(model.battery.Threshold(*mode, *protection), 4)};
}

AnswerLines WriteThreshold(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<BatteryMode> mode = ParseMode(fields.substr(0, 1));
  const std::optional<Protection> protection = ParseProtection(fields[1]);
  const std::optional<std::uint16_t> raw = ParseHex(fields.substr(2));
  if (!mode || !protection || !raw) return RefuseParameter();
  const BatterySystem& system = SystemOf(*mode);
  if (*raw < system.range_start || *raw > system.range_end) return RefuseParameter();
  model.battery.Threshold(*mode, *protection) = *raw;
  return AnswerOk();
}

}  // namespace

const BatterySystem& SystemOf(BatteryMode mode) {
  return mode == BatteryMode::k24V ? k24VSystem : k12VSystem;
}

std::uint16_t& BatteryState::Threshold(BatteryMode of, Protection protection) {
  return thresholds_[of == BatteryMode::k24V ? 0 : 1][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::Threshold(BatteryMode of, Protection protection) const {
  return thresholds_[of == BatteryMode::k24V ? 0 : 1][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::RawAt(TimePoint now) const {
  const double units = std::round(VoltsAt(now) / SystemOf(mode).volts_per_unit);
  return static_cast<std::uint16_t>(std::clamp(units, 0.0, 65535.0));
}

double BatteryState::LowVolts() const {
  return (Threshold(mode, Protection::kLowBattery) - 0.5) * SystemOf(mode).volts_per_unit;
}

bool BatteryState::IsProtectedAndLow(TimePoint now) const {
  return protection_enabled[static_cast<std::size_t>(Protection::kLowBattery)] && VoltsAt(now) < LowVolts();
}

std::optional<TimePoint> BatteryState::NextLowBatteryChange(TimePoint now) const {
  // A curve that is all but level may still be on the same side at the computed time: whoever waits
  // for it then waits a little longer, and does not spin.
  constexpr std::chrono::milliseconds kLeast(1);
  const std::optional<std::chrono::nanoseconds> crossing = curve.NextCrossing(LowVolts(), now - curve_start);
  if (!crossing) return std::nullopt;
  return std::max(curve_start + *crossing, now + kLeast);
}

void BatteryState::RestoreDefaults() {
  BatteryState defaults;
  defaults.curve = std::move(curve);
  defaults.curve_start = curve_start;
  *this = std::move(defaults);
}

std::vector<McuCommand> BatteryCommands() {
  return {
      {"MCVG", 0, 0, ReadVoltage},      {"MCVU", 1, 1, ReadScale},     {"MCPR", 1, 1, ReadRange},
      {"MCBG", 0, 0, ReadMode},         {"MCBS", 2, 2, WriteMode},     {"MCCG", 0, 0, ReadProtections},
      {"MCCS", 2, 2, WriteProtections}, {"MCPG", 2, 2, ReadThreshold}, {"MCPS", 6, 6, WriteThreshold},
  };
}

}  // namespace rolu_sim
