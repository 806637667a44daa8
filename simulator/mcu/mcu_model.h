#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/commands.h"
#include "simulator/mcu/battery.h"
#include "simulator/mcu/clock.h"
#include "simulator/mcu/mcu_event.h"
#include "simulator/mcu/mcu_state.h"

namespace rolu_sim {

// The lines of the MCU's answer to one command, without their line ends. Most answers have one line.
using AnswerLines = std::vector<std::string>;

// Why the MCU is about to cut the power.
enum class PowerOffWarning { kIgnition, kLowVoltage };

// The three axes in the format of the wire.
std::string FormatSample(const GSensorSample& sample);

// The microcontroller as a state machine: commands and the time go in, answer lines come out. It has no
// thread, no clock and no lock: McuSerial guards the model behind a port (see McuSerial::WithModel).
//
// A command that sets something answers "OK" (the clock's with two lines). An unknown command answers
// "ERR-C01". A malformed field, or one that the MCU refuses (a battery mode other than 2 and 3, a threshold
// outside its range, a delay of 0, a date that does not exist, a source number without a source), answers
// "ERR-M08" and changes nothing. Switching on the alarm of a G-sensor that is off answers "ERR-G01".
//
// By itself the MCU
// - warns of the ignition's power-off once the ignition has been off for that delay, if the
//   pre-power-off alarm is on then;
// - warns of the low voltage once the battery has been below the low-battery threshold of the
//   present mode for that delay, if that protection is on;
// - cuts the power when one of the delays to a power cut has passed, or as a command orders;
// - switches the computer on when the ignition has gone on, or when the clock's alarm comes and its wake-up
//   source is on, unless the pre-boot protection is on and the battery is below that threshold;
// - resets the computer when the watchdog is on and was not triggered in time.
//
// All that counts, counts in the MCU's own time. After a power-on and a reset it begins anew.
class McuModel {
 public:
  // `command` has no carriage return.
  AnswerLines Execute(std::string_view command, TimePoint now);

  // The state of each subject. Callers may read and set it freely.
  McuTime time;
  ComputerState computer;
  BackupBatteryState backup_battery;
  BatteryState battery;
  ClockState clock;
  GSensorState gsensor;
  IgnitionState ignition;
  PeripheralSwitchState peripheral_switch;
  PowerOffState power_off;
  PowerSourcesState power_sources;
  WatchdogState watchdog;

  // Makes the vehicle one of this electrical system, with a good battery.
  void SetVehicle(BatteryMode mode);

  // From now on the battery is at `volts`.
  void SetBatteryVolts(double volts) { battery.curve = VoltageCurve(volts); }

  // The battery follows `curve`, whose time 0 is `start`.
  void SetBatteryCurve(VoltageCurve curve, TimePoint start);

  // From now on the G-sensor measures `sample`. Returns true when this raises the alarm; the model then sends
  // the alarm's line.
  bool ShakeTo(const GSensorSample& sample);

  // Sends a warning, whatever the state of the ignition and the battery.
  void WarnOfPowerOff(PowerOffWarning warning);

  // What a program orders. Only a computer that is on can be suspended.
  void ResetComputer();
  void SuspendComputer();

  // A wake-up source does its work: a computer that is off goes on if the battery allows it, a suspended one
  // resumes.
  void WakeComputer(int source);

  // What the MCU counts at present, and when each count ends if nothing changes.
  struct Countdown {
    McuEventKind kind;
    std::string_view cause;
    TimePoint due;
  };
  std::vector<Countdown> Countdowns(TimePoint now) const;

  // Whether a program has ordered a power cut that is about to come.
  bool IsPowerCutOrdered() const { return ordered_cut_.has_value(); }

  // When the watchdog bites if nothing triggers it before.
  std::optional<McuTimePoint> BiteDue() const;

  // What the MCU does on its own. NextDue says when TakeDueLines next has something to do, if nothing changes
  // meanwhile. TakeDueLines gives the lines that have become due. Call TakeDueLines at that time, and before
  // and after each change: a condition counts from the first call that sees it.
  std::optional<TimePoint> NextDue(TimePoint now) const;
  AnswerLines TakeDueLines(TimePoint now);

  // What the MCU did to the computer, oldest first.
  const std::vector<McuEvent>& Events() const { return events_; }

 private:
  // Carries out a command and gives the last line of its answer.
  std::string CarryOut(const rolu_protocol::Command& command, const rolu_protocol::Values& fields,
                       TimePoint now);

  // Sets all settings to the factory values. Measurements, records and the time of the clock stay.
  void RestoreDefaults();

  // Something that the MCU does once a condition has held for a delay.
  struct DelayedAct {
    McuEventKind kind;
    std::string_view cause;
    bool holds;
    std::uint16_t units;
  };
  static constexpr std::size_t kDelayedActs = 7;
  std::array<DelayedAct, kDelayedActs> DelayedActs(TimePoint now) const;
  bool IsTooLowToStart(TimePoint now) const;

  // Does what is due at `now`. The second call says when there is something next.
  void Step(McuTimePoint now);
  std::optional<McuTimePoint> NextStep() const;
  void FollowConditions();
  void Act(const DelayedAct& act);
  void CutPower(std::string_view cause, std::uint16_t units);
  void Wake(std::string_view cause, int source, std::uint16_t units);
  void Restart();
  void Note(McuEventKind kind, std::string_view cause = {}, std::uint16_t units = 0,
            bool ends_programs = false);
  std::optional<McuTimePoint> NextAlarm() const;

  std::array<HeldCondition, kDelayedActs> conditions_;  // of the delayed acts
  bool ignition_was_off_ = false;                       // since the computer went off or was suspended
  std::optional<McuTimePoint> ordered_cut_;
  McuTimePoint followed_to_{};
  McuTimePoint alarm_followed_to_{};
  AnswerLines unsent_;
  std::vector<McuEvent> events_;
};

}  // namespace rolu_sim
