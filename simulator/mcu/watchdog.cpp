#include "simulator/mcu/watchdog.h"

#include <chrono>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

AnswerLines Enable(McuModel& model, std::string_view /*fields*/, TimePoint now) {
  model.watchdog.enabled = true;
  model.watchdog.last_trigger = now;
  return AnswerOk();
}

AnswerLines Disable(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  model.watchdog.enabled = false;
  return AnswerOk();
}

AnswerLines Trigger(McuModel& model, std::string_view /*fields*/, TimePoint now) {
  model.watchdog.last_trigger = now;
  ++model.watchdog.trigger_count;
  return AnswerOk();
}

AnswerLines WriteTime(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<std::uint16_t> time = ParseHex(fields);
  if (!time || *time == 0) return RefuseParameter();
  model.watchdog.time = *time;
  return AnswerOk();
}

AnswerLines ReadTime(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(model.watchdog.time, 4)};
}

}  // namespace

std::optional<TimePoint> WatchdogState::BiteDue() const {
  if (!enabled) return std::nullopt;
  return last_trigger + std::chrono::seconds(time);
}

void WatchdogState::RestoreDefaults() {
  const WatchdogState before = *this;
  *this = {};
  trigger_count = before.trigger_count;
  last_trigger = before.last_trigger;
}

std::vector<McuCommand> WatchdogCommands() {
  return {
      {"WDTE", 0, 0, Enable},    {"WDTD", 0, 0, Disable},  {"WDTR", 0, 0, Trigger},
      {"WDTS", 4, 4, WriteTime}, {"WDTG", 0, 0, ReadTime},
  };
}

}  // namespace rolu_sim
