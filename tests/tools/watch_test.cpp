// watch: it prints events as they come, and leaves nothing behind at its end.

#include <signal.h>

#include "tests/tools/rolu_process.h"

namespace rolu_test {
namespace {

using rolu_sim::PowerOffWarning;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class WatchTest : public RoluTest {
 protected:
  // Starts a watch and waits until it has reported the state at the start.
  void Start(const std::vector<std::string>& options) {
    rolu.emplace(Joined(Words("watch --interval 10ms"), options));
    ASSERT_TRUE(rolu->WaitForOutput("12.6"));
  }

  void ExpectTakenDown() {
    EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
    EXPECT_THAT(Received("GSF"), ElementsAre("GSF"));
    EXPECT_FALSE(board.mcu().WithModel([](auto& mcu) { return mcu.gsensor.alarm_on; }));
  }

  std::optional<RoluProcess> rolu;
};

TEST_F(WatchTest, EachEventIsOneJsonLineWithItsValues) {
  Start({"--json"});
  const struct {
    const char* name;
    void (*happen)(rolu_sim::McuModel& mcu);
    nlohmann::json values;
  } kEvents[] = {
      {"ignition-off", [](rolu_sim::McuModel& mcu) { mcu.ignition.on = false; }, nlohmann::json::object()},
      {"ignition-on", [](rolu_sim::McuModel& mcu) { mcu.ignition.on = true; }, nlohmann::json::object()},
      {"voltage", [](rolu_sim::McuModel& mcu) { mcu.SetBatteryVolts(11.0); }, {{"volts", 11.0}}},
      {"power-off-ignition", [](rolu_sim::McuModel& mcu) { mcu.WarnOfPowerOff(PowerOffWarning::kIgnition); },
       nlohmann::json::object()},
      {"power-off-battery", [](rolu_sim::McuModel& mcu) { mcu.WarnOfPowerOff(PowerOffWarning::kLowVoltage); },
       nlohmann::json::object()},
      {"shock",
       [](rolu_sim::McuModel& mcu) {
         mcu.ShakeTo({2560, 0, 256});
       },
       {{"x", 10000}, {"y", 0}, {"z", 1000}}},
      {"shock",
       [](rolu_sim::McuModel& mcu) {
         mcu.ShakeTo({0, 3000, 256});
       },
       {{"x", 0}, {"y", 11719}, {"z", 1000}}},
  };
  size_t line_start = rolu->out().find('\n') + 1;
  for (const auto& event : kEvents) {
    board.mcu().WithModel([&](auto& mcu) { event.happen(mcu); });
    ASSERT_TRUE(rolu->WaitForOutput("\n", line_start)) << event.name;
    const size_t line_end = rolu->out().find('\n', line_start);
    nlohmann::json line = nlohmann::json::parse(rolu->out().substr(line_start, line_end - line_start));
    EXPECT_EQ(line["event"], event.name);
    EXPECT_THAT(line["time"].get<std::string>(), testing::MatchesRegex("....-..-..T..:..:..\\....[+-]..:.."));
    line.erase("event");
    line.erase("time");
    EXPECT_EQ(line, event.values) << event.name;
    line_start = line_end + 1;
  }
  rolu->Signal(SIGINT);
  EXPECT_EQ(rolu->Wait(), 0);
  EXPECT_EQ(rolu->out().size(), line_start) << "nothing is told twice: " << rolu->out();
  EXPECT_THAT(rolu->err(), IsEmpty());
  ExpectTakenDown();
}

TEST_F(WatchTest, TextTellsTheSameInWords) {
  Start({"--count", "2"});
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = false; });
  ASSERT_TRUE(rolu->WaitForOutput("ignition off\n"));
  board.mcu().WithModel([](auto& mcu) { mcu.SetBatteryVolts(10.0); });
  EXPECT_EQ(rolu->Wait(), 0) << "the second event ends it";
  EXPECT_THAT(rolu->out(), AllOf(HasSubstr("watching: ignition on, car battery 12.600 V\n"),
                                 HasSubstr("car battery: 10.000 V\n"), Not(HasSubstr("\033"))));
  ExpectTakenDown();
}

TEST_F(WatchTest, ASilentMcuIsToldAndOutlived) {
  Start({"--json"});
  board.mcu().SetSilent(true);
  ASSERT_TRUE(rolu->WaitForOutput("mcu-silent"));
  board.mcu().SetSilent(false);
  ASSERT_TRUE(rolu->WaitForOutput("mcu-back"));
  board.mcu().WithModel([](auto& mcu) { mcu.WarnOfPowerOff(PowerOffWarning::kLowVoltage); });
  ASSERT_TRUE(rolu->WaitForOutput("power-off-battery"));
  rolu->Signal(SIGTERM);
  EXPECT_EQ(rolu->Wait(), 0);
  ExpectTakenDown();
}

