// status, get, list and doctor; and what every command must do for its user.

#include <signal.h>
#include <unistd.h>

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
using testing::Not;
using testing::StartsWith;

TEST_F(RoluTest, StatusAsJsonHasEveryListedSettingWithItsUnit) {
  board.gpio().SetInput(36, true);
  EXPECT_EQ(Rolu("pins prepare").status, 0);
  board.mcu().WithModel([](auto& mcu) { mcu.SetBatteryVolts(11.0); });
  const Ended status = Rolu("status --json");
  EXPECT_EQ(status.status, 0) << status.err;
  EXPECT_THAT(status.err, IsEmpty());
  const nlohmann::json fields = status.Json();
  for (const nlohmann::json& setting : Rolu("list --json").Json()) {
    const auto field = fields.find(setting["name"].get<std::string>());
    ASSERT_NE(field, fields.end()) << setting["name"];
    EXPECT_TRUE(field->contains("value")) << setting["name"];
    EXPECT_EQ(field->value("unit", ""), setting.value("unit", "")) << setting["name"];
  }
  EXPECT_EQ(fields["battery.voltage"], nlohmann::json({{"value", 11.0}, {"unit", "V"}}));
  EXPECT_EQ(fields["battery.mode"]["value"], "12V");
  EXPECT_EQ(fields["ignition.state"]["value"], true);
  EXPECT_EQ(fields["gsensor.sample"]["value"], nlohmann::json({0, 0, 1000}));
  EXPECT_EQ(fields["pins.inputs"]["value"], nlohmann::json({0, 1}));
}

TEST_F(RoluTest, StatusSaysInWordsWhyAPartCannotBeRead) {
  board.mcu().Script(CommandMatch::Exactly("WKSG"), Reply::Line("22"), kEveryTime);
  board.devices().SetFaults(rolu_sim::kLuxPath, {.missing = true, .max_read_bytes = {}});
  const Ended status = Rolu("status");
  EXPECT_EQ(status.status, 1);
  EXPECT_THAT(status.out,
              AllOf(HasSubstr("Car battery\n"), HasSubstr("battery.voltage                  12.600 V\n"),
                    HasSubstr("- the MCU reported a value that the library does not know (0xC043)\n"),
                    HasSubstr("light.level                      - the device cannot be opened (0xC00B)\n"),
                    HasSubstr("'rolu pins prepare' makes them available"), Not(HasSubstr("\033"))));
}

TEST_F(RoluTest, StandardOutputCarriesNothingButResults) {
  EXPECT_EQ(Rolu("get -n battery.voltage board.machine").out, "12.600\narmv7l\n");
  EXPECT_EQ(Rolu("get battery.voltage").out, "battery.voltage  12.600 V\n");
}

TEST_F(RoluTest, StatusSaysAfterOneQuestionThatTheMcuIsSilent) {
  board.mcu().SetSilent(true);
  const Ended status = Rolu("status --json");
  EXPECT_EQ(status.status, 4);
  EXPECT_EQ(status.Json()["battery.voltage"]["status"], "0xC048");
  EXPECT_EQ(status.Json()["board.machine"]["value"], "armv7l");
  EXPECT_EQ(status.Json()["display.backlight"]["value"], 10);
  EXPECT_THAT(status.err, HasSubstr("rolu: the MCU did not answer in time"));
  // This is the time for which the library waits for an answer, 3 s.
  EXPECT_THAT(board.mcu().CommandsReceived(), ElementsAre("Hello"));
}

TEST_F(RoluTest, StatusStopsWhereTheMcuFallsSilent) {
  board.mcu().Script(CommandMatch::Exactly("MCVG"), Reply::Silence());
  const Ended status = Rolu("status battery light --json");
  EXPECT_EQ(status.status, 4);
  EXPECT_EQ(status.Json()["battery.low-event-delay"]["status"], "0xC048");
  EXPECT_TRUE(status.Json()["light.level"].contains("value"));
  EXPECT_EQ(board.mcu().CommandsReceived().back(), "MCVG");
}

TEST_F(RoluTest, ASilentMcuIsGivenUpAfterTwoQuestions) {
  board.mcu().SetSilent(true);
  EXPECT_EQ(Rolu("get ignition battery").status, 4);
  EXPECT_THAT(board.mcu().CommandsReceived(), ElementsAre("Hello", "ATF0"));
}

TEST_F(RoluTest, AMissingPortIsNoAnswer) {
  board.RemoveSerialDevice();
  for (const char* const command : {"get battery.voltage", "set watchdog.time=5", "watch", "watchdog feed",
                                    "clock show", "alarm daily 07:30", "doctor"}) {
    const Ended ended = Rolu(command);
    EXPECT_EQ(ended.status, 4) << command;
    EXPECT_THAT(ended.out + ended.err,
                testing::AnyOf(HasSubstr("port cannot be opened"), HasSubstr("No such file")))
        << command;
  }
}

