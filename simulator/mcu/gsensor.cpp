#include "simulator/mcu/gsensor.h"

#include <cstdlib>
#include <optional>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

constexpr int kUnitsPerThresholdStep = 16;

constexpr std::string_view kSensorOffReply = "ERR-G01";

std::string FormatSample(const GSensorSample& sample) {
  std::string fields;
  for (const std::int16_t axis : {sample.x, sample.y, sample.z}) {
    fields += FormatHex(static_cast<std::uint16_t>(axis), 4);
  }
  return fields;
}

AnswerLines SwitchOn(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  model.gsensor.on = true;
  return AnswerOk();
}

AnswerLines SwitchOff(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  model.gsensor.on = false;
  return AnswerOk();
}

// 'V' is a valid sample, 'I' an invalid one.
AnswerLines ReadSample(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  if (!model.gsensor.on) return {"I" + FormatSample({})};
  return {"V" + FormatSample(model.gsensor.sample)};
}

template <std::uint8_t GSensorState::*kRegister>
AnswerLines ReadRegister(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(model.gsensor.*kRegister, 2)};
}

template <std::uint8_t GSensorState::*kRegister, std::uint8_t kLowest, std::uint8_t kHighest>
AnswerLines WriteRegister(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<std::uint16_t> value = ParseHex(fields);
  if (!value || *value < kLowest || *value > kHighest) return RefuseParameter();
  model.gsensor.*kRegister = static_cast<std::uint8_t>(*value);
  return AnswerOk();
}

AnswerLines SwitchAlarm(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  if (fields != "00" && fields != "01") return RefuseParameter();
  const bool enable = fields == "01";
  if (enable && !model.gsensor.on) return {std::string(kSensorOffReply)};
  model.gsensor.alarm_on = enable;
  return AnswerOk();
}

}  // namespace

bool GSensorState::RaisesAlarm() const {
  const int limit = alarm_threshold * kUnitsPerThresholdStep;
  const bool shaken = std::abs(sample.x) > limit || std::abs(sample.y) > limit || std::abs(sample.z) > limit;
  return on && alarm_on && shaken;
}

void GSensorState::RestoreDefaults() {
  const GSensorState before = *this;
  *this = {};
  on = before.on;
  sample = before.sample;
}

std::string AlarmLine(const GSensorSample& sample) {
  return "[GI:" + FormatSample(sample) + "]";
}

std::vector<McuCommand> GSensorCommands() {
  using State = GSensorState;
  return {
      {"GSO", 0, 0, SwitchOn},
      {"GSF", 0, 0, SwitchOff},
      {"GSV", 0, 0, ReadSample},
      {"GSRG", 0, 0, ReadRegister<&State::resolution>},
      {"GSRS", 2, 2, WriteRegister<&State::resolution, 0, 3>},
      {"ARGI", 2, 2, SwitchAlarm},
      {"GSIG", 0, 0, ReadRegister<&State::alarm_threshold>},
      {"GSIS", 2, 2, WriteRegister<&State::alarm_threshold, 0x20, 0xF0>},
      {"GSWG", 0, 0, ReadRegister<&State::wakeup_threshold>},
      {"GSWS", 2, 2, WriteRegister<&State::wakeup_threshold, 0x01, 0xFF>},
  };
}

}  // namespace rolu_sim
