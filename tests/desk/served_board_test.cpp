// A board that stays up for several programs and terminals, which use, steer and read it.

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <thread>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ServedBoard, KeepsWhatOneProgramDidForTheNext) {
  const Directory directory;
  ServedBoard board(directory);
  EXPECT_THAT(board.Client("outputs watchdog").out, HasSubstr("outputs C000\nwatchdog C000\n"));

  const nlohmann::json pins = board.Get("pins");
  EXPECT_EQ(pins["gpio35"], nlohmann::json({{"exported", true}, {"direction", "out"}, {"level", 1}}));
  EXPECT_EQ(pins["gpio34"]["level"], 0);
  const nlohmann::json command = board.Get("commands").back();
  EXPECT_EQ(command["command"], "WDTE");
  EXPECT_EQ(command["words"], "switch the watchdog on");
}

TEST(ServedBoard, ShowsProgramsWhatIsSetByHand) {
  const struct {
    const char* words;
    const char* call;
    const char* says;
  } kRows[] = {
      {"battery-voltage 11.2", "voltage", "voltage C000 11.20"},
      {"battery-voltage volts=9 over=10ms", "sleep voltage", "voltage C000 9.00"},
      {"battery-curve 0s=10.0 10ms=10.5", "sleep", ""},
      {"battery-mode 24", "voltage", "voltage C000 10.50"},
      {"pin 37 1", "inputs", "inputs C000 10"},
      {"lux 777", "light", "light C000 777"},
      {"i2c-write 0x50 0x10 2A 2B", "register", "register C000 42"},
      {"answer ATF1 *PLT:WHATEVER", "platform", "platform C000 WHATEVER"},
      {"fault-i2c 0x50 select", "register", "register C00C"},
  };
  const Directory directory;
  const ServedBoard board(directory);
  for (const auto& row : kRows) {
    const Ended done = board.Ctl(row.words);
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_THAT(board.Client(row.call).out, HasSubstr(row.says)) << row.words;
  }
}

TEST(ServedBoard, ReadsBackEachSubject) {
  const struct {
    const char* words;
    const char* reading;
    nlohmann::json::json_pointer member;
    nlohmann::json value;
  } kRows[] = {
      {"ignition off", "ignition", "/on"_json_pointer, false},
      {"battery-mode 24", "battery", "/system_v"_json_pointer, 24},
      {"wakeup-source alarm", "sources", "/last_wakeup_code"_json_pointer, "30"},
      {"clock 2024-02-28 23:59:00", "clock", "/weekday"_json_pointer, 3},
      {"gsensor -300 0 256", "gsensor", "/x"_json_pointer, -300},
      {"shock z=9", "gsensor", "/z"_json_pointer, 256},
      {"backup-battery celsius=-20 percent=55", "backup-battery", "/temperature_c"_json_pointer, -19.95},
      {"backup-battery volts=3.7", "backup-battery", "/charge_percent"_json_pointer, 55},
      {"backlight 3", "backlight", "/level"_json_pointer, 3},
      {"wlan on", "peripherals", "/wlan"_json_pointer, true},
      {"i2c-attach 0x21", "i2c-registers", "/0x21/F0"_json_pointer, std::string(32, '0')},
  };
  const Directory directory;
  const ServedBoard board(directory);
  for (const auto& row : kRows) {
    const Ended done = board.Ctl(row.words);
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_EQ(board.Get(row.reading).at(row.member), row.value) << row.words;
  }
  EXPECT_THAT(board.Ctl("show").out, AllOf(HasSubstr("system: 24 V\n"), HasSubstr("charge: 55 %\n")));
  EXPECT_THAT(board.Ctl("clock 07:30").out, HasSubstr("2024-02-29 07:30:00"));
}

// With the port hung up, nothing can trigger the watchdog.
TEST(ServedBoard, SaysThatTheWatchdogBitAlsoWhileItsPortIsHungUp) {
  for (const char* const before : {"lux 1", "fault-hang-up"}) {
    const Directory directory;
    ServedBoard board(directory, {"--fail-on-bite"});
    board.Client("watchdog");
    EXPECT_EQ(board.Ctl(before).status, 0);
    EXPECT_EQ(board.Ctl("wait BITE").status, 0);
    EXPECT_EQ(board.Get("watchdog")["bites"], 1);
    EXPECT_EQ(board.Get("watchdog")["left_s"], nullptr);
    EXPECT_EQ(board.Ctl("stop").status, 0);
    EXPECT_EQ(board.tool().Wait(), 6);
    EXPECT_THAT(board.tool().err(), HasSubstr("*** WATCHDOG BITE"));
  }
}

