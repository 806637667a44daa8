#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/commands.h"
#include "simulator/mcu/battery.h"
#include "simulator/mcu/clock.h"
#include "simulator/mcu/mcu_state.h"

namespace rolu_sim {

// The lines that the MCU answers to one command, without their line ends. Most commands have one.
using AnswerLines = std::vector<std::string>;

// Why the MCU is about to cut the power.
enum class PowerOffWarning { kIgnition, kLowVoltage };

// What the MCU does to the computer; nothing of it shows on the wire. A simulated computer runs on.
enum class McuEventKind {
  kPowerOff,      // the power is cut, as ATPO ordered
  kAlarmWakeup,   // the clock's alarm woke the computer
  kWatchdogBite,  // the watchdog was not triggered in time: the computer is reset
};

struct McuEvent {
  McuEventKind kind;
  TimePoint time;
};

// The three axes as the wire has them.
std::string FormatSample(const GSensorSample& sample);

// The microcontroller as a state machine: a command and the time go in, answer lines come out. It
// has no thread, no clock and no lock; McuSerial guards the one behind a port (see its WithModel).
//
// A setting answers "OK" (the clock's with two lines). An unknown command answers "ERR-C01". A field
// that is malformed or that the MCU refuses (a battery mode other than 2 and 3, a threshold outside
// its range, a delay of 0, a date that does not exist, a source that stands for nothing) answers
// "ERR-M08" and changes nothing. An alarm of a G-sensor that is off answers "ERR-G01".
//
// By itself the MCU
// - warns of the ignition's power-off once the ignition has been off for that delay, if the
//   pre-power-off alarm is on then;
// - warns of the low voltage once the battery has been below the low-battery threshold of the
//   present mode for that delay, if that protection is on;
// - wakes the computer when the clock's alarm comes and its wake-up source is on;
// - resets the computer when the watchdog is on and was not triggered in time.
class McuModel {
 public:
  // `command` comes without its carriage return.
  AnswerLines Execute(std::string_view command, TimePoint now);

  // The state of each subject, to be read and set at will.
  BackupBatteryState backup_battery;
  BatteryState battery;
  ClockState clock;
  GSensorState gsensor;
  IgnitionState ignition;
  PeripheralSwitchState peripheral_switch;
  PowerOffState power_off;
  PowerSourcesState power_sources;
  WatchdogState watchdog;

  // A vehicle of this electrical system, with a good battery.
  void SetVehicle(BatteryMode mode);

  // From now on the battery is at `volts`.
  void SetBatteryVolts(double volts) { battery.curve = VoltageCurve(volts); }

  // The battery follows `curve`, whose time 0 is `start`.
  void SetBatteryCurve(VoltageCurve curve, TimePoint start);

  // From now on the G-sensor measures `sample`. True when that raises the alarm: its line is sent.
  bool ShakeTo(const GSensorSample& sample);

  // Sends a warning, whatever the ignition and the battery are.
  void WarnOfPowerOff(PowerOffWarning warning);

  // What the MCU does by itself: when TakeDueLines has something to do next, as things are, and the
  // lines that have become due. Call it at that time, and before and after each change: a condition
  // holds from the call that first sees it.
  std::optional<TimePoint> NextDue(TimePoint now) const;
  AnswerLines TakeDueLines(TimePoint now);

  // What the MCU did to the computer, oldest first.
  const std::vector<McuEvent>& Events() const { return events_; }

 private:
  // The last line of the answer.
  std::string CarryOut(const rolu_protocol::Command& command, const rolu_protocol::Values& fields,
                       TimePoint now);

  // All settings are as the MCU left the factory. What it measures and has recorded stays, and so
  // does the time of the clock.
  void RestoreDefaults();

  std::optional<TimePoint> NextAlarm() const;

  HeldCondition ignition_off_;
  HeldCondition battery_low_;
  TimePoint alarm_followed_to_{};
  AnswerLines unsent_;
  std::vector<McuEvent> events_;
};

}  // namespace rolu_sim
