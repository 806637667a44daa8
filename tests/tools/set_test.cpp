// set: what it checks, asks, sends and reads back.

#include <signal.h>

#include "tests/tools/rolu_process.h"

namespace rolu_test {
namespace {

using rolu_sim::CommandMatch;
using rolu_sim::kEveryTime;
using rolu_sim::Reply;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST_F(RoluTest, EveryWritableSettingCanBeSetToWhatItTakesAndReadsBack) {
  // One process sets everything, as a commissioning script would.
  std::vector<std::string> arguments = {"set", "-y", "--json"};
  for (const nlohmann::json& setting : Rolu("list --json").Json()) {
    if (setting["writable"] == false) continue;
    const std::string name = setting["name"];
    std::string value = "on";
    if (setting.contains("maximum")) value = std::to_string(setting["maximum"].get<int>());
    if (setting.contains("choices")) value = setting["choices"].back();
    if (name == "alarm.time") value = "23:59";
    if (name.rfind("battery.12v.", 0) == 0) value = "11.7";
    if (name.rfind("battery.24v.", 0) == 0) value = "21.5";
    arguments.push_back(name + "=" + value);
  }
  const Ended set = Rolu(arguments);
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(set.Json().size(), arguments.size() - 3);
  EXPECT_EQ(Rolu("get -n alarm").out, "weekly\n6\n23:59\non\n");
  EXPECT_EQ(Rolu("get -n battery.mode battery.preboot battery.lbp").out, "24V\non\non\n");
  EXPECT_TRUE(board.gpio().Level(45));
  EXPECT_TRUE(board.wireless().IsUp());
}

TEST_F(RoluTest, TheOrderOnTheWireIsThatOfTheTable) {
  ASSERT_EQ(
      Rolu("set -y battery.lbp=on battery.preboot=on battery.24v.lbp-threshold=22 battery.mode=24V").status,
      0);
  EXPECT_THAT(Received("MCBS"), ElementsAre("MCBS02"));
  EXPECT_THAT(Received("MCPS"), ElementsAre("MCPS21056F"));
  EXPECT_THAT(Received("MCCS"), ElementsAre("MCCS00", "MCCS10", "MCCS11"));
}

TEST_F(RoluTest, AValueThatTheMcuRoundsIsToldAsItBecame) {
  RunSteps(
      {{"set -y battery.12v.lbp-threshold=11", 0, "battery.12v.lbp-threshold = 11.000 V (was 11.493)\n"},
       {"set -y gsensor.alarm-threshold=2062", 0,
        "gsensor.alarm-threshold = 2000 sensor units, the nearest to 2062 that the MCU holds (was 2000)\n"}});
}

TEST_F(RoluTest, WhatWeakensAGuardAsksFirst) {
  const struct {
    const char* command_line;
    const char* consequence;
    const char* setter;  // the command that is sent after the answer yes
  } kCases[] = {
      {"set battery.mode=24V", "switches the pre-boot and the low-battery protection off", "MCBS02"},
      {"set battery.lbp=off", "switches the low-battery protection off", "MCCS10"},
      {"set battery.preboot=off", "switches the pre-boot protection off", "MCCS01"},
      {"set battery.12v.preboot-threshold=11", "moves a threshold", "MCPS3002CB"},
      {"set poweroff.warning=off", "switches off the warning before a power-off", "MPAS0"},
      {"set shutdown.forced=on", "switches the forced shutdown on", "MSSS1"},
      {"watchdog off", "switches the watchdog off", "WDTD"},
      {"watchdog on", "lets the watchdog reset the computer", "WDTE"},
      {"defaults", "replaces all settings of the MCU", "EEDF"},
      {"force-shutdown", "cuts the computer's power at once", "ATPO"},
  };
  for (const auto& risky : kCases) {
    for (const char* const answer : {"", "n\n", "\n", "yellow\n"}) {
      board.mcu().Log().Clear();
      const Ended asked = Rolu(risky.command_line, answer);
      EXPECT_EQ(asked.status, 1) << risky.command_line;
      EXPECT_THAT(asked.err, AllOf(HasSubstr(risky.consequence), HasSubstr("go on? [y/N]"),
                                   HasSubstr("nothing was done")));
      EXPECT_THAT(board.mcu().CommandsReceived(), IsEmpty()) << risky.command_line;
    }
    const rolu_sim::BatteryState before = board.mcu().WithModel([](auto& mcu) { return mcu.battery; });
    for (const bool by_option : {false, true}) {
      board.mcu().WithModel([&](auto& mcu) { mcu.battery = before; });
      board.mcu().Log().Clear();
      const Ended done =
          by_option ? Rolu(std::string(risky.command_line) + " -y") : Rolu(risky.command_line, "y\n");
      EXPECT_EQ(done.status, 0) << risky.command_line << done.err;
      EXPECT_EQ(done.err.find("go on?") == std::string::npos, by_option);
      EXPECT_THAT(Received(risky.setter), ElementsAre(risky.setter)) << risky.command_line;
    }
    board.mcu().WithModel([&](auto& mcu) { mcu.battery = before; });
  }
}

TEST_F(RoluTest, WhatIsHarmlessDoesNotAsk) {
  const Ended set =
      Rolu("set battery.lbp=on ignition.off-event-delay=20 poweroff.warning=on shutdown.forced=off");
  EXPECT_EQ(set.status, 0);
  EXPECT_THAT(set.err, IsEmpty());
  EXPECT_THAT(set.out, HasSubstr("ignition.off-event-delay = 20 MCU units (was 30)\n"));
}

TEST_F(RoluTest, ARefusedValueIsNamedWithTheMcusRangeAndTheRestIsDone) {
  RunSteps(
      {{"set -y battery.12v.lbp-threshold=50 watchdog.time=12", 1, "watchdog.time = 12 MCU units (was 60)\n",
        "rolu: battery.12v.lbp-threshold = 50.000 could not be set: the board refused the value "
        "(ROLU_STATUS_INVALID_PARAMETER, 0xC002)"},
       {"set -y battery.12v.lbp-threshold=50", 3, "", "the MCU's range is 10.493 to 12.000 V"}});
  const nlohmann::json set = Rolu("set -y --json battery.12v.lbp-threshold=50").Json();
  EXPECT_EQ(set["battery.12v.lbp-threshold"]["before"], 11.493);
  EXPECT_THAT(set["battery.12v.lbp-threshold"]["error"].get<std::string>(), StartsWith("could not be set"));
}

TEST_F(RoluTest, ASettingThatReadsBackDifferentlyIsNoSuccess) {
  board.mcu().Script(CommandMatch::StartingWith("WDTS"), Reply::Line("OK"), kEveryTime);
  RunSteps({{"set watchdog.time=12", 3, "", "watchdog.time = 12 was set, but reads back as 60 MCU units"}});
}

TEST_F(RoluTest, AChangeOfTheBatteryModeRemindsOfTheProtectionsThatItLeavesOff) {
  RunSteps({{"set -y battery.mode=24V battery.lbp=on", 0, "", "'rolu set battery.preboot=on' switches"}});
  EXPECT_THAT(Rolu("set -y battery.mode=24V battery.lbp=on battery.preboot=on").err, IsEmpty());
}

TEST_F(RoluTest, ASignalOrATimeoutEndsTheWaitForASilentMcu) {
  const struct {
    const char* command_line;
    const char* unanswered;
    const char* last_words;
  } kCases[] = {
      {"status --json", "WKSG", "the board did not answer"},
      {"watchdog on --feed", "WDTR", "the watchdog may be on, and nobody feeds it"},
      {"clock sync", "RTCG", "the board did not answer"},
      {"set watchdog.time=5 display.backlight=4", "WDTS0005",
       "watchdog.time = 5 may or may not be set; not set: display.backlight = 4"},
  };
  for (const auto& each : kCases) {
    for (const bool by_signal : {true, false}) {
      board.mcu().Log().Clear();
      board.mcu().Script(CommandMatch::Exactly(each.unanswered), Reply::Silence());
      RoluProcess rolu(Words(std::string(each.command_line) + (by_signal ? "" : " --timeout 1s")));
      ASSERT_TRUE(board.mcu().WaitForCommand(each.unanswered, kGenerous)) << each.command_line;
      if (by_signal) rolu.Signal(SIGINT);
      EXPECT_EQ(rolu.Wait(), by_signal ? 128 + SIGINT : 4) << each.command_line;
      EXPECT_THAT(rolu.err(),
                  AllOf(HasSubstr(by_signal ? "by a signal: Interrupt; " : "than --timeout allows; "),
                        HasSubstr(each.last_words)));
      EXPECT_THAT(rolu.out(), testing::Not(HasSubstr("{"))) << "a document is complete or not there";
    }
  }
}

TEST_F(RoluTest, AnAlarmThatWasNeverSetTakesItsTimeOnceItHasAMode) {
  RunSteps({{"set alarm.time=07:30", 3},
            {"set alarm.time=07:30 alarm.mode=daily", 0},
            {"get -n alarm", 0, "daily\n0\n07:30\noff\n"}});
}

}  // namespace
}  // namespace rolu_test
