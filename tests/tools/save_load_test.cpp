// save and load: settings of a unit as a file.

#include <signal.h>

#include "tests/tools/rolu_process.h"

namespace rolu_test {
namespace {

using rolu_sim::BatteryMode;
using rolu_sim::CommandMatch;
using rolu_sim::kEveryTime;
using rolu_sim::Reply;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SaveLoadTest : public RoluTest {
 protected:
  // The unit's settings as `save` writes them.
  nlohmann::json Settings() {
    const Ended save = Rolu("save -");
    EXPECT_EQ(save.status, 0) << save.err;
    return save.Json()["settings"];
  }

  // The commands that set something: those whose fourth character is S, and two others.
  std::vector<std::string> Setters() {
    std::vector<std::string> setters = Received("");
    std::erase_if(setters, [](const std::string& command) {
      const bool sets = command.substr(0, 4).back() == 'S' || command == "ARGI01" || command == "EEDF";
      return !sets;
    });
    return setters;
  }

  // A file with these settings.
  std::string FileWith(const nlohmann::json& settings) {
    std::string path = directory.File("unit.json");
    WriteFile(path,
              nlohmann::json({{"format", "rolu-settings"}, {"version", 1}, {"settings", settings}}).dump());
    return path;
  }

  TemporaryDirectory directory;
};

TEST_F(SaveLoadTest, AUnitIsSavedAndMadeSoAgainAfterEverythingChanged) {
  const std::string path = directory.File("unit.json");
  RunSteps({{"set -y alarm.mode=weekly alarm.weekday=3 alarm.time=05:45 alarm.active=on ignition.mode=2 "
             "ignition.on-delay=7 mcu.at-mode=4 mcu.keep-alive-mode=2 wakeup.source-10=on "
             "shutdown.source-1=off battery.12v.lbp-threshold=10.9 gsensor.alarm-threshold=3000 "
             "watchdog.time=99 display.backlight=4",
             0},
            {"save " + path, 0}});
  EXPECT_THAT(directory.Names(), ElementsAre("unit.json"));
  const nlohmann::json saved = nlohmann::json::parse(ReadFile(path));
  EXPECT_EQ(saved["settings"]["battery.12v.lbp-threshold"]["unit"], "V");

  RunSteps({{"defaults -y", 0}, {"set -y battery.mode=24V", 0}, {"backlight 9", 0}});
  ASSERT_NE(Settings(), saved["settings"]);

  const Ended load = Rolu("load -y " + path);
  EXPECT_EQ(load.status, 0) << load.err;
  EXPECT_THAT(load.out, AllOf(HasSubstr("battery.mode: 24V -> 12V\n"), HasSubstr("battery.lbp: off -> on\n"),
                              HasSubstr("the unit is as the file says\n")));
  EXPECT_EQ(Settings(), saved["settings"]);
  board.mcu().Log().Clear();
  EXPECT_THAT(Rolu("load " + path).out, HasSubstr("0 to set, "));
  EXPECT_THAT(Setters(), IsEmpty()) << "what is as it should be is left alone";
}

TEST_F(SaveLoadTest, TheProtectionsEndAsTheFileSaysWhateverTheModeChangeDoes) {
  for (const char* const preboot : {"on", "off"}) {
    for (const char* const lbp : {"on", "off", "as it was"}) {
      board.mcu().WithModel([](auto& mcu) {
        mcu.battery.mode = BatteryMode::k12V;
        mcu.battery.protection_enabled = {true, true};
      });
      nlohmann::json settings = {{"battery.mode", {{"value", "24V"}}},
                                 {"battery.preboot", {{"value", std::string(preboot) == "on"}}}};
      if (std::string(lbp) != "as it was") settings["battery.lbp"]["value"] = std::string(lbp) == "on";
      const std::string path = FileWith(settings);
      const Ended load = Rolu("load -y " + path);
      EXPECT_EQ(load.status, 0) << load.err;
      const rolu_sim::BatteryState battery = board.mcu().WithModel([](auto& mcu) { return mcu.battery; });
      EXPECT_EQ(battery.mode, BatteryMode::k24V);
      EXPECT_THAT(battery.protection_enabled,
                  ElementsAre(std::string(preboot) == "on", std::string(lbp) != "off"));
    }
  }
}

TEST_F(SaveLoadTest, AnEndBetweenModeAndProtectionsLeavesNoProtectionOff) {
  const std::string path =
      FileWith({{"battery.mode", {{"value", "24V"}}}, {"watchdog.time", {{"value", 5}}}});
  // The answer to the change of the mode takes 2 s, in which the signal comes.
  board.mcu().Script(CommandMatch::Exactly("MCBS02"), Reply::Line("OK", std::chrono::seconds(2)));
  RoluProcess load(Words("load -y " + path));
  ASSERT_TRUE(board.mcu().WaitForCommand("MCBS02", kGenerous));
  load.Signal(SIGINT);
  EXPECT_EQ(load.Wait(), 128 + SIGINT);
  EXPECT_THAT(load.err(), HasSubstr("watchdog.time = 5 was not set, because a signal asked for an end"));
  EXPECT_THAT(Received("WDTS"), IsEmpty());
  EXPECT_THAT(board.mcu().WithModel([](auto& mcu) { return mcu.battery.protection_enabled; }),
              ElementsAre(true, true));
}

TEST_F(SaveLoadTest, ADryRunShowsTheDifferenceAndSetsNothing) {
  const std::string path = FileWith({{"battery.mode", {{"value", "24V"}}},
                                     {"ignition.on-delay", {{"value", 77}, {"unit", "MCU units"}}},
                                     {"watchdog.time", {{"value", 60}}}});
  const Ended text = Rolu("load --dry-run " + path);
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_THAT(text.out,
              AllOf(HasSubstr("battery.mode: 12V -> 24V\n"), HasSubstr("ignition.on-delay: 5 -> 77\n"),
                    HasSubstr("battery.lbp: on -> on (the change of battery.mode switches it off)\n"),
                    Not(HasSubstr("watchdog.time"))));
  const nlohmann::json plan = Rolu("load --dry-run --json " + path).Json();
  EXPECT_EQ(plan["dry_run"], true);
  EXPECT_EQ(plan["changes"]["ignition.on-delay"],
            nlohmann::json({{"before", 5}, {"wanted", 77}, {"unit", "MCU units"}}));
  EXPECT_THAT(plan["unchanged"], Contains("watchdog.time"));
  EXPECT_THAT(Setters(), IsEmpty());
}

TEST_F(SaveLoadTest, WhatCouldNotBeSetIsNamedAndTheRestIsDone) {
  const std::string path = FileWith({{"ignition.mode", {{"value", 2}}}, {"watchdog.time", {{"value", 7}}}});
  board.mcu().Script(CommandMatch::StartingWith("IGMS"), Reply::Line("ERR-M08"), kEveryTime);
  const Step load = {"load " + path, 1, "",
                     "rolu: ignition.mode = 2 could not be set: the board refused the value"};
  // The same again, when only the refused setting is left to set.
  RunSteps({load, {"get -n watchdog.time", 0, "7\n"}, load});
}

TEST_F(SaveLoadTest, ASettingThatAnotherOneMovedIsFoundAtTheEnd) {
  const std::string path = FileWith({{"ignition.mode", {{"value", 2}}}, {"watchdog.time", {{"value", 7}}}});
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.mode = 2; });
  board.mcu().Script(CommandMatch::Exactly("IGMG"), Reply::Line("2"));
  board.mcu().Script(CommandMatch::Exactly("IGMG"), Reply::Line("1"));
  RunSteps({{"load " + path, 1, "", "ignition.mode = 2 is in the file, but the unit ends with 1"}});
}

