#include "simulator/mcu/ignition.h"

#include <string>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

bool IsDigit(char field) {
  return field >= '0' && field <= '9';
}

std::uint8_t DigitOf(char field) {
  return static_cast<std::uint8_t>(field - '0');
}

AnswerLines ReadIgnition(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {model.ignition.on ? "ON" : "OFF"};
}

AnswerLines WriteMode(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  if (fields != "1" && fields != "2") return RefuseParameter();
  model.ignition.mode = DigitOf(fields[0]);
  return AnswerOk();
}

AnswerLines ReadMode(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {std::to_string(model.ignition.mode)};
}

AnswerLines WritePrePowerOffAlarm(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  return SetFlag(model.ignition.pre_power_off_alarm, fields[0]);
}

AnswerLines ReadPrePowerOffAlarm(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatFlag(model.ignition.pre_power_off_alarm)};
}

AnswerLines WriteOperatingModes(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  if (!IsDigit(fields[0]) || !IsDigit(fields[1])) return RefuseParameter();
  model.ignition.keep_alive_mode = DigitOf(fields[0]);
  model.ignition.at_mode = DigitOf(fields[1]);
  return AnswerOk();
}

AnswerLines ReadOperatingModes(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {std::to_string(model.ignition.keep_alive_mode) + std::to_string(model.ignition.at_mode)};
}

}  // namespace

void IgnitionState::RestoreDefaults() {
  const bool key = on;
  *this = {};
  on = key;
}

std::vector<McuCommand> IgnitionCommands() {
  return {
      {"IGNG", 0, 0, ReadIgnition},
      {"IGMS", 1, 1, WriteMode},
      {"IGMG", 0, 0, ReadMode},
      {"MPAS", 1, 1, WritePrePowerOffAlarm},
      {"MPAG", 0, 0, ReadPrePowerOffAlarm},
      {"MCAS", 2, 2, WriteOperatingModes},
      {"MCAG", 0, 0, ReadOperatingModes},
  };
}

}  // namespace rolu_sim
