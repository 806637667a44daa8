// What the MCU does for each command of the table.

#include <fmt/format.h>

#include <bitset>
#include <limits>

#include "protocol/commands.h"
#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

using rolu_protocol::IndexOf;
using rolu_protocol::Values;

std::string Done() {
  return std::string(rolu_protocol::kDoneReply);
}

std::string Refused() {
  return std::string(rolu_protocol::kRefusedParameterReply);
}

std::string Byte(unsigned value) {
  return fmt::format("{:02X}", value);
}

std::string Word(unsigned value) {
  return fmt::format("{:04X}", value);
}

std::string Flag(bool flag) {
  return flag ? "1" : "0";
}

template <std::size_t kCount>
std::string Flags(const std::array<bool, kCount>& flags) {
  std::string line;
  for (const bool flag : flags) line += Flag(flag);
  return line;
}

template <typename Setting, typename Value>
std::string Set(Setting& setting, const Value& value) {
  setting = static_cast<Setting>(value);
  return Done();
}

template <typename Setting>
std::string SetWithin(Setting& setting, std::uint64_t value, std::uint64_t least,
                      std::uint64_t most = std::numeric_limits<Setting>::max()) {
  return value < least || value > most ? Refused() : Set(setting, value);
}

template <std::size_t kCount>
std::string SetOneOf(std::array<bool, kCount>& switches, std::uint64_t number, bool on) {
  return number < kCount ? Set(switches[static_cast<std::size_t>(number)], on) : Refused();
}

// At 115200 bit/s an answer takes less, so the program has it when the power goes.
constexpr std::chrono::milliseconds kAnswerTime(5);

}  // namespace

AnswerLines McuModel::Execute(std::string_view command, TimePoint now) {
  const rolu_protocol::Command* const known = rolu_protocol::FindCommand(command);
  if (known == nullptr) return {std::string(rolu_protocol::kUnknownCommandReply)};
  // An answer of two lines first says that the command has arrived, then what became of it.
  AnswerLines lines(static_cast<std::size_t>(known->answer_lines) - 1, Done());
  const std::optional<Values> fields = rolu_protocol::ParseCommandFields(command, *known);
  lines.push_back(fields ? CarryOut(*known, *fields, now) : Refused());
  return lines;
}

