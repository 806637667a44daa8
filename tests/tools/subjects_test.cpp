// The commands for single subjects: clock, alarm, watchdog, i2c, pins, light, backlight, reset.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <regex>

#include "tests/support/interface_header.h"
#include "tests/tools/rolu_process.h"

namespace rolu_test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(RoluTest, TheAlarmIsSetShownAndSwitchedOff) {
  RunSteps({
      {"alarm", 0, "alarm.mode     none\n", "  rolu alarm daily      Wake the computer each day\n"},
      {"alarm daily 07:30", 0,
       "alarm.mode     daily\nalarm.weekday  0\nalarm.time     07:30\nalarm.active   on\n"},
      {"alarm hourly 15", 0, "alarm.mode     hourly\nalarm.weekday  0\nalarm.time     00:15\n"},
      {"alarm weekly sat 06:05", 0, "alarm.mode     weekly\nalarm.weekday  6\nalarm.time     06:05\n"},
      {"alarm weekly 2 6:05", 0, "alarm.weekday  2\nalarm.time     06:05\n"},
      {"set alarm.time=7:30", 0, "alarm.time = 07:30 (was 06:05)\n"},
      {"set alarm.time=06:05", 0},
      {"alarm off", 0, "alarm.time     06:05\nalarm.active   off\n"},
  });
  EXPECT_EQ(Rolu("alarm show --json").Json()["alarm.mode"]["value"], "weekly");
}

TEST_F(RoluTest, TheClockIsSetToATimeAndToTheSystems) {
  RunSteps({
      {"clock set 2030-02-28T23:59:58", 0, "clock.time             2030-02-28 23:59:5"},
      {"clock set 2030-02-28T10:00:00 --weekday 6", 0, "clock.weekday          6\n"},
      {"clock show", 0, "clock.time             2030-02-28 10:00:0"},
      {"clock set 2030-02-28T7:30", 0, "clock.time             2030-02-28 07:30:0"},
      {"clock set 14:05", 0, " 14:05:0"},
  });
  // 2030-02-28 is a Thursday, which is 4 when Sunday is 0.
  EXPECT_THAT(Received("RTCS").front(), testing::EndsWith("3B3A"));
}

TEST_F(RoluTest, TheClockIsSetWithin50MillisecondsOfTheSystemsSecond) {
  RunSteps({{"clock sync", 0, "clock.ahead-of-system"}});
  rolu_sim::TimePoint arrival;
  for (const rolu_sim::WireEvent& line : board.mcu().Log().Lines()) {
    if (line.bytes.starts_with("RTCS")) arrival = line.time;
  }
  const auto on_system_clock =
      std::chrono::system_clock::now() + (arrival - rolu_sim::TimePoint::clock::now());
  const auto error = on_system_clock - std::chrono::round<std::chrono::seconds>(on_system_clock);
  EXPECT_LE(std::chrono::abs(error), std::chrono::milliseconds(50));
}

TEST_F(RoluTest, AClockThatDoesNotTakeTheTimeIsNoSuccess) {
  board.mcu().Script(rolu_sim::CommandMatch::StartingWith("RTCS"), rolu_sim::Reply::Lines({"OK", "OK"}));
  RunSteps({{"clock set 2030-02-28T10:00:00", 3, "",
             "was set to 2030-02-28 10:00:00, but reads back as 2014-07-25"}});
}

TEST_F(RoluTest, TheWatchdogIsFedWhileTheCommandRunsAndOffAfter) {
  RoluProcess feeding(Words("watchdog on --time 2 --feed --every 50ms"));
  ASSERT_TRUE(board.mcu().WaitForCommand("WDTR", kGenerous, 5));
  EXPECT_TRUE(board.mcu().WithModel([](auto& mcu) { return mcu.watchdog.enabled; }));
  EXPECT_THAT(Received("WDTS"), ElementsAre("WDTS0002"));
  feeding.Signal(SIGINT);
  EXPECT_EQ(feeding.Wait(), 0);
  EXPECT_THAT(feeding.out(),
              AllOf(HasSubstr("the watchdog is on\n"), HasSubstr("times; the watchdog is off\n")));
  EXPECT_FALSE(board.mcu().WithModel([](auto& mcu) { return mcu.watchdog.enabled; }));
  RunSteps({
      {"watchdog on -y --time 60", 0, "the watchdog is on\n"},
      {"watchdog feed", 0, "the watchdog is fed\n"},
      {"watchdog feed --for 100ms --every 10ms --json", 0, R"({"watchdog":"as it was","fed":)"},
  });
  EXPECT_TRUE(board.mcu().WithModel([](auto& mcu) { return mcu.watchdog.enabled; }))
      << "feeding leaves it on";
}

TEST_F(RoluTest, I2cDevicesAreReadWrittenAndDumped) {
  for (unsigned i = 0; i < 256; ++i) {
    board.register_device().SetRegister(static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i));
  }
  RunSteps({
      {"i2c read 0x50 --register 0x10 --count 3", 0, "ef ee ed\n"},
      {"i2c read 80 --register 16", 0, "ef\n"},
      {"i2c write 0x50 0x10 1 0x02 -y", 0, ""},
      {"i2c read 0x50 --register 0x10 --count 3 --json", 0, "\"bytes\": [\n    1,\n    2,\n    237\n  ]"},
      {"i2c dump 0x50", 0, "10: 01 02 ed ec eb ea e9 e8 e7 e6 e5 e4 e3 e2 e1 e0  ................\n20: df"},
      {"i2c write 0x50 0x10 9", 1, "", "writes 10 09 to the device at address 0x50"},
      {"i2c detect", 0, "50: 50 -- -- "},
      {"i2c detect", 0, "found 1; 0x78, the board's reset controller, was not asked\n"},
      {"i2c read 0x51", 3, "", "could not read from address 0x51: the device refused the transfer"},
  });
  EXPECT_EQ(Rolu("i2c dump 0x50 --json").Json()["bytes"].size(), 256U);
  EXPECT_EQ(board.register_device().Register(0x10), 1) << "not confirmed, not written";
  EXPECT_THAT(board.mcu().CommandsReceived(), IsEmpty());
}