// The process number after `words`; -1 if the text does not have them.
pid_t ProcessBehind(std::string_view words, const std::string& text) {
  const size_t at = text.find(words);
  return at == std::string::npos ? -1 : std::stoi(text.substr(at + words.size()));
}

TEST_F(RoluTest, AnotherOwnerOfThePortIsNamedAndRespected) {
  RoluProcess watch(Words("watch --json --interval 1h"));
  ASSERT_TRUE(watch.WaitForOutput("state"));
  const size_t asked = Received("WDT").size();
  pid_t owner = -1;
  for (const char* const command : {"get watchdog.time", "set watchdog.time=5", "doctor", "watchdog feed"}) {
    const Ended ended = Rolu(command);
    EXPECT_EQ(ended.status, 5) << command;
    owner = ProcessBehind("in use by process ", ended.out + ended.err);
    const std::string status = ReadFile("/proc/" + std::to_string(owner) + "/status");
    ASSERT_EQ(ProcessBehind("PPid:", status), watch.pid()) << command;
  }
  EXPECT_EQ(Received("WDT").size(), asked);
  EXPECT_EQ(Rolu("light").status, 0) << "the light sensor is not the MCU's";
  kill(owner, SIGSTOP);
  EXPECT_EQ(Rolu("get watchdog.time --force").status, 0);
  kill(owner, SIGCONT);
  kill(owner, SIGINT);
  EXPECT_EQ(watch.Wait(), 0) << "the owner's end is that of the command";
  EXPECT_EQ(Rolu("get watchdog.time").status, 0);
}

TEST_F(RoluTest, WrongUseNamesTheNearestAndSendsNothing) {
  const struct {
    const char* command_line;
    const char* message;
  } kCases[] = {
      {"", "a command is missing"},
      {"stauts", R"(there is no command "stauts"; did you mean status?)"},
      {"alarm dayly 07:30", R"(there is no command "dayly"; did you mean daily?)"},
      {"get battery.votlage",
       R"(there is no setting or group "battery.votlage"; did you mean battery.voltage?)"},
      {"get", "NAME is required"},
      {"status --jsn", R"(there is no option "--jsn"; did you mean --json?)"},
      {"light now", R"("now" is one word too many)"},
      {"set battery.lbp", R"("battery.lbp" is not NAME=VALUE)"},
      {"set battery.lpb=on", R"(there is no setting "battery.lpb"; did you mean battery.lbp?)"},
      {"set battery.voltage=12", "battery.voltage can only be read"},
      {"set watchdog.time=5 watchdog.time=6", "watchdog.time is given twice"},
      {"set ignition.on-delay=0", R"(must be a whole number from 1 to 65535, not "0")"},
      {"set ignition.on-delay=65536", R"(must be a whole number from 1 to 65535, not "65536")"},
      {"set ignition.on-delay=5s", R"(must be a whole number from 1 to 65535, not "5s")"},
      {"set ignition.on-delay=99999999999999999999", "must be a whole number from 1 to 65535"},
      {"set watchdog.time=5 battery.lbp=yes", R"(battery.lbp must be on or off, not "yes")"},
      {"set battery.mode=12", R"(battery.mode must be 12V or 24V, not "12")"},
      {"set battery.12v.lbp-threshold=1e1", "must be volts from 0 to 100"},
      {"set battery.12v.lbp-threshold=-11", "must be volts from 0 to 100"},
      {"set alarm.time=7:3", R"(must be a time of day from 00:00 to 23:59, not "7:3")"},
      {"get voltage", R"(there is no setting or group "voltage"; did you mean battery.voltage?)"},
      {"set alarm.time=24:00", R"(must be a time of day from 00:00 to 23:59, not "24:00")"},
      {"set gsensor.alarm-threshold=1999", "must be a whole number from 2000 to 15000"},
      {"watch --for 20", R"(must be a time from 1ms to 8784h, such as 500ms, 2s, 1.5min or 2h, not "20")"},
      {"watch --for 0s", "must be a time from 1ms"},
      {"watch --on ignition-of true", R"(there is no event "ignition-of"; did you mean ignition-off?)"},
      {"clock set 2026-02-30T10:00:00", "must be a time that exists"},
      {"clock set 1999-01-01T10:00:00", "from the years 2000 to 2099"},
      {"alarm weekly mnday 07:30", R"(there is no day "mnday"; did you mean monday?)"},
      {"alarm hourly 60", R"(must be a minute from 00 to 59, not "60")"},
      {"watchdog on --time 0", "0"},
      {"i2c read 0x80", "must be from 0x03 to 0x7f"},
      {"i2c write 0x50 256", "must be from 0x00 to 0xff"},
      {"backlight 11", R"(must be a whole number from 0 to 10, not "11")"},
      {"pins drive high", "LEVEL"},
      {"load /nonexistent", "could not open /nonexistent: No such file or directory"},
  };
  for (const auto& wrong : kCases) {
    const Ended ended = Rolu(wrong.command_line);
    EXPECT_EQ(ended.status, 2) << wrong.command_line;
    EXPECT_THAT(ended.err, AllOf(StartsWith("rolu: "), HasSubstr(wrong.message))) << wrong.command_line;
    EXPECT_THAT(ended.out, IsEmpty()) << wrong.command_line;
  }
  EXPECT_THAT(board.mcu().CommandsReceived(), IsEmpty());
}

