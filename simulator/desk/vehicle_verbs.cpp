// Verbs that change the vehicle and what the MCU measures.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "protocol/values.h"
#include "simulator/desk/desk.h"
#include "simulator/desk/mcu_settings.h"

namespace rolu_sim {
namespace {

using rolu_protocol::kZeroCelsiusInKelvin;

TimePoint Now() {
  return std::chrono::steady_clock::now();
}

std::string NameOfSource(int source) {
  if (source == rolu_protocol::kNoSource) return "none";
  return source == rolu_protocol::kAlarmSource ? "alarm" : std::to_string(source);
}

// The first code of each source: some sources have several codes, which stand next to each other.
Choices WakeupCodes() {
  Choices codes;
  for (const rolu_protocol::WakeupCode& known : rolu_protocol::kWakeupCodes) {
    const std::string name = NameOfSource(known.source);
    if (codes.empty() || codes.back().first != name) codes.emplace_back(name, known.code);
  }
  return codes;
}

void SetBatteryVoltage(McuModel& mcu, const Arguments& given) {
  const double volts = given.Get<double>("volts");
  const auto over = given.Get<std::chrono::milliseconds>("over");
  if (over.count() == 0) {
    mcu.SetBatteryVolts(volts);
    return;
  }
  const TimePoint now = Now();
  const std::string ramp =
      fmt::format("0ms={:.6f} {}ms={:.6f}", mcu.battery.VoltsAt(now), over.count(), volts);
  mcu.SetBatteryCurve(VoltageCurve::Parse(ramp), now);
}

int SecondOfDay(const ClockTime& time) {
  return (time.hour * 60 + time.minute) * 60 + time.second;
}

// A time of day without a date means its next occurrence.
std::string SetClock(McuModel& mcu, const Arguments& given) {
  constexpr int kSecondsOfDay = 24 * 60 * 60;
  const auto& text = given.Get<ClockText>("time");
  const McuTimePoint now = mcu.time.At(Now());
  const ClockTime present = mcu.clock.TimeAt(now);
  const int ahead = SecondOfDay(text.time) - SecondOfDay(present);
  mcu.clock.Set(text.has_date ? text.time : AddSeconds(present, ahead >= 0 ? ahead : ahead + kSecondsOfDay),
                now);
  return "the clock shows " + FormatClockTime(mcu.clock.TimeAt(now));
}

// A source that wakes nobody because the computer is on is only recorded.
std::string WakeUp(McuModel& mcu, const Arguments& given) {
  const auto code = given.Get<decltype(rolu_protocol::WakeupCode::code)>("source");
  const int source =
      std::ranges::find(rolu_protocol::kWakeupCodes, code, &rolu_protocol::WakeupCode::code)->source;
  if (mcu.computer.power == ComputerPower::kOn || source == rolu_protocol::kNoSource) {
    mcu.power_sources.last_wakeup_code = code;
    return {};
  }
  if (!mcu.power_sources.wakeup_enabled[static_cast<std::size_t>(source)]) {
    return "this source is switched off and wakes nobody";
  }
  mcu.WakeComputer(source);
  return mcu.computer.power == ComputerPower::kOn ? "the computer is on"
                                                  : "the car battery is too low to start";
}

void Suspend(McuModel& mcu, const Arguments& /*given*/) {
  if (mcu.computer.power != ComputerPower::kOn)
    throw UsageError("only a computer that is on can be suspended");
  mcu.SuspendComputer();
}

// The value of a setting of the MCU (std::string).
Parameter SettingValue() {
  return {.name = "value",
          .range = "MCU units, volts, or on or off",
          .help = "its value",
          .parse = [](const Json& given) -> std::optional<Argument> {
            std::string text = given.is_string() ? given.get<std::string>() : given.dump();
            if (given.is_boolean()) text = given.get<bool>() ? "on" : "off";
            return Argument{text, text};
          }};
}

Parameter UnitLength() {
  Parameter length = Duration("length", "the length");
  length.range = "a time from 1ms to 1h";
  length.parse = [parse = length.parse](const Json& given) -> std::optional<Argument> {
    std::optional<Argument> argument = parse(given);
    if (!argument) return std::nullopt;
    const auto unit = std::any_cast<std::chrono::milliseconds>(argument->value);
    return unit >= McuTime::kShortestUnit && unit <= McuTime::kLongestUnit ? argument : std::nullopt;
  };
  return length;
}

Parameter SettingName() {
  // Not "name": that is the step's own name in a scenario.
  Parameter name = OneOf("setting", McuSettingNames(), "the setting");
  name.range = "a setting of the MCU, by its name in `rolu list`";
  return name;
}

std::string MeasureSample(McuModel& mcu, const Arguments& given) {
  const bool is_raised = mcu.ShakeTo(
      {given.Integer<std::int16_t>("x"), given.Integer<std::int16_t>("y"), given.Integer<std::int16_t>("z")});
  if (is_raised) return "the alarm is raised";
  if (!mcu.gsensor.on) return "no alarm: the G-sensor is off";
  return mcu.gsensor.alarm_on ? "no alarm: below the threshold" : "no alarm: the alarm is off";
}

std::string Shake(McuModel& mcu, const Arguments& given) {
  const GSensorSample before = mcu.gsensor.sample;
  std::string remark = MeasureSample(mcu, given);
  mcu.gsensor.sample = before;
  return remark;
}

std::uint16_t Rounded(double value) {
  return static_cast<std::uint16_t>(std::lround(value));
}

void SetBackupBattery(McuModel& mcu, const Arguments& given) {
  if (given.all().empty()) throw UsageError("backup-battery needs a value, such as volts=3.7");
  BackupBatteryState& battery = mcu.backup_battery;
  if (given.Has("volts")) battery.millivolts = Rounded(given.Get<double>("volts") * 1000);
  if (given.Has("celsius")) {
    battery.temperature_tenths_kelvin = Rounded((given.Get<double>("celsius") + kZeroCelsiusInKelvin) * 10);
  }
  const auto set = [&](const char* name, std::uint16_t& field) {
    if (given.Has(name)) field = given.Integer<std::uint16_t>(name);
  };
  set("percent", battery.percent);
  set("capacity", battery.remaining_capacity);
  set("remaining-time", battery.remaining_time);
  set("time-to-full", battery.time_to_full);
  set("info", battery.info);
  set("status-bits", battery.status_bits);
}

}  // namespace

std::vector<Verb> VehicleVerbs() {
  const auto axis = [](const char* name) {
    return Integer(name, -32768, 32767, "acceleration along this axis, 256 is that of gravity");
  };
  const auto word = [](const char* name, const char* help) {
    return Optional(Integer(name, 0, 65535, help));
  };
  return {
      {"ignition",
       "Turns the ignition on or off",
       {Switch("state", "the key")},
       Doing([](McuModel& mcu, const Arguments& given) { mcu.ignition.on = given.Get<bool>("state"); })},
      {"battery-voltage",
       "Sets the car battery's voltage, at once or along a line from the present one",
       {Number("volts", 0, VoltageCurve::kMaxVolts, "V", "the voltage"),
        Optional(Duration("over", "how long it takes"), "0s")},
       Doing(SetBatteryVoltage)},
      {"battery-curve",
       "Lets the car battery's voltage follow a curve, from now on",
       {Curve("curve", "times from now and voltages, linear between them")},
       Doing([](McuModel& mcu, const Arguments& given) {
         mcu.SetBatteryCurve(given.Get<VoltageCurve>("curve"), Now());
       })},
      {"battery-mode",
       "Sets the electrical system that the MCU assumes; the voltage stays as it is",
       {Choice("system", {{"12", BatteryMode::k12V}, {"24", BatteryMode::k24V}}, "the system, in volts")},
       Doing([](McuModel& mcu, const Arguments& given) {
         mcu.battery.mode = given.Get<BatteryMode>("system");
       })},
      {"power-off-warning",
       "Sends a power-off warning, whatever the ignition and the battery do",
       {Choice("cause",
               {{"ignition", PowerOffWarning::kIgnition}, {"low-battery", PowerOffWarning::kLowVoltage}},
               "why the power goes")},
       Doing([](McuModel& mcu, const Arguments& given) {
         mcu.WarnOfPowerOff(given.Get<PowerOffWarning>("cause"));
       })},
      {"wakeup-source",
       "Lets a source wake the computer; if it is on, only sets what the MCU reports to have woken it last",
       {Choice("source", WakeupCodes(), "the source")},
       Doing(WakeUp)},
      {"suspend", "Suspends the computer: its programs stop until something wakes it", {}, Doing(Suspend)},
      {"set",
       "Changes a setting of the MCU, as a program would",
       {SettingName(), SettingValue()},
       Doing([](McuModel& mcu, const Arguments& given) {
         McuSettingOrder(given.Get<std::string>("setting"), given.Get<std::string>("value"))(mcu);
       })},
      {"mcu-speed",
       "Lets the MCU's own time run faster or slower; what has passed so far stays",
       {Number("speed", McuTime::kLeastSpeed, McuTime::kMostSpeed, "",
               "how many times as fast as the real time")},
       Doing([](McuModel& mcu, const Arguments& given) {
         mcu.time.SetSpeed(given.Get<double>("speed"), Now());
       })},
      {"mcu-unit",
       "Sets the length of the MCU's unit, in which it counts delays and the watchdog's time",
       {UnitLength()},
       Doing([](McuModel& mcu, const Arguments& given) {
         mcu.time.unit = given.Get<std::chrono::milliseconds>("length");
       })},
      {"clock",
       "Sets the MCU's clock; a time of the day is the next one, so that a night can be skipped",
       {TimeOfClock("time", "the time")},
       Doing(SetClock)},
      {"gsensor",
       "Sets what the G-sensor measures from now on",
       {axis("x"), axis("y"), axis("z")},
       Doing(MeasureSample)},
      {"shock",
       "Shakes the vehicle once; after that the G-sensor measures what it did before",
       {Optional(axis("x"), 1024), Optional(axis("y"), 0), Optional(axis("z"), 256)},
       Doing(Shake)},
      {"backup-battery",
       "Sets what the MCU reports of the backup battery; values that are not given stay",
       {Optional(Number("volts", 0, 65.535, "V", "the voltage")),
        Optional(Number("celsius", -kZeroCelsiusInKelvin, 6280, "degrees Celsius", "the temperature")),
        word("percent", "the charge"), word("capacity", "the remaining capacity"),
        word("remaining-time", "the remaining time"), word("time-to-full", "the time to full"),
        word("info", "the information value"), word("status-bits", "the status bits")},
       Doing(SetBackupBattery)},
      {"send",
       "Lets the MCU send a line that no command asked for",
       {Text("text", "the line")},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board().mcu().SendRaw(given.Get<std::string>("text") + "\r\n");
       })},
      {"answer",
       "Answers the next commands with a line of yours; the MCU does not carry them out",
       {Text("command", "which commands: those that begin like this"), Text("text", "the answer"),
        Optional(Integer("times", 1, 1000000, "how many commands"), 1)},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board().mcu().Script(CommandMatch::StartingWith(given.Get<std::string>("command")),
                                   Reply::Line(given.Get<std::string>("text")), given.Integer<int>("times"));
       })},
  };
}

}  // namespace rolu_sim
