#include "simulator/mcu/power_sources.h"

#include <optional>
#include <string>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

template <std::size_t kCount>
AnswerLines ReadSwitches(const std::array<bool, kCount>& switches) {
  std::string line;
  for (const bool enabled : switches) line += FormatFlag(enabled);
  return {line};
}

// A decimal number without leading zeros.
std::optional<std::size_t> ParseWakeupSource(std::string_view field) {
  for (std::size_t source = 0; source < PowerSourcesState::kWakeupSources; ++source) {
    const bool stands_for_none = source >= 7 && source <= 9;
    if (!stands_for_none && field == std::to_string(source)) return source;
  }
  return std::nullopt;
}

AnswerLines WriteShutdownSource(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<bool> source = ParseFlag(fields[0]);  // its two numbers are a flag's
  if (!source) return RefuseParameter();
  return SetFlag(model.power_sources.shutdown_enabled[*source ? 1 : 0], fields[1]);
}

AnswerLines ReadShutdownSources(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return ReadSwitches(model.power_sources.shutdown_enabled);
}

// The state is the last character, the source all before it: "101" enables source 10.
AnswerLines WriteWakeupSource(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<std::size_t> source = ParseWakeupSource(fields.substr(0, fields.size() - 1));
  if (!source) return RefuseParameter();
  return SetFlag(model.power_sources.wakeup_enabled[*source], fields.back());
}

AnswerLines ReadWakeupSources(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return ReadSwitches(model.power_sources.wakeup_enabled);
}

AnswerLines ReadLastWakeup(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(model.power_sources.last_wakeup_code, 2)};
}

}  // namespace

void PowerSourcesState::RestoreDefaults() {
  const std::uint8_t recorded = last_wakeup_code;
  *this = {};
  last_wakeup_code = recorded;
}

std::vector<McuCommand> PowerSourceCommands() {
  return {
      {"SDMS", 2, 2, WriteShutdownSource}, {"SDMG", 0, 0, ReadShutdownSources},
      {"WKMS", 2, 3, WriteWakeupSource},   {"WKMG", 0, 0, ReadWakeupSources},
      {"WKSG", 0, 0, ReadLastWakeup},
  };
}

}  // namespace rolu_sim