TEST_F(SaveLoadTest, AFileThatIsNotWhollyUnderstoodChangesNothing) {
  const std::string good = FileWith({{"watchdog.time", {{"value", 7}, {"unit", "MCU units"}}}});
  const std::string text = ReadFile(good);
  const auto with = [&](const std::string& from, const std::string& to) {
    std::string changed = text;
    const size_t at = changed.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return changed.replace(at, from.size(), to);
  };
  const struct {
    std::string content;
    const char* message;
  } kCases[] = {
      {"", "is empty or cannot be read"},
      {text.substr(0, text.size() / 2), "is broken: parse error at line 1"},
      {text + "}", "is broken: parse error"},
      {std::string(2'000'000, ' '), "is too large"},
      {"[1, 2]", "was not written by 'rolu save'"},
      {with("rolu-settings", "other"), "was not written by 'rolu save'"},
      {with("\"version\":1", "\"version\":2"), "has version 2; this program reads version 1"},
      {with("\"version\":1", R"("version":1,"later":1)"), R"(has an unknown part "later")"},
      {with("\"settings\":", "\"settinks\":"), "has no settings"},
      {with("watchdog.time", "watchdog.tine"),
       R"(there is no setting "watchdog.tine"; did you mean watchdog.time?)"},
      {with("watchdog.time", "battery.voltage"), "battery.voltage cannot be loaded"},
      {with("\"value\":7", "\"value\":70000"),
       "watchdog.time must be a whole number from 1 to 65535, not 70000"},
      {with("\"value\":7", "\"value\":7.5"), "not 7.5"},
      {with("\"value\":7", R"("value":"7")"), "not \"7\""},
      {with("\"value\":7", "\"value\":null"), "not null"},
      {with("\"value\":7", "\"valeu\":7"), "watchdog.time has no value"},
      {with("MCU units", "hours"), R"(watchdog.time is in "hours", not in "MCU units")"},
      {with("\"watchdog.time\":", R"("watchdog.time":{"value":6},"watchdog.time":)"),
       R"("watchdog.time" is there twice)"},
      {with("\"watchdog.time\":",
            R"("ignition.on-delay":{"value":9},"no.such":{"value":1},"watchdog.time":)"),
       R"(there is no setting "no.such")"},
      {"watchdog.time = 5\n\nwatchdog.tine = 5",
       R"(line 3: there is no setting "watchdog.tine"; did you mean)"},
      {"watchdog.time = 70000",
       "line 1: watchdog.time must be a whole number from 1 to 65535, not \"70000\""},
      {"watchdog.time", "line 1: this is not NAME = VALUE"},
      {"watchdog.time = 5\nwatchdog.time = 6", "line 2: watchdog.time is there twice"},
      {"battery.voltage = 12", "line 1: battery.voltage can only be read"},
      {"# nothing\n", "has no settings"},
      {R"({"watchdog.tine": {"value": 5}})", R"(there is no setting "watchdog.tine")"},
  };
  const std::string path = directory.File("wrong.json");
  for (const auto& wrong : kCases) {
    WriteFile(path, wrong.content);
    const Ended load = Rolu("load -y " + path);
    EXPECT_EQ(load.status, 2) << wrong.message;
    EXPECT_THAT(load.err, AllOf(HasSubstr(path), HasSubstr(wrong.message), HasSubstr("Nothing was changed")));
  }
  EXPECT_THAT(board.mcu().CommandsReceived(), IsEmpty());
}