TEST_F(WatchTest, AnEndWhileTheMcuIsSilentSaysWhatCouldNotBeTakenDown) {
  Start({"--json"});
  board.mcu().SetSilent(true);
  ASSERT_TRUE(rolu->WaitForOutput("mcu-silent"));
  rolu->Signal(SIGINT);
  EXPECT_EQ(rolu->Wait(), 128 + SIGINT);
  EXPECT_THAT(rolu->err(), HasSubstr("the G-sensor and its alarm may still be on"));
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
}

TEST_F(WatchTest, APortThatHangsUpAndComesBackIsOutlived) {
  Start({"--json"});
  for (const bool ignition : {false, true}) {
    const size_t told = rolu->out().size();
    const size_t said = rolu->err().size();
    board.RemoveSerialDevice();
    board.mcu().HangUp();
    ASSERT_TRUE(rolu->WaitForMessage("the MCU's port hung up", said));
    ASSERT_TRUE(rolu->WaitForOutput("mcu-silent", told));
    board.mcu().WithModel([&](auto& mcu) { mcu.ignition.on = ignition; });
    board.ReplugSerialPort();
    ASSERT_TRUE(rolu->WaitForMessage("the MCU's port is back", said));
    ASSERT_TRUE(rolu->WaitForOutput("mcu-back", told));
    ASSERT_TRUE(rolu->WaitForOutput(ignition ? "ignition-on" : "ignition-off", told))
        << "what changed meanwhile";
  }
  const size_t told = rolu->out().size();
  board.mcu().WithModel([](auto& mcu) { mcu.WarnOfPowerOff(PowerOffWarning::kIgnition); });
  ASSERT_TRUE(rolu->WaitForOutput("power-off-ignition", told));
  board.mcu().WithModel([](auto& mcu) { mcu.ShakeTo({2560, 0, 256}); });
  ASSERT_TRUE(rolu->WaitForOutput("shock", told));
  rolu->Signal(SIGINT);
  EXPECT_EQ(rolu->Wait(), 0);
  EXPECT_EQ(rolu->out().find("state", rolu->out().find("state") + 1), std::string::npos) << "told once";
  ExpectTakenDown();
}

TEST_F(WatchTest, AnEndWhileThePortIsAwaySaysWhatCouldNotBeTakenDown) {
  Start({"--json"});
  board.RemoveSerialDevice();
  board.mcu().HangUp();
  ASSERT_TRUE(rolu->WaitForMessage("the MCU's port hung up"));
  rolu->Signal(SIGTERM);
  EXPECT_EQ(rolu->Wait(), 4);
  EXPECT_THAT(rolu->err(), HasSubstr("could not take down the G-sensor: the MCU's port hung up"));
}

TEST_F(WatchTest, AKillLeavesTheBoardAsItWas) {
  Start({"--json"});
  rolu->Signal(SIGKILL);
  EXPECT_EQ(rolu->Wait(), 128 + SIGKILL);
  ExpectTakenDown();
}

TEST_F(WatchTest, ItEndsAfterItsTime) {
  const auto start = std::chrono::steady_clock::now();
  const Ended watch = Rolu("watch --for 700ms");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(700));
  EXPECT_EQ(watch.status, 0);
  ExpectTakenDown();
}

TEST_F(WatchTest, CommandsRunAtTheirEventBesideTheWatching) {
  TemporaryDirectory directory;
  const std::string marker = directory.File("seen");
  Start({"--on", "ignition-off", "echo $ROLU_EVENT >> " + marker + "; exit 4", "--on", "ignition-off",
         "echo noise; exit 3", "--on", "ignition-on", "echo never >> " + marker, "--on", "shock",
         "sleep 1000"});
  board.mcu().WithModel([](auto& mcu) { mcu.ignition.on = false; });
  ASSERT_TRUE(rolu->WaitForOutput("ignition off"));
  board.mcu().WithModel([](auto& mcu) { mcu.ShakeTo({2560, 0, 256}); });
  ASSERT_TRUE(rolu->WaitForOutput("G-sensor alarm"));
  ASSERT_TRUE(rolu->WaitForMessage(R"("echo noise; exit 3" ended with status 3)"));
  ASSERT_TRUE(rolu->WaitForMessage("exit 4\" ended with status 4"));
  rolu->Signal(SIGINT);
  EXPECT_EQ(rolu->Wait(), 0) << "a command that goes on is ended";
  EXPECT_EQ(ReadFile(marker), "ignition-off\n");
  EXPECT_THAT(rolu->out(), Not(HasSubstr("noise")));
  EXPECT_THAT(rolu->err(), AllOf(HasSubstr("noise\n"), HasSubstr(R"("sleep 1000" was ended by signal 15)")));
  ExpectTakenDown();
}

}  // namespace
}  // namespace rolu_test
