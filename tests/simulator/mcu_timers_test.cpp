// What the MCU does on its own, with a clock that the test moves.

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using TimedLine = std::pair<std::chrono::milliseconds, std::string>;

// Plays McuSerial: calls the model each time that it is due, up to `until`.
class McuTimers : public testing::Test {
 protected:
  McuTimers() { mcu_.TakeDueLines(now_); }

  std::vector<TimedLine> RunUntil(std::chrono::milliseconds until) {
    const TimePoint end = start_ + until;
    std::vector<TimedLine> sent;
    std::optional<TimePoint> due;
    Take(sent);
    while ((due = mcu_.NextDue(now_)).has_value() && *due <= end) {
      now_ = std::max(*due, now_);
      Take(sent);
    }
    now_ = end;
    Take(sent);
    return sent;
  }

  std::vector<std::chrono::milliseconds> TimesOf(McuEventKind kind) const {
    std::vector<std::chrono::milliseconds> times;
    for (const McuEvent& event : mcu_.Events()) {
      if (event.kind == kind) times.push_back(Elapsed(event.time));
    }
    return times;
  }

  std::chrono::milliseconds Elapsed(TimePoint time) const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time - start_);
  }

  McuModel mcu_;

 private:
  void Take(std::vector<TimedLine>& sent) {
    for (std::string& line : mcu_.TakeDueLines(now_)) sent.emplace_back(Elapsed(now_), std::move(line));
  }

 protected:
  const TimePoint start_{1000s};
  TimePoint now_ = start_;
};

TEST_F(McuTimers, WarnOnceWhenTheIgnitionHasBeenOffForItsDelay) {
  mcu_.Execute("MCUS3000A", now_);
  mcu_.ignition.on = false;
  EXPECT_THAT(RunUntil(9999ms), IsEmpty());
  mcu_.ignition.on = true;  // just in time
  EXPECT_THAT(RunUntil(20s), IsEmpty());
  mcu_.ignition.on = false;
  EXPECT_THAT(RunUntil(100s), ElementsAre(TimedLine(30s, "[0000]")));
  mcu_.Execute("MPAS0", now_);
  mcu_.ignition.on = true;
  RunUntil(101s);
  mcu_.ignition.on = false;
  EXPECT_THAT(RunUntil(200s), IsEmpty());
}

TEST_F(McuTimers, WarnWhenTheBatteryHasBeenLowWithoutABreak) {
  mcu_.power_off.Delay(DelayType::kLowBattery) = 5;
  // The voltage is below 11.485 V from 2.5 s to 6.5 s and from 11.5 s on. Below it the reading is nearer to
  // 2EA than to the threshold 2EB.
  mcu_.SetBatteryCurve(VoltageCurve::Parse("0s=12.0 2s=11.6 4s=11.14 5s=11.14 7s=11.6 11s=11.6 13s=11.14"),
                       start_);
  const std::vector<TimedLine> sent = RunUntil(60s);
  ASSERT_EQ(sent.size(), 1U);
  EXPECT_EQ(sent[0].second, "[0001]");
  EXPECT_NEAR(static_cast<double>(sent[0].first.count()), 16500, 5);
}

TEST_F(McuTimers, DoNotWarnOfABatteryWhoseProtectionIsOff) {
  mcu_.SetBatteryVolts(9.0);
  mcu_.Execute("MCCS10", now_);
  EXPECT_THAT(RunUntil(1000s), IsEmpty());
  mcu_.Execute("MCCS11", now_);
  EXPECT_THAT(RunUntil(2000s), ElementsAre(TimedLine(1030s, "[0001]")));
}

TEST_F(McuTimers, LetTheWatchdogBiteOnceWhenItIsNotTriggered) {
  mcu_.Execute("WDTS0002", now_);
  mcu_.Execute("WDTE", now_);
  RunUntil(1500ms);
  mcu_.Execute("WDTR", now_);
  RunUntil(3400ms);
  EXPECT_THAT(TimesOf(McuEventKind::kWatchdogBite), IsEmpty());
  RunUntil(60s);
  EXPECT_THAT(TimesOf(McuEventKind::kWatchdogBite), ElementsAre(3500ms));
  EXPECT_FALSE(mcu_.watchdog.enabled);
  EXPECT_EQ(mcu_.watchdog.trigger_count, 1U);

  mcu_.Execute("WDTE", now_);
  mcu_.Execute("WDTD", now_);
  RunUntil(120s);
  EXPECT_THAT(TimesOf(McuEventKind::kWatchdogBite), ElementsAre(3500ms));
}