TEST(ServedBoard, StaysUpWhileItsComputerIsOff) {
  const Directory directory;
  const ServedBoard board(directory, {"--mcu-unit", "10ms", "--set", "ignition.hard-off-delay=2"});
  const auto join = [&](const std::vector<std::string>& words) {
    return Joined({"join", board.path()}, words);
  };
  Tool program(directory, join({"--", "sh", "-c", "echo 35 >/sys/class/gpio/export; echo ready; sleep 60"}));
  ASSERT_TRUE(program.WaitForOutput("ready"));
  EXPECT_EQ(board.Ctl("ignition off").status, 0);
  EXPECT_EQ(program.Wait(), 128 + SIGKILL);
  EXPECT_EQ(board.Get("power-off")["computer"], "off");
  EXPECT_EQ(board.Get("power-off")["cuts"][0]["cause"], "ignition");
  const Ended refused = RunTool(directory, join({"--", "true"}));
  EXPECT_EQ(refused.status, 4);
  EXPECT_THAT(refused.err, HasSubstr("is off"));

  EXPECT_THAT(board.Ctl("wakeup-source 2").out, HasSubstr("switched off and wakes nobody"));
  Tool next(directory, join({"--wait", "20s", "--", "ls", "/sys/class/gpio"}));
  EXPECT_EQ(board.Ctl("ignition on").status, 0);
  EXPECT_EQ(next.Wait(), 0);
  EXPECT_EQ(next.out(), "export\n");
}

TEST(ServedBoard, StopsProgramsWhileItsComputerIsSuspended) {
  const Directory directory;
  const ServedBoard board(directory);
  Tool program(directory, {"join", board.path(), "--", "sh", "-c", "echo ready; exec sleep 60"});
  ASSERT_TRUE(program.WaitForOutput("ready"));
  const auto state = [&] {
    const std::string stat = rolu_test::ReadFile("/proc/" + std::to_string(program.pid()) + "/stat");
    return stat.substr(stat.rfind(')') + 2, 1);
  };
  EXPECT_EQ(board.Ctl("suspend").status, 0);
  EXPECT_TRUE(WaitUntil([&] { return state() == "T"; }));
  EXPECT_THAT(board.Ctl("wakeup-source 1").out, HasSubstr("the computer is on"));
  EXPECT_TRUE(WaitUntil([&] { return state() == "S"; }));
  EXPECT_EQ(board.Get("events").back()["cause"], "source-1");
}

TEST(ServedBoard, SurvivesWhatTheSystemRefusesToOneWhoSteersIt) {
  const Directory directory;
  const ServedBoard board(directory);
  std::filesystem::rename(board.path() + "/proc", board.path() + "/elsewhere");
  const Ended refused = board.Ctl("replug");
  EXPECT_EQ(refused.status, 3);
  EXPECT_THAT(refused.err, HasSubstr("cannot create symlink"));
  EXPECT_EQ(board.Get("ignition")["on"], true);
  std::filesystem::remove_all(board.path() + "/elsewhere");
}

TEST(ServedBoard, SendsWarningsToAProgramThatWaits) {
  const Directory directory;
  const ServedBoard board(directory);
  Tool client(directory, {"join", board.path(), "--", DESK_CLIENT, "warning"});
  ASSERT_TRUE(client.WaitForOutput("registered C000"));
  // The client waits for the warning only after it has said so and released its lock. Nothing shows this
  // moment, so the warning is sent until the client reports one.
  while (!client.WaitForOutput("warned", 0, std::chrono::milliseconds(200))) {
    ASSERT_EQ(board.Ctl("power-off-warning ignition").status, 0);
  }
  EXPECT_EQ(client.Wait(), 0);
}

TEST(ServedBoard, WaitsForWhatComesAndGivesUpInTime) {
  const Directory directory;
  const ServedBoard board(directory);
  Tool waiting(directory, {"ctl", "--board", board.path(), "wait", "MCVG", "times=2"});
  board.Ctl("fault-silence MCVG times=1");
  board.Client("voltage voltage");
  EXPECT_EQ(waiting.Wait(), 0);
  EXPECT_THAT(waiting.out(), HasSubstr("> MCVG"));
  const Ended late = board.Ctl("wait WDTE timeout=50ms");
  EXPECT_EQ(late.status, 1);
  EXPECT_THAT(late.err, HasSubstr("did not come within 50ms"));
  EXPECT_EQ(board.Ctl("wait MCVG next timeout=50ms").status, 1);
}