std::string McuModel::CarryOut(const rolu_protocol::Command& command, const Values& fields, TimePoint now) {
  const auto number = [&fields](std::size_t field) { return fields[field].number; };
  const auto is_on = [&fields](std::size_t field) { return fields[field].number == 1; };
  const auto mode = [&] { return static_cast<BatteryMode>(number(0)); };
  const auto thresholds = [&] { return SystemOf(mode()).thresholds; };
  const auto threshold = [&]() -> std::uint16_t& {
    return battery.Threshold(mode(), static_cast<Protection>(number(1)));
  };
  const auto delay = [&]() -> std::uint16_t& { return power_off.Delay(static_cast<DelayType>(number(0))); };

  switch (IndexOf(command)) {
    case IndexOf("ATPO"):
      // Its answer leaves before.
      if (computer.power != ComputerPower::kOff) ordered_cut_ = time.At(now + kAnswerTime);
      return Done();
    case IndexOf("EEDF"):
      RestoreDefaults();
      return Done();

    case IndexOf("MCVG"):
      return Word(battery.RawAt(now));
    case IndexOf("MCVU"):
      return std::string(SystemOf(mode()).scale_text);
    case IndexOf("MCPR"):
      return Word(thresholds().least) + Word(thresholds().middle) + Word(thresholds().most);
    case IndexOf("MCBG"):
      return Byte(static_cast<unsigned>(battery.mode));
    case IndexOf("MCBS"):
      return Set(battery.mode, mode());
    case IndexOf("MCCG"):
      return Flags(battery.protection_enabled);
    case IndexOf("MCCS"):
      battery.protection_enabled = {is_on(0), is_on(1)};
      return Done();
    case IndexOf("MCPG"):
      return Word(threshold());
    case IndexOf("MCPS"):
      return SetWithin(threshold(), number(2), thresholds().least, thresholds().most);

    case IndexOf("MCUG"):
      return Word(delay());
    case IndexOf("MCUS"):
      return SetWithin(delay(), number(1), 1);
    case IndexOf("MSDG"):
      return Word(power_off.forced_shutdown_delay);
    case IndexOf("MSDS"):
      return SetWithin(power_off.forced_shutdown_delay, number(0), 1);
    case IndexOf("MSSG"):
      return Flag(power_off.forced_shutdown);
    case IndexOf("MSSS"):
      return Set(power_off.forced_shutdown, is_on(0));

    case IndexOf("IGNG"):
      return ignition.on ? "ON" : "OFF";
    case IndexOf("IGMG"):
      return std::to_string(ignition.mode);
    case IndexOf("IGMS"):
      return SetWithin(ignition.mode, number(0), 1, 2);
    case IndexOf("MPAG"):
      return Flag(ignition.pre_power_off_alarm);
    case IndexOf("MPAS"):
      return Set(ignition.pre_power_off_alarm, is_on(0));
    case IndexOf("MCAG"):
      return std::to_string(ignition.keep_alive_mode) + std::to_string(ignition.at_mode);
    case IndexOf("MCAS"):
      if (number(1) > 9) return Refused();
      ignition.keep_alive_mode = static_cast<std::uint8_t>(number(0));
      return Set(ignition.at_mode, number(1));

    case IndexOf("SDMG"):
      return Flags(power_sources.shutdown_enabled);
    case IndexOf("SDMS"):
      return SetOneOf(power_sources.shutdown_enabled, number(0), is_on(1));
    case IndexOf("WKMG"):
      return Flags(power_sources.wakeup_enabled);
    case IndexOf("WKMS"):
      if (!rolu_protocol::IsWakeupSource(number(0))) return Refused();
      return SetOneOf(power_sources.wakeup_enabled, number(0), is_on(1));
    case IndexOf("WKSG"):
      return Byte(power_sources.last_wakeup_code);

    case IndexOf("RTCG"):
      return fmt::format("{:014X}", NumberOf(clock.TimeAt(time.At(now))));
    case IndexOf("RTCS"): {
      const std::optional<ClockTime> set = ClockTimeOf(number(0));
      if (!set) return Refused();
      clock.Set(*set, time.At(now));
      return Done();
    }
    case IndexOf("RTAG"):
      return fmt::format("{:06X}", rolu_protocol::NumberOf(clock.alarm));
    case IndexOf("RTAS"): {
      const std::optional<rolu_protocol::AlarmTime> alarm = ValidAlarmTimeOf(number(0));
      return alarm ? Set(clock.alarm, *alarm) : Refused();
    }

    case IndexOf("B03"):
      return Word(backup_battery.temperature_tenths_kelvin);
    case IndexOf("B04"):
      return Word(backup_battery.millivolts);
    case IndexOf("B05"):
      return std::bitset<16>(backup_battery.status_bits).to_string();
    case IndexOf("B08"):
      return Word(backup_battery.remaining_capacity);
    case IndexOf("B09"):
      return Word(backup_battery.info);
    case IndexOf("B11"):
      return Word(backup_battery.remaining_time);
    case IndexOf("B12"):
      return Word(backup_battery.time_to_full);
    case IndexOf("B22"):
      return Word(backup_battery.percent);

    case IndexOf("WDTE"):
      watchdog.last_trigger = time.At(now);
      return Set(watchdog.enabled, true);
    case IndexOf("WDTD"):
      return Set(watchdog.enabled, false);
    case IndexOf("WDTR"):
      ++watchdog.trigger_count;
      return Set(watchdog.last_trigger, time.At(now));
    case IndexOf("WDTG"):
      return Word(watchdog.time);
    case IndexOf("WDTS"):
      return SetWithin(watchdog.time, number(0), 1);

    case IndexOf("GSO"):
      return Set(gsensor.on, true);
    case IndexOf("GSF"):
      return Set(gsensor.on, false);
    // 'V' is a valid sample, 'I' an invalid one.
    case IndexOf("GSV"):
      return gsensor.on ? "V" + FormatSample(gsensor.sample) : "I" + FormatSample({});
    case IndexOf("GSRG"):
      return Byte(gsensor.resolution);
    case IndexOf("GSRS"):
      return SetWithin(gsensor.resolution, number(0), 0, 3);
    case IndexOf("ARGI"):
      if (is_on(0) && !gsensor.on) return std::string(rolu_protocol::kSensorOffReply);
      return Set(gsensor.alarm_on, is_on(0));
    case IndexOf("GSIG"):
      return Byte(gsensor.alarm_threshold);
    case IndexOf("GSIS"):
      return SetWithin(gsensor.alarm_threshold, number(0), 0x20, 0xF0);
    case IndexOf("GSWG"):
      return Byte(gsensor.wakeup_threshold);
    case IndexOf("GSWS"):
      return SetWithin(gsensor.wakeup_threshold, number(0), 1);

    case IndexOf("MCG"):
      return Flag(peripheral_switch.on);
    case IndexOf("MCS"):
      return SetWithin(peripheral_switch.on, number(1), 0, 1);
  }
  // Commands without a case: a test sends each command of the table, so that none is forgotten here.
  return std::string(command.factory_answer.empty() ? rolu_protocol::kUnknownCommandReply
                                                    : command.factory_answer);
}

}  // namespace rolu_sim