// Something that happens to the vehicle or the computer at a time.
struct Step {
  std::chrono::milliseconds at;
  void (*happen)(McuModel& mcu, TimePoint now);
};

struct PowerRow {
  const char* name;
  std::vector<Step> steps;
  std::vector<std::string> events;
};

// The warnings are there as well; the delays are those of the factory where no step sets them.
const Step kIgnitionOffWithTenUnits = {0s, [](McuModel& mcu, TimePoint now) {
                                         mcu.Execute("MCUS4000A", now);
                                         mcu.ignition.on = false;
                                       }};
const Step kSuspended = {0s, [](McuModel& mcu, TimePoint) { mcu.SuspendComputer(); }};
const Step kBatteryLow = {0s, [](McuModel& mcu, TimePoint) { mcu.SetBatteryVolts(9); }};

TEST_F(McuTimers, CutThePowerAndRestoreItAsTheVehicleGoesOn) {
  const PowerRow rows[] = {
      {"ignition",
       {{0s, [](McuModel& mcu, TimePoint) { mcu.ignition.on = false; }}},
       {"ignition-warning at 30000", "power-cut ignition at 180000"}},
      {"low battery", {kBatteryLow}, {"low-battery-warning at 30000", "power-cut low-battery at 60000"}},
      {"forced shutdown",
       {{1s, [](McuModel& mcu, TimePoint now) { mcu.Execute("MSSS1", now); }}},
       {"power-cut forced-shutdown at 121000"}},
      {"ordered, after the answer",
       {{1s, [](McuModel& mcu, TimePoint now) { mcu.Execute("ATPO", now); }}},
       {"power-cut ordered at 1005"}},
      {"suspended: another delay, counted since the ignition went off",
       {{0s, [](McuModel& mcu, TimePoint now) { mcu.Execute("MCUS60014", now); }},
        kIgnitionOffWithTenUnits,
        {5s, [](McuModel& mcu, TimePoint) { mcu.SuspendComputer(); }}},
       {"suspend at 5000", "power-cut suspend at 20000"}},
      {"the ignition comes back",
       {kIgnitionOffWithTenUnits, {20s, [](McuModel& mcu, TimePoint) { mcu.ignition.on = true; }}},
       {"power-cut ignition at 10000", "power-on ignition at 25000"}},
      {"the ignition was on all the time: it switches nothing on",
       {{1s, [](McuModel& mcu, TimePoint now) { mcu.Execute("ATPO", now); }},
        {90s, [](McuModel& mcu, TimePoint) { mcu.ignition.on = false; }},
        {99s, [](McuModel& mcu, TimePoint) { mcu.ignition.on = true; }}},
       {"power-cut ordered at 1005", "power-on ignition at 104000"}},
      {"the alarm comes at night: all begins anew",
       {kIgnitionOffWithTenUnits,
        {0s,
         [](McuModel& mcu, TimePoint now) {
           for (const char* const command : {"RTCS0E0719050C3B1E", "RTAS000001", "WKMS61"}) {
             mcu.Execute(command, now);  // it is 12:59:30, the alarm comes at each full hour
           }
         }}},
       {"power-cut ignition at 10000", "alarm-wakeup at 30000", "power-on alarm at 30000",
        "power-cut ignition at 40000"}},
      {"a battery too low to start, until it is good again",
       {kIgnitionOffWithTenUnits,
        {15s, [](McuModel& mcu, TimePoint) { mcu.SetBatteryVolts(9); }},
        {16s, [](McuModel& mcu, TimePoint) { mcu.WakeComputer(2); }},
        {20s, [](McuModel& mcu, TimePoint) { mcu.ignition.on = true; }},
        {30s, [](McuModel& mcu, TimePoint) { mcu.SetBatteryVolts(12); }}},
       {"power-cut ignition at 10000", "start-refused source-2 at 16000", "start-refused ignition at 25000",
        "power-on ignition at 35000"}},
      {"a suspended computer resumes",
       {kSuspended, {9s, [](McuModel& mcu, TimePoint) { mcu.WakeComputer(1); }}},
       {"suspend at 0", "resume source-1 at 9000"}},
      {"a bite: the computer starts without the watchdog, all begins anew",
       {kIgnitionOffWithTenUnits,
        {0s,
         [](McuModel& mcu, TimePoint now) {
           mcu.Execute("WDTS0005", now);
           mcu.Execute("WDTE", now);
         }}},
       {"watchdog-bite at 5000", "power-cut ignition at 15000"}},
      {"a reset",
       {kIgnitionOffWithTenUnits, {5s, [](McuModel& mcu, TimePoint) { mcu.ResetComputer(); }}},
       {"reset at 5000", "power-cut ignition at 15000"}},
      {"the MCU's time is faster and its unit shorter: what has passed stays",
       {kIgnitionOffWithTenUnits,
        {2s, [](McuModel& mcu, TimePoint now) { mcu.time.SetSpeed(4, now); }},
        {3s, [](McuModel& mcu, TimePoint) { mcu.time.unit = 800ms; }}},
       {"power-cut ignition at 3500"}},
      {"a computer that survives",
       {{0s, [](McuModel& mcu, TimePoint) { mcu.computer.survives_power_cut = true; }},
        kIgnitionOffWithTenUnits},
       {"power-cut ignition at 10000", "ignition-warning at 30000"}},
  };
  for (const PowerRow& row : rows) {
    SCOPED_TRACE(row.name);
    mcu_ = McuModel();
    mcu_.computer = {.survives_power_cut = false, .survives_bite = false};
    now_ = start_;
    mcu_.TakeDueLines(now_);
    for (const Step& step : row.steps) {
      RunUntil(step.at);
      step.happen(mcu_, now_);
      mcu_.TakeDueLines(now_);
    }
    RunUntil(200s);
    std::vector<std::string> events;
    for (const McuEvent& event : mcu_.Events()) {
      const std::string cause = event.cause.empty() ? "" : " " + event.cause;
      events.push_back(std::string(NameOf(event.kind)) + cause + " at " +
                       std::to_string(Elapsed(event.time).count()));
    }
    EXPECT_EQ(events, row.events);
    EXPECT_FALSE(mcu_.watchdog.enabled);
    EXPECT_FALSE(mcu_.power_off.forced_shutdown);
  }
}

