#include "simulator/mcu/power_off.h"

#include <optional>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

std::optional<DelayType> ParseDelayType(char field) {
  if (field < '0' || field > '7' || field == '5') return std::nullopt;
  return static_cast<DelayType>(field - '0');
}

AnswerLines WriteDelay(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<DelayType> type = ParseDelayType(fields[0]);
  const std::optional<std::uint16_t> delay = ParseHex(fields.substr(1));
  if (!type || !delay || *delay == 0) return RefuseParameter();
  model.power_off.Delay(*type) = *delay;
  return AnswerOk();
}

AnswerLines ReadDelay(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<DelayType> type = ParseDelayType(fields[0]);
  if (!type) return RefuseParameter();
  return {FormatHex(model.power_off.Delay(*type), 4)};
}

AnswerLines WriteForcedShutdownDelay(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<std::uint16_t> delay = ParseHex(fields);
  if (!delay || *delay == 0) return RefuseParameter();
  model.power_off.forced_shutdown_delay = *delay;
  return AnswerOk();
}

AnswerLines ReadForcedShutdownDelay(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(model.power_off.forced_shutdown_delay, 4)};
}

AnswerLines WriteForcedShutdown(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  return SetFlag(model.power_off.forced_shutdown, fields[0]);
}

AnswerLines ReadForcedShutdown(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatFlag(model.power_off.forced_shutdown)};
}

AnswerLines PowerOffNow(McuModel& model, std::string_view /*fields*/, TimePoint now) {
  model.RecordEvent(McuEventKind::kPowerOff, now);
  return AnswerOk();
}

}  // namespace

std::vector<McuCommand> PowerOffCommands() {
  return {
      {"MCUS", 5, 5, WriteDelay},
      {"MCUG", 1, 1, ReadDelay},
      {"MSDS", 4, 4, WriteForcedShutdownDelay},
      {"MSDG", 0, 0, ReadForcedShutdownDelay},
      {"MSSS", 1, 1, WriteForcedShutdown},
      {"MSSG", 0, 0, ReadForcedShutdown},
      {"ATPO", 0, 0, PowerOffNow},
  };
}

}  // namespace rolu_sim