TEST_F(SaveLoadTest, AFileMayBeLinesOrWhatGetAndStatusPrint) {
  const std::string lines = directory.Write("unit.txt",
                                            "# unit 17\n\n  ignition.on-delay = 9 MCU units # as in 16\r\n"
                                            "battery.12v.lbp-threshold=10.9V\nalarm.mode = 'daily'\n"
                                            "alarm.time = 7:30\n");
  RunSteps({{"verify " + lines, 1, "ignition.on-delay: 9 in the file, 5 on the unit\n"},
            {"load -y " + lines, 0, "the unit is as the file says\n"},
            {"verify " + lines, 0, "4 of 4 settings are as the file says\n"}});
  const std::string status = directory.Write("status.json", Rolu("status --json").out);
  const std::string readings = directory.Write("get.json", Rolu("get --json ignition alarm").out);
  RunSteps(
      {{"set ignition.on-delay=3 watchdog.time=33", 0},
       {"verify " + status, 1, "watchdog.time: 60 in the file, 33 on the unit\n",
        "values of the file that cannot be set: "},
       {"load " + readings, 0, "ignition.on-delay: 3 -> 9\n", "values of the file that cannot be set: 1;"}});
  const nlohmann::json verified = Rolu("verify --json " + status).Json();
  EXPECT_EQ(verified["differences"], nlohmann::json({{"watchdog.time", {{"wanted", 60}, {"found", 33}}}}));
  EXPECT_THAT(verified["left_out"], Contains("battery.voltage"));
  board.mcu().Script(CommandMatch::Exactly("WDTG"), Reply::Line("ERR-C01"));
  RunSteps({{"verify " + status, 1, "",
             "watchdog.time is 60 in the file, but could not be read: the MCU answered"}});
  board.mcu().SetSilent(true);
  RunSteps({{"verify " + status, 4, "", "nothing was compared: the MCU did not answer"}});
}

TEST_F(SaveLoadTest, SaveNamesWhatIsNotInTheFileAndAsksBeforeItReplacesOne) {
  const std::string path = directory.File("unit.json");
  board.mcu().Script(CommandMatch::Exactly("IGMG"), Reply::Line("ERR-C01"), kEveryTime);
  const Ended save = Rolu("save " + path);
  EXPECT_EQ(save.status, 1);
  EXPECT_THAT(save.err,
              AllOf(HasSubstr("ignition.mode is not in the file: the MCU answered with an error"),
                    HasSubstr("alarm.mode is not in the file: it is none, which cannot be set again")));
  EXPECT_FALSE(nlohmann::json::parse(ReadFile(path))["settings"].contains("ignition.mode"));
  const std::string before = ReadFile(path);
  EXPECT_EQ(Rolu("save " + path, "n\n").status, 1);
  EXPECT_EQ(ReadFile(path), before);
  board.mcu().SetSilent(true);
  EXPECT_EQ(Rolu("save -y " + path).status, 4);
  EXPECT_EQ(ReadFile(path), before) << "a silent MCU empties no file";
  EXPECT_THAT(directory.Names(), ElementsAre("unit.json"));
}

}  // namespace
}  // namespace rolu_test
