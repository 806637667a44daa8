#include "simulator/desk/readings.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "cli/nearest_name.h"
#include "protocol/values.h"
#include "simulator/desk/desk.h"

namespace rolu_sim {
namespace {

double Seconds(std::chrono::nanoseconds duration) {
  return std::round(std::chrono::duration<double>(duration).count() * 1e6) / 1e6;
}

Json DescribeBattery(const McuModel& mcu) {
  const TimePoint now = std::chrono::steady_clock::now();
  const auto threshold = [&](BatteryMode mode, Protection protection) {
    return std::round(mcu.battery.Threshold(mode, protection) * SystemOf(mode).volts_per_unit * 1000) / 1000;
  };
  const auto thresholds = [&](Protection protection) {
    return Json{{"on", mcu.battery.protection_enabled[static_cast<std::size_t>(protection)]},
                {"threshold_of_12v_system_v", threshold(BatteryMode::k12V, protection)},
                {"threshold_of_24v_system_v", threshold(BatteryMode::k24V, protection)}};
  };
  return {{"system_v", SystemOf(mcu.battery.mode).volts},
          {"voltage_v", std::round(mcu.battery.VoltsAt(now) * 1000) / 1000},
          {"reading_raw", mcu.battery.RawAt(now)},
          {"preboot_protection", thresholds(Protection::kPreboot)},
          {"low_battery_protection", thresholds(Protection::kLowBattery)}};
}

template <std::size_t N>
Json NumbersOf(const std::array<bool, N>& switches) {
  Json numbers = Json::array();
  for (std::size_t number = 0; number < N; ++number) {
    if (switches[number]) numbers.push_back(number);
  }
  return numbers;
}

Json DescribeClock(const McuModel& mcu) {
  const TimePoint real_now = std::chrono::steady_clock::now();
  const McuTimePoint now = mcu.time.At(real_now);
  const rolu_protocol::AlarmTime& alarm = mcu.clock.alarm;
  const auto next = mcu.clock.NextAlarm(now);
  const bool is_on = mcu.power_sources.wakeup_enabled[rolu_protocol::kAlarmSource];
  const char* repeats = "never";
  if (alarm.match_minute) repeats = "hourly";
  if (alarm.match_hour) repeats = "daily";
  if (alarm.match_weekday) repeats = "weekly";
  return {{"time", FormatClockTime(mcu.clock.TimeAt(now))},
          {"weekday", mcu.clock.TimeAt(now).weekday},
          {"alarm",
           {{"on", is_on},
            {"repeats", repeats},
            {"weekday", alarm.weekday},
            {"time", fmt::format("{:02}:{:02}", alarm.hour, alarm.minute)},
            {"comes_in_s",
             is_on && next ? Json(Seconds(mcu.time.RealTimeOf(*next) - real_now)) : Json(nullptr)}}}};
}

Json DescribeWatchdog(Desk& desk) {
  const int bites = desk.BiteCount();
  return desk.board().mcu().WithModel([&](McuModel& mcu) {
    const TimePoint now = std::chrono::steady_clock::now();
    const auto due = mcu.BiteDue();
    return Json{{"on", mcu.watchdog.enabled},
                {"time_units", mcu.watchdog.time},
                {"left_s", due ? Json(Seconds(mcu.time.RealTimeOf(*due) - now)) : Json(nullptr)},
                {"triggers", mcu.watchdog.trigger_count},
                {"bites", bites}};
  });
}

Json DescribeCuts(Desk& desk, const McuModel& mcu) {
  Json cuts = Json::array();
  for (const McuEvent& event : mcu.Events()) {
    if (event.kind != McuEventKind::kPowerCut) continue;
    cuts.push_back({{"t_s", Seconds(event.time - desk.start())}, {"cause", event.cause}});
  }
  return cuts;
}

// What the MCU counts, and the real time that is left of it.
Json DescribeCountdowns(const McuModel& mcu) {
  const TimePoint now = std::chrono::steady_clock::now();
  Json countdowns = Json::array();
  for (const McuModel::Countdown& countdown : mcu.Countdowns(now)) {
    Json entry = {{"event", NameOf(countdown.kind)}, {"left_s", Seconds(countdown.due - now)}};
    if (!countdown.cause.empty()) entry["cause"] = countdown.cause;
    countdowns.push_back(std::move(entry));
  }
  return countdowns;
}

Json DescribePowerOff(Desk& desk) {
  constexpr std::array kPowers = {"on", "off", "suspended"};  // in the order of ComputerPower
  return desk.board().mcu().WithModel([&](const McuModel& mcu) {
    const PowerOffState& state = mcu.power_off;
    return Json{{"computer", kPowers[static_cast<std::size_t>(mcu.computer.power)]},
                {"cuts", DescribeCuts(desk, mcu)},
                {"counting", DescribeCountdowns(mcu)},
                {"mcu_unit_s", Seconds(mcu.time.unit)},
                {"mcu_speed", mcu.time.speed()},
                {"low_battery_delay_units", state.Delay(DelayType::kLowBattery)},
                {"low_battery_hard_delay_units", state.Delay(DelayType::kLowBatteryHard)},
                {"ignition_on_delay_units", state.Delay(DelayType::kIgnitionOn)},
                {"ignition_off_event_delay_units", state.Delay(DelayType::kIgnitionOffEvent)},
                {"ignition_hard_off_delay_units", state.Delay(DelayType::kIgnitionHardOff)},
                {"ignition_suspend_hard_off_delay_units", state.Delay(DelayType::kIgnitionSuspendHardOff)},
                {"power_off_alarm_delay_units", state.Delay(DelayType::kPrePowerOffAlarm)},
                {"forced_shutdown", state.forced_shutdown},
                {"forced_shutdown_delay_units", state.forced_shutdown_delay}};
  });
}

Json DescribePins(Desk& desk) {
  const Gpio& gpio = desk.board().gpio();
  Json pins = Json::object();
  for (const int line : rolu_protocol::kGpioLines) {
    pins[fmt::format("gpio{}", line)] = {{"exported", gpio.IsExported(line)},
                                         {"direction", gpio.IsOutput(line) ? "out" : "in"},
                                         {"level", gpio.Level(line) ? 1 : 0}};
  }
  return pins;
}

Json DescribeRegisterDevices(Desk& desk) {
  constexpr unsigned kRow = 16;
  Json devices = Json::object();
  for (const auto& [address, device] : desk.register_devices()) {
    Json rows = Json::object();
    for (unsigned row = 0; row < 256; row += kRow) {
      std::string bytes;
      for (unsigned column = 0; column < kRow; ++column) {
        bytes += static_cast<char>(device->Register(static_cast<std::uint8_t>(row + column)));
      }
      rows[fmt::format("{:02X}", row)] = ToHex(bytes);
    }
    devices[fmt::format("0x{:02X}", address)] = std::move(rows);
  }
  return devices;
}

Json DescribeI2cTransfers(Desk& desk) {
  Json transfers = Json::array();
  for (const I2cTransfer& transfer : desk.board().i2c().Transfers()) {
    transfers.push_back({{"address", fmt::format("0x{:02X}", transfer.address)},
                         {"direction", transfer.is_read ? "read" : "write"},
                         {"bytes", ToHex(transfer.bytes)},
                         {"result", transfer.result}});
  }
  return {{"resets", desk.board().reset_controller().ResetCount()}, {"transfers", std::move(transfers)}};
}

Json DescribeEvents(Desk& desk) {
  Json events = Json::array();
  for (const McuEvent& event : desk.board().mcu().Events()) {
    Json entry = {{"t_s", Seconds(event.time - desk.start())}, {"event", NameOf(event.kind)}};
    if (!event.cause.empty()) entry["cause"] = event.cause;
    events.push_back(std::move(entry));
  }
  return events;
}

Json DescribeFaults(Desk& desk) {
  Json faults = Json::array();
  for (const AnswerFault& fault : desk.faults().Present()) {
    Json entry = {{"fault", NameOf(fault.kind)}, {"command", fault.command.empty() ? "any" : fault.command}};
    if (fault.times != kEveryCommand) entry["times_left"] = fault.times;
    if (fault.chance < 1.0) entry["chance"] = fault.chance;
    if (fault.kind == AnswerFaultKind::kDelay) entry["delay_ms"] = fault.delay.count();
    if (!fault.error.empty()) entry["error"] = fault.error;
    if (fault.count != 0) entry["characters"] = fault.count;
    faults.push_back(std::move(entry));
  }
  for (Json& fault : desk.board_faults().Present()) faults.push_back(std::move(fault));
  return faults;
}

Json DescribeCommands(Desk& desk) {
  Json commands = Json::array();
  for (const TraceRecord& record : desk.trace().From(0).records) {
    if (record.direction == TraceDirection::kToMcu) {
      commands.push_back(
          {{"t_s", Seconds(record.time)}, {"command", Printable(record.line)}, {"words", record.words}});
    }
  }
  return commands;
}

Json DescribeScenario(Desk& desk) {
  const ScenarioProgress& progress = desk.scenario_progress();
  const auto text_or_null = [](const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); };
  return {{"description", text_or_null(progress.description)},
          {"steps_done", progress.steps_done},
          {"steps_waiting", progress.steps_waiting},
          {"expectations_met", progress.expectations_met},
          {"expectations_failed", progress.expectations_failed},
          {"expectations_pending", progress.expectations_pending},
          {"failure", text_or_null(progress.failure)}};
}

// Makes a reading from the MCU's model.
std::function<Json(Desk&)> OfMcu(Json (*describe)(const McuModel&)) {
  return [describe](Desk& desk) { return desk.board().mcu().WithModel(describe); };
}

struct ReadingUnit {
  std::string_view suffix;
  std::string_view text;
};
constexpr std::array<ReadingUnit, 7> kReadingUnits = {{{"_v", " V"},
                                                       {"_s", " s"},
                                                       {"_ms", " ms"},
                                                       {"_c", " degrees Celsius"},
                                                       {"_percent", " %"},
                                                       {"_units", " MCU units"},
                                                       {"_steps", " steps of 62.5"}}};

// Splits a name into label and unit: "voltage_v" is "voltage" in V.
std::pair<std::string, std::string_view> LabelAndUnit(std::string_view name) {
  const auto* const unit = std::ranges::find_if(
      kReadingUnits, [&](const ReadingUnit& entry) { return name.ends_with(entry.suffix); });
  const bool has_unit = unit != kReadingUnits.end();
  if (has_unit) name.remove_suffix(unit->suffix.size());
  std::string label(name);
  std::ranges::replace(label, '_', ' ');
  return {label, has_unit ? unit->text : std::string_view()};
}

std::string ValueAsText(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

// Writes a list of values, or one object of a list, in one line.
std::string InOneLine(const Json& value) {
  std::vector<std::string> parts;
  for (const auto& [name, part] : value.items()) {
    const auto [label, unit] = LabelAndUnit(name);
    parts.push_back(value.is_object() ? fmt::format("{} {}{}", label, ValueAsText(part), unit)
                                      : ValueAsText(part));
  }
  return parts.empty() ? "none" : fmt::format("{}", fmt::join(parts, ", "));
}

// A reading may hold readings, which may hold readings themselves.
// NOLINTNEXTLINE(misc-no-recursion): our own readings are nested a few deep, not without end
void Append(std::string& text, const Json& members, std::size_t depth) {
  const std::string indent(depth * 2, ' ');
  for (const auto& [name, value] : members.items()) {
    const auto [label, unit] = LabelAndUnit(name);
    if (value.is_object()) {
      text += fmt::format("{}{}:\n", indent, label);
      Append(text, value, depth + 1);
    } else if (!value.is_array()) {
      text += fmt::format("{}{}: {}{}\n", indent, label, ValueAsText(value), value.is_null() ? "" : unit);
    } else if (value.empty() || !value.front().is_structured()) {
      text += fmt::format("{}{}: {}\n", indent, label, InOneLine(value));
    } else {
      text += fmt::format("{}{}:\n", indent, label);
      for (const Json& element : value) text += fmt::format("{}  {}\n", indent, InOneLine(element));
    }
  }
}

}  // namespace

const std::vector<Reading>& Readings() {
  static const std::vector<Reading> readings = {
      {"board", "the board itself: its directory, its port and the programs that have it open",
       [](Desk& desk) -> Json {
         return {{"directory", desk.board().root().path()},
                 {"process", getpid()},
                 {"up_s", Seconds(std::chrono::steady_clock::now() - desk.start())},
                 {"serial_port", desk.board().mcu().DevicePath()},
                 {"serial_port_is_open", desk.board().mcu().IsOpenByHost()},
                 {"serial_port_holders", PortHolders::FindAll(desk.board().mcu().DevicePath())},
                 {"seed", desk.faults().seed()}};
       }},
      {"battery", "the car battery, its protections", OfMcu(DescribeBattery)},
      {"ignition", "the ignition and its modes", OfMcu([](const McuModel& mcu) -> Json {
         return {{"on", mcu.ignition.on},
                 {"mode", mcu.ignition.mode},
                 {"power_off_alarm", mcu.ignition.pre_power_off_alarm},
                 {"keep_alive_mode", mcu.ignition.keep_alive_mode},
                 {"at_mode", mcu.ignition.at_mode}};
       })},
      {"power-off", "the computer's power: cuts, what the MCU counts, the delays", DescribePowerOff},
      {"sources", "shutdown and wake-up sources", OfMcu([](const McuModel& mcu) -> Json {
         return {{"shutdown_sources_on", NumbersOf(mcu.power_sources.shutdown_enabled)},
                 {"wakeup_sources_on", NumbersOf(mcu.power_sources.wakeup_enabled)},
                 {"last_wakeup_code", fmt::format("{:02X}", mcu.power_sources.last_wakeup_code)}};
       })},
      {"clock", "the MCU's clock and its wake-up alarm", OfMcu(DescribeClock)},
      {"backup-battery", "the backup battery", OfMcu([](const McuModel& mcu) -> Json {
         const BackupBatteryState& battery = mcu.backup_battery;
         return {{"voltage_v", battery.millivolts / 1000.0},
                 {"temperature_c", std::round(battery.temperature_tenths_kelvin * 10.0 - 27315.0) / 100.0},
                 {"charge_percent", battery.percent},
                 {"remaining_capacity", battery.remaining_capacity},
                 {"remaining_time", battery.remaining_time},
                 {"time_to_full", battery.time_to_full},
                 {"info", battery.info},
                 {"status_bits", fmt::format("{:016b}", battery.status_bits)}};
       })},
      {"watchdog", "the watchdog: whether it is on, the time left, its bites", DescribeWatchdog},
      {"gsensor", "the G-sensor and its alarm", OfMcu([](const McuModel& mcu) -> Json {
         const GSensorState& sensor = mcu.gsensor;
         return {{"on", sensor.on},
                 {"x", sensor.sample.x},
                 {"y", sensor.sample.y},
                 {"z", sensor.sample.z},
                 {"resolution", sensor.resolution},
                 {"alarm_on", sensor.alarm_on},
                 {"alarm_threshold_steps", sensor.alarm_threshold},
                 {"wakeup_threshold_steps", sensor.wakeup_threshold}};
       })},
      {"pins", "the GPIO lines", DescribePins},
      {"backlight", "the display's backlight",
       [](Desk& desk) {
         return Json{{"level", desk.board().backlight().level()}};
       }},
      {"peripherals", "the switched peripherals",
       [](Desk& desk) -> Json {
         const bool mcu_switch =
             desk.board().mcu().WithModel([](McuModel& mcu) { return mcu.peripheral_switch.on; });
         return {{"mcu_switch", mcu_switch},
                 {"wlan", desk.board().wireless().IsUp()},
                 {"gps_power", desk.board().gpio().Level(rolu_protocol::kGpsPowerLine)}};
       }},
      {"events", "what the MCU did to the computer", DescribeEvents},
      {"scenario", "how far the scenario has come, and what it expects", DescribeScenario},
      {"faults", "the faults of answers, of the serial port, of device files and of the I2C bus",
       DescribeFaults},
      {"i2c-registers", "the registers of the devices on the I2C bus", DescribeRegisterDevices},
      {"i2c-transfers", "resets and transfers on the I2C bus", DescribeI2cTransfers},
      {"commands", "each command that the MCU received", DescribeCommands},
  };
  return readings;
}

void CheckReading(const std::string& name) {
  const std::vector<std::string> names = NamesOf(Readings());
  if (std::ranges::find(names, name) != names.end()) return;
  throw UsageError(fmt::format("there is no reading \"{}\"{}", name, rolu::Suggestion(name, names)));
}

Json ReadBoard(Desk& desk, const std::vector<std::string>& names) {
  constexpr std::array<std::string_view, 3> kLongLists = {"i2c-registers", "i2c-transfers", "commands"};
  Json board = Json::object();
  for (const Reading& reading : Readings()) {
    const bool is_wanted = names.empty() ? std::ranges::find(kLongLists, reading.name) == kLongLists.end()
                                         : std::ranges::find(names, reading.name) != names.end();
    if (is_wanted) board[reading.name] = reading.read(desk);
  }
  return board;
}

std::string ReadingsAsText(const Json& readings) {
  std::string text;
  Append(text, readings, 0);
  return text;
}

}  // namespace rolu_sim