struct AlarmRow {
  const char* setting;
  std::chrono::seconds until;
  std::vector<std::chrono::milliseconds> wakes;
};

TEST_F(McuTimers, WakeTheComputerWheneverTheAlarmMatches) {
  const AlarmRow rows[] = {
      {"RTAS000000", 192h, {}},                               // nothing is to match
      {"RTAS000001", 2h, {30s, 3630s}},                       // each hour at minute 0
      {"RTAS00E101", 48h, {64830s, 151230s}},                 // each day at 07:00
      {"RTAS01E101", 192h, {151230s}},                        // on weekday 0 at 07:00
      {"RTASA14B9B", 192h, {std::chrono::hours(168) - 30s}},  // on weekday 5 at 12:59: that minute has begun
  };
  for (const AlarmRow& row : rows) {
    SCOPED_TRACE(row.setting);
    mcu_ = McuModel();
    now_ = start_;
    mcu_.TakeDueLines(now_);
    mcu_.Execute("RTCS0E0719050C3B1E", now_);  // weekday 5, 12:59:30
    mcu_.Execute(row.setting, now_);
    mcu_.Execute("WKMS61", now_);
    EXPECT_THAT(RunUntil(row.until), IsEmpty());
    EXPECT_EQ(TimesOf(McuEventKind::kAlarmWakeup), row.wakes);
    EXPECT_THAT(mcu_.Execute("WKSG", now_), ElementsAre(row.wakes.empty() ? "00" : "30"));
  }
}

TEST_F(McuTimers, DoNotMakeUpForAlarmsThatCameWhileTheyWereOff) {
  mcu_.Execute("RTAS000001", now_);
  RunUntil(5h);
  mcu_.Execute("WKMS61", now_);
  RunUntil(5h + 1s);
  EXPECT_THAT(TimesOf(McuEventKind::kAlarmWakeup), IsEmpty());
}

TEST_F(McuTimers, ReportAShakeOnlyAboveTheThresholdWithSensorAndAlarmOn) {
  const GSensorSample shaken = {-513, 0, 256};
  EXPECT_FALSE(mcu_.ShakeTo(shaken));
  mcu_.Execute("GSO", now_);
  EXPECT_FALSE(mcu_.ShakeTo(shaken));
  mcu_.Execute("ARGI01", now_);
  EXPECT_FALSE(mcu_.ShakeTo({512, -512, 512}));
  EXPECT_TRUE(mcu_.ShakeTo(shaken));
  mcu_.Execute("GSIS21", now_);
  EXPECT_FALSE(mcu_.ShakeTo(shaken));
  EXPECT_THAT(RunUntil(1s), ElementsAre(TimedLine(0s, "[GI:FDFF00000100]")));
  EXPECT_THAT(mcu_.Execute("GSV", now_), ElementsAre("VFDFF00000100"));
}

}  // namespace
}  // namespace rolu_sim