TEST_F(RoluTest, ARawCommandGoesAtOnceWhenItOnlyAsks) {
  RunSteps({
      {"raw MCBG", 0, "03                12 V system\n"},
      {"raw RTCS1E021C04173B05 -y", 0, "OK                done\nOK                done\n"},
      {"raw WKMS61", 1, "", "sends WKMS61 to the MCU: switch wake-up source 6 (the clock's alarm) on"},
      {"raw XYZ -y", 3, "ERR-C01           refused: the MCU does not know the command\n"},
      {"raw MCBG9", 1, "", "with fields that do not fit"},
      {"raw --json MCBG", 0, R"("words": "12 V system")"},
  });
  EXPECT_THAT(board.mcu().CommandsReceived(), ElementsAre("MCBG", "RTCS1E021C04173B05", "XYZ", "MCBG"));
  board.mcu().Script(rolu_sim::CommandMatch::Exactly("MCVG"), rolu_sim::Reply::Silence());
  RunSteps({{"raw MCVG", 4, "", "the MCU did not answer in time"}});
}

TEST(RoluExplain, KnowsEveryStatusOfTheHeader) {
  std::map<std::string, unsigned long> explained;
  for (const nlohmann::json& status : Rolu("explain --json").Json()) {
    explained[status["name"]] = status["number"];
    EXPECT_THAT(status["cause"].get<std::string>(), testing::EndsWith("."));
  }
  std::map<std::string, unsigned long> declared;
  const std::string& header = HeaderText();
  const std::regex row("(ROLU_STATUS_\\w+) = (0x\\w+)");
  for (std::sregex_iterator match(header.begin(), header.end(), row), end; match != end; ++match) {
    declared[(*match)[1]] = std::stoul((*match)[2], nullptr, 0);
  }
  EXPECT_EQ(explained, declared);
  RunSteps({{"explain 49224", 0, "ROLU_STATUS_VPM_NO_REPLY (0xC048, 49224)\n"},
            {"explain no_reply 0xC002", 0, "ROLU_STATUS_INVALID_PARAMETER (0xC002, "},
            {"explain VPM_NO_REPYL", 2, "", "did you mean VPM_NO_REPLY?"}});
}

TEST_F(RoluTest, DevicesBesideTheMcuAreReadAndSet) {
  board.gpio().SetInput(37, true);
  board.light_sensor().SetNumber(421);
  RunSteps({
      {"light", 0, "light.level  421 lux\n"},
      {"backlight", 0, "display.backlight  10\n"},
      {"backlight 3", 0, "display.backlight = 3 (was 10)\n"},
      {"backlight", 0, "display.backlight  3\n"},
      {"pins read", 4, "", "the lines are not prepared; 'rolu pins prepare'"},
      {"pins drive low high", 0, "out1  low   gpio35\nout2  high  gpio34\n"},
      {"pins read", 0, "in1   high  gpio37\nin2   low   gpio36\nout1  low   gpio35\nout2  high  gpio34\n"},
      {"pins out1=1", 0, "out1  high  gpio35\nout2  high  gpio34\n"},
      {"pins out2=low", 0, "out1  high  gpio35\nout2  low   gpio34\n"},
      {"pins", 0, "out1  high  gpio35\nout2  low   gpio34\n"},
      {"pins raed", 2, "", "did you mean read?"},
      {"pins out3=1", 2, "", "out1=LEVEL or out2=LEVEL"},
      {"pins out1=up", 2, "", R"(a level must be high or low, 1 or 0, not "up")"},
  });
  EXPECT_TRUE(board.gpio().Level(35));
  EXPECT_FALSE(board.gpio().Level(34));
  EXPECT_EQ(Rolu("pins drive 1 1 --json").Json()["pins.outputs"]["value"], nlohmann::json({1, 1}));
  EXPECT_THAT(board.mcu().CommandsReceived(), IsEmpty());
}

TEST_F(RoluTest, AResetIsOrderedOnlyWhenItIsConfirmed) {
  RunSteps({{.command_line = "reset", .status = 1, .input = "no\n"}});
  EXPECT_EQ(board.reset_controller().ResetCount(), 0);
  RunSteps({{.command_line = "reset", .status = 0, .input = "yes\n"}});
  EXPECT_EQ(board.reset_controller().ResetCount(), 1);
}

TEST_F(RoluTest, ASignalAtAQuestionEndsWithoutAnOrder) {
  int never[2];
  ASSERT_EQ(pipe2(never, O_CLOEXEC), 0);
  RoluProcess reset({"reset"}, never[0]);
  ASSERT_TRUE(reset.WaitForMessage("go on?"));
  reset.Signal(SIGINT);
  EXPECT_EQ(reset.Wait(), 128 + SIGINT);
  EXPECT_EQ(board.reset_controller().ResetCount(), 0);
  close(never[0]);
  close(never[1]);
}

}  // namespace
}  // namespace rolu_test
