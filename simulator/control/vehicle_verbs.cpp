// What happens to the vehicle and to the MCU's measurements.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "protocol/values.h"
#include "simulator/control/clock_text.h"
#include "simulator/control/desk.h"
#include "simulator/control/verb.h"

namespace rolu_sim {
namespace {

constexpr char kVehicle[] = "Vehicle and MCU";

using rolu_protocol::kZeroCelsiusInKelvin;

std::string NameOfSource(int source) {
  if (source == rolu_protocol::kNoSource) return "none";
  return source == rolu_protocol::kAlarmSource ? "alarm" : std::to_string(source);
}

// Each once: some have several codes, which stand next to each other.
std::vector<std::string> WakeupNames() {
  std::vector<std::string> names;
  for (const rolu_protocol::WakeupCode& known : rolu_protocol::kWakeupCodes) {
    const std::string name = NameOfSource(known.source);
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

template <typename Use>
auto WithModel(Desk& desk, Use&& use) {
  return desk.board().mcu().WithModel(std::forward<Use>(use));
}

std::string TurnIgnition(Desk& desk, const Arguments& arguments) {
  WithModel(desk, [&](McuModel& mcu) { mcu.ignition.on = arguments.IsOn("state"); });
  return {};
}

std::string SetBatteryVoltage(Desk& desk, const Arguments& arguments) {
  const double volts = arguments.Number("volts");
  const std::chrono::milliseconds over = arguments.Duration("over");
  WithModel(desk, [&](McuModel& mcu) {
    const TimePoint now = std::chrono::steady_clock::now();
    if (over.count() == 0) {
      mcu.SetBatteryVolts(volts);
    } else {
      const std::string ramp =
          fmt::format("0ms={:.6f} {}ms={:.6f}", mcu.battery.VoltsAt(now), over.count(), volts);
      mcu.SetBatteryCurve(VoltageCurve::Parse(ramp), now);
    }
  });
  return {};
}

std::string FollowBatteryCurve(Desk& desk, const Arguments& arguments) {
  const VoltageCurve curve = VoltageCurve::Parse(arguments.Text("curve"));
  WithModel(desk, [&](McuModel& mcu) { mcu.SetBatteryCurve(curve, std::chrono::steady_clock::now()); });
  return {};
}

std::string SetBatteryMode(Desk& desk, const Arguments& arguments) {
  const BatteryMode mode = arguments.Text("system") == "24" ? BatteryMode::k24V : BatteryMode::k12V;
  WithModel(desk, [&](McuModel& mcu) { mcu.battery.mode = mode; });
  return {};
}

std::string WarnOfPowerOff(Desk& desk, const Arguments& arguments) {
  const bool is_ignition = arguments.Text("cause") == "ignition";
  WithModel(desk, [&](McuModel& mcu) {
    mcu.WarnOfPowerOff(is_ignition ? PowerOffWarning::kIgnition : PowerOffWarning::kLowVoltage);
  });
  return {};
}

std::string SetWakeupSource(Desk& desk, const Arguments& arguments) {
  const std::string source = arguments.Text("source");
  const auto* const known = std::find_if(
      rolu_protocol::kWakeupCodes.begin(), rolu_protocol::kWakeupCodes.end(),
      [&](const rolu_protocol::WakeupCode& code) { return NameOfSource(code.source) == source; });
  WithModel(desk, [&](McuModel& mcu) { mcu.power_sources.last_wakeup_code = known->code; });
  return {};
}

std::string SetClock(Desk& desk, const Arguments& arguments) {
  const std::optional<ClockText> text = ParseClockText(arguments.Text("time"));
  return WithModel(desk, [&](McuModel& mcu) {
    const TimePoint now = std::chrono::steady_clock::now();
    mcu.clock.Set(text->has_date ? text->time : NextTimeOfDay(mcu.clock.TimeAt(now), text->time), now);
    return "the clock shows " + FormatClockTime(mcu.clock.TimeAt(now));
  });
}

GSensorSample SampleOf(const Arguments& arguments) {
  return {static_cast<std::int16_t>(arguments.Integer("x")),
          static_cast<std::int16_t>(arguments.Integer("y")),
          static_cast<std::int16_t>(arguments.Integer("z"))};
}

std::string WhatTheAlarmDoes(const McuModel& mcu, bool is_raised) {
  if (is_raised) return "the alarm is raised";
  if (!mcu.gsensor.on) return "no alarm: the G-sensor is off";
  return mcu.gsensor.alarm_on ? "no alarm: below the threshold" : "no alarm: the alarm is off";
}

std::string MeasureSample(Desk& desk, const Arguments& arguments) {
  return WithModel(desk, [&](McuModel& mcu) {
    const bool is_raised = mcu.ShakeTo(SampleOf(arguments));
    return WhatTheAlarmDoes(mcu, is_raised);
  });
}

std::string Shake(Desk& desk, const Arguments& arguments) {
  return WithModel(desk, [&](McuModel& mcu) {
    const GSensorSample before = mcu.gsensor.sample;
    const bool is_raised = mcu.ShakeTo(SampleOf(arguments));
    mcu.gsensor.sample = before;
    return WhatTheAlarmDoes(mcu, is_raised);
  });
}

std::uint16_t Rounded(double value) {
  return static_cast<std::uint16_t>(std::lround(value));
}

std::string SetBackupBattery(Desk& desk, const Arguments& arguments) {
  if (arguments.values().empty()) throw UsageError("backup-battery needs a value, as volts=3.7");
  const auto set = [&](const char* name, std::uint16_t& field) {
    if (arguments.Has(name)) field = static_cast<std::uint16_t>(arguments.Integer(name));
  };
  WithModel(desk, [&](McuModel& mcu) {
    BackupBatteryState& battery = mcu.backup_battery;
    if (arguments.Has("volts")) battery.millivolts = Rounded(arguments.Number("volts") * 1000);
    if (arguments.Has("celsius")) {
      battery.temperature_tenths_kelvin = Rounded((arguments.Number("celsius") + kZeroCelsiusInKelvin) * 10);
    }
    set("percent", battery.percent);
    set("capacity", battery.remaining_capacity);
    set("remaining-time", battery.remaining_time);
    set("time-to-full", battery.time_to_full);
    set("info", battery.info);
    set("status-bits", battery.status_bits);
  });
  return {};
}

std::string SendLine(Desk& desk, const Arguments& arguments) {
  desk.board().mcu().SendRaw(arguments.Text("text") + "\r\n");
  return {};
}

std::string AnswerOnce(Desk& desk, const Arguments& arguments) {
  desk.board().mcu().Script(CommandMatch::StartingWith(arguments.Text("command")),
                            Reply::Line(arguments.Text("text")),
                            static_cast<int>(arguments.Integer("times")));
  return {};
}

}  // namespace

std::vector<Verb> VehicleVerbs() {
  const auto axis = [](const char* name) {
    return Integer(name, -32768, 32767, "acceleration along this axis, 256 is that of gravity");
  };
  const auto word = [](const char* name, const char* help) {
    return Optional(Integer(name, 0, 65535, help));
  };
  constexpr double kMostVolts = VoltageCurve::kMaxVolts;
  return {
      {"ignition",
       kVehicle,
       "Turns the ignition on or off",
       {Choice("state", {"on", "off"}, "the key")},
       TurnIgnition},
      {"battery-voltage",
       kVehicle,
       "Sets the car battery's voltage, at once or along a line from the present one",
       {Number("volts", 0, kMostVolts, "V", "the voltage"),
        Optional(Duration("over", "how long it takes"), "0s")},
       SetBatteryVoltage},
      {"battery-curve",
       kVehicle,
       "Lets the car battery's voltage follow a curve, from now on",
       {Curve("curve", "times from now and voltages, linear between them")},
       FollowBatteryCurve},
      {"battery-mode",
       kVehicle,
       "Sets which electrical system the MCU takes the vehicle for; the voltage stays as it is",
       {Choice("system", {"12", "24"}, "the system, in volts")},
       SetBatteryMode},
      {"power-off-warning",
       kVehicle,
       "Sends a power-off warning, whatever ignition and battery are",
       {Choice("cause", {"ignition", "low-battery"}, "why the power goes")},
       WarnOfPowerOff},
      {"wakeup-source",
       kVehicle,
       "Sets what the MCU reports to have woken the computer last",
       {Choice("source", WakeupNames(), "the source")},
       SetWakeupSource},
      {"clock",
       kVehicle,
       "Sets the MCU's clock; a time of the day is the next one, so that a night can be skipped",
       {TimeOfClock("time", "the time")},
       SetClock},
      {"gsensor",
       kVehicle,
       "Sets what the G-sensor measures from now on",
       {axis("x"), axis("y"), axis("z")},
       MeasureSample},
      {"shock",
       kVehicle,
       "Shakes the vehicle once; after that the G-sensor measures what it did before",
       {Optional(axis("x"), 1024), Optional(axis("y"), 0), Optional(axis("z"), 256)},
       Shake},
      {"backup-battery",
       kVehicle,
       "Sets what the MCU reports of the backup battery; values that are not given stay",
       {Optional(Number("volts", 0, 65.535, "V", "the voltage")),
        Optional(Number("celsius", -kZeroCelsiusInKelvin, 6280, "degrees Celsius", "the temperature")),
        word("percent", "the charge"), word("capacity", "the remaining capacity"),
        word("remaining-time", "the remaining time"), word("time-to-full", "the time to full"),
        word("info", "the information value"), word("status-bits", "the status bits")},
       SetBackupBattery},
      {"send",
       kVehicle,
       "Lets the MCU send a line that no command asked for",
       {Text("text", "the line")},
       SendLine},
      {"answer",
       kVehicle,
       "Answers the next commands with a line of yours; the MCU does not carry them out",
       {Text("command", "which commands: those that begin like this"), Text("text", "the answer"),
        Optional(Integer("times", 1, 1000000, "how many commands"), 1)},
       AnswerOnce},
  };
}

}  // namespace rolu_sim