TEST(ServedBoard, LivesBesideOthersAndLeavesOnlyWhatIsNotItsOwn) {
  const Directory directory;
  const Directory other_directory;
  ServedBoard board(directory);
  ServedBoard other(other_directory);
  board.Ctl("battery-voltage 10");
  other.Ctl("battery-voltage 14");
  EXPECT_THAT(board.Client("voltage").out, HasSubstr("voltage C000 10.00"));
  EXPECT_THAT(other.Client("voltage").out, HasSubstr("voltage C000 14.00"));

  std::filesystem::create_directory(directory.File("board/lib"));
  directory.Write("board/lib/notes.txt", "mine");
  board.Ctl("wlan on");
  board.tool().Signal(SIGINT);
  EXPECT_EQ(board.tool().Wait(), 0);
  EXPECT_THAT(directory.Names(), ElementsAre("board"));
  EXPECT_EQ(directory.Read("board/lib/notes.txt"), "mine");
  other.tool().Signal(SIGTERM);
  EXPECT_EQ(other.tool().Wait(), 0);
  EXPECT_THAT(other_directory.Names(), ElementsAre());
}

TEST(ServedBoard, TakesThePlaceOfOneThatWasKilled) {
  const Directory directory;
  {
    ServedBoard killed(directory);
    killed.tool().Signal(SIGKILL);
    EXPECT_EQ(killed.tool().Wait(), 128 + SIGKILL);
  }
  EXPECT_THAT(directory.Names(), ElementsAre("board"));
  Tool one(directory, {"serve", directory.path() + "/board"});
  Tool other(directory, {"serve", directory.path() + "/board"});
  EXPECT_NE(one.WaitForOutput("rolu-sim join"), other.WaitForOutput("rolu-sim join"));
  EXPECT_THAT(one.err() + other.err(), HasSubstr("already"));
  EXPECT_THAT(RunTool(directory, {"join", directory.path() + "/board", "--", DESK_CLIENT, "voltage"}).out,
              HasSubstr("voltage C000 12.60"));
}

TEST(ServedBoard, HasLeftItsDirectoryWhenItWasStopped) {
  const Directory directory;
  for (int round = 0; round < 5; ++round) {
    const ServedBoard board(directory);
    EXPECT_EQ(board.Ctl("stop").status, 0);
    EXPECT_THAT(directory.Names(), ElementsAre());
  }
}

TEST(ServedBoard, TakesNothingAwayThatIsNotOfABoard) {
  const Directory directory;
  std::filesystem::create_directory(directory.File("bin"));
  directory.Write("bin/tool", "mine");
  EXPECT_EQ(RunTool(directory, {"serve", directory.path()}).status, 2);
  EXPECT_EQ(directory.Read("bin/tool"), "mine");

  // What the links for emulated programs lead to is not the board's.
  const Directory linked;
  std::filesystem::create_directories(linked.File("board/lib"));
  std::filesystem::create_directory_symlink(directory.File("bin"), linked.File("board/lib/link"));
  EXPECT_EQ(RunTool(linked, {"serve", linked.File("board")}).status, 2);
  std::filesystem::rename(linked.File("board/lib/link"), linked.File("board/lib/librolu-sim-preload.so"));
  Tool tool(linked, {"serve", linked.File("board")});
  EXPECT_TRUE(tool.WaitForOutput("rolu-sim join"));
  EXPECT_EQ(directory.Read("bin/tool"), "mine");
}

// The signal may come at any moment after the start.
TEST(ServedBoard, LeavesNothingBehindWheneverItIsInterrupted) {
  const Directory directory;
  for (int delay_us = 0; delay_us < 40000; delay_us += 2000) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"serve", directory.path() + "/board"},
          std::vector<std::string>{"run", "--scenario", "misbehaving-mcu", "--", "sleep", "60"}}) {
      Tool tool(directory, arguments);
      std::this_thread::sleep_for(std::chrono::microseconds(delay_us));
      tool.Signal(SIGINT);
      tool.Wait();
      // The runtime of the thread sanitizer has a file here until main begins.
      std::vector<std::string> names = directory.Names();
      std::erase_if(names, [](const std::string& name) { return name.starts_with("tsan.rodata."); });
      EXPECT_THAT(names, ElementsAre()) << arguments.front() << " after " << delay_us;
    }
  }
}

}  // namespace
}  // namespace desk_test
