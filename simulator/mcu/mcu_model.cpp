#include "simulator/mcu/mcu_model.h"

#include <utility>

namespace rolu_sim {
namespace {

AnswerLines RestoreDefaults(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  model.RestoreDefaults();
  return AnswerOk();
}

std::vector<McuCommand> SettingsCommands() {
  return {{"EEDF", 0, 0, RestoreDefaults}};
}

std::vector<McuCommand> AllCommands() {
  std::vector<McuCommand> all;
  for (const auto subject : {BackupBatteryCommands, BatteryCommands, ClockCommands, GSensorCommands,
                             IdentityCommands, IgnitionCommands, PeripheralSwitchCommands, PowerOffCommands,
                             PowerSourceCommands, SettingsCommands, WatchdogCommands}) {
    const std::vector<McuCommand> commands = subject();
    all.insert(all.end(), commands.begin(), commands.end());
  }
  return all;
}

// The longest code wins, so that one code may begin with another.
const McuCommand* FindCommand(std::string_view text) {
  static const std::vector<McuCommand> commands = AllCommands();
  const McuCommand* found = nullptr;
  for (const McuCommand& command : commands) {
    if (text.substr(0, command.code.size()) != command.code) continue;
    if (found == nullptr || command.code.size() > found->code.size()) found = &command;
  }
  return found;
}

}  // namespace

AnswerLines McuModel::Execute(std::string_view command, TimePoint now) {
  const McuCommand* const known = FindCommand(command);
  if (known == nullptr) return {std::string(kUnknownCommandReply)};
  const std::string_view fields = command.substr(known->code.size());
  if (fields.size() < known->min_field_characters || fields.size() > known->max_field_characters) {
    return RefuseParameter();
  }
  return known->execute(*this, fields, now);
}

void McuModel::SetVehicle(BatteryMode mode) {
  constexpr double kGoodVoltsOf12V = 12.6;
  battery.mode = mode;
  SetBatteryVolts(mode == BatteryMode::k24V ? 2 * kGoodVoltsOf12V : kGoodVoltsOf12V);
}

void McuModel::SetBatteryCurve(VoltageCurve curve, TimePoint start) {
  battery.curve = std::move(curve);
  battery.curve_start = start;
}

bool McuModel::ShakeTo(const GSensorSample& sample) {
  gsensor.sample = sample;
  if (!gsensor.RaisesAlarm()) return false;
  unsent_.push_back(AlarmLine(sample));
  return true;
}

// The message class 00, the kind, and nothing more to tell.
void McuModel::WarnOfPowerOff(PowerOffWarning warning) {
  unsent_.push_back("[00" + FormatHex(static_cast<std::uint16_t>(warning), 2) + "]");
}

void McuModel::RestoreDefaults() {
  battery.RestoreDefaults();
  clock.RestoreDefaults();
  gsensor.RestoreDefaults();
  ignition.RestoreDefaults();
  peripheral_switch = {};
  power_off.RestoreDefaults();
  power_sources.RestoreDefaults();
  watchdog.RestoreDefaults();
}

}  // namespace rolu_sim