TEST_F(RoluTest, ReadingLeavesAGpsReceiverThatIsOnAsItIs) {
  ASSERT_EQ(Rolu("set peripheral.gps=on").status, 0);
  board.devices().ClearAccesses();
  EXPECT_THAT(Rolu("status --json").Json()["peripheral.gps"]["skipped"], HasSubstr("GPS receiver is on"));
  EXPECT_THAT(board.devices().Writes("/sys/class/gpio/gpio45/direction"), IsEmpty());
  EXPECT_EQ(Rolu("get -n peripheral.gps").out, "on\n");
  EXPECT_TRUE(board.gpio().Level(45));
}

TEST_F(RoluTest, DoctorMeasuresTheMcuAndFindsMissingDevices) {
  Ended doctor = Rolu("doctor --json");
  EXPECT_EQ(doctor.status, 0) << doctor.out;
  const nlohmann::json found = doctor.Json();
  EXPECT_EQ(found["in_order"], true);
  EXPECT_EQ(found["latency"]["answered"], 50);
  EXPECT_EQ(Received("ATF1").size(), 50);
  EXPECT_LE(found["latency"]["minimum_ms"], found["latency"]["median_ms"]);
  EXPECT_LE(found["latency"]["median_ms"], found["latency"]["p99_ms"]);
  EXPECT_EQ(found["firmware"], Rolu("get -n mcu.firmware --json").Json()["mcu.firmware"]["value"]);

  board.devices().SetFaults(rolu_sim::kLuxPath, {.missing = true, .max_read_bytes = {}});
  board.mcu().Script(CommandMatch::Exactly("ATF1"), Reply::Silence());
  board.mcu().Script(CommandMatch::Exactly("B22"), Reply::Line("ERR-M08"));
  doctor = Rolu("doctor");
  EXPECT_EQ(doctor.status, 1);
  EXPECT_THAT(doctor.out,
              AllOf(HasSubstr("BAD   light sensor"), HasSubstr("49 of 50: "),
                    HasSubstr("BAD   MCU's settings          backup.charge: the MCU refused the question\n"),
                    HasSubstr("Verdict: the MCU answers, but not all is in order.\n")));
}

TEST_F(RoluTest, DoctorMeasuresTheMcusUnitWithTheIgnition) {
  RoluProcess rolu(Words("doctor --calibrate -y --json"));
  ASSERT_TRUE(rolu.WaitForMessage("turn the ignition off now"));
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = false; });
  ASSERT_TRUE(rolu.WaitForMessage("the ignition is off"));
  board.mcu().WithModel([](auto& mcu) { mcu.WarnOfPowerOff(rolu_sim::PowerOffWarning::kIgnition); });
  ASSERT_TRUE(rolu.WaitForMessage("turn the ignition on again now"));
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = true; });
  EXPECT_EQ(rolu.Wait(), 0) << rolu.err();
  const nlohmann::json measured = nlohmann::json::parse(rolu.out());
  EXPECT_EQ(measured["measured_units"], 30);
  EXPECT_DOUBLE_EQ(measured["mcu_unit_seconds"].get<double>() * 30, measured["measured_seconds"]);

  RunSteps(
      {{"doctor --calibrate", 1, "",
        "warns 30 of its units after ignition off and may cut the power after 90"},
       {"set ignition.hard-off-delay=59", 0},
       {"doctor --calibrate -y", 3, "", "may be cut 29 MCU units after the warning, which comes after 30"}});
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = false; });
  RunSteps({{"doctor --calibrate -y", 3, "", "the ignition is off"}});
}

TEST_F(RoluTest, AProblemIsToldWithoutACircleAndForARead) {
  board.mcu().Script(CommandMatch::Exactly("WDTG"), Reply::Line("ERR-M08"));
  RunSteps(
      {{"get watchdog.time", 3, "", "could not read watchdog.time: the MCU refused the question"},
       {"get pins", 4, "", "could not read pins.inputs: the lines are not prepared; 'rolu pins prepare'"}});
  board.mcu().SetSilent(true);
  EXPECT_THAT(Rolu("doctor").out, Not(HasSubstr("rolu doctor")));
}

TEST_F(RoluTest, AReaderThatGoesAwayEndsItQuietly) {
  RoluProcess rolu(Words("watch --json --interval 10ms"));
  ASSERT_TRUE(rolu.WaitForOutput("state"));
  rolu.StopReading();
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = false; });
  EXPECT_EQ(rolu.Wait(), 1);
  EXPECT_THAT(rolu.err(), IsEmpty());
  EXPECT_EQ(Received("GSF").size(), 1U) << "the G-sensor is taken down";
}

}  // namespace
}  // namespace rolu_test
