// rolu-sim with one program on a private board.

#include <gmock/gmock.h>
#include <signal.h>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(RoluSim, GivesTheProgramsStatus) {
  const Directory directory;
  EXPECT_EQ(RunTool(directory, {"--", "sh", "-c", "exit 7"}).status, 7);
  EXPECT_EQ(RunTool(directory, {"sh", "-c", "kill -9 $$"}).status, 128 + SIGKILL);
  EXPECT_THAT(RunTool(directory, {"--version"}).out, MatchesRegex("rolu-sim [0-9.]+\n"));
}

TEST(RoluSim, LetsAProgramTalkToTheMicrocontroller) {
  const Directory directory;
  const Ended run =
      RunTool(directory, {"--mode", "24", "--battery", "0s=23.73", "--trace", "-", "--baud", "--", "sh", "-c",
                          "exec 3<>/proc/vpm_serial; printf 'MCVG\\r' >&3; head -n 1 <&3; uname -m"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, MatchesRegex(" +[0-9.]+ > MCVG [^\n]+\n +[0-9.]+ < 05DC +1500 units\n"));
  EXPECT_EQ(run.out, "05DC\r\narmv7l\n");
}

TEST(RoluSim, LetsScriptsUseTheWholeBoard) {
  const Directory directory;
  for (const auto& [program, script] :
       {std::pair("sh", "whole_board.sh"), {"bash", "whole_board.sh"}, {"python3", "whole_board.py"}}) {
    const Ended run = RunTool(directory, {program, std::string(SCRIPTS) + script});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
  }
}

TEST(RoluSim, NamesTheProgramsThatShareTheSerialPort) {
  const Directory directory;
  const Ended run =
      RunTool(directory, {"--", "sh", "-c",
                          "exec 3<>/proc/vpm_serial 4<>/proc/vpm_serial; stty -F /proc/vpm_serial "
                          "; " ROLU_SIM " ctl get board"});
  EXPECT_THAT(run.err, MatchesRegex("rolu-sim: program \"stty\" \\([0-9]+\\) opens the MCU's port while "
                                    "\"sh\" \\([0-9]+\\) has it open: [^\n]+\n"));
  EXPECT_THAT(run.out, HasSubstr("serial port holders: sh ("));
}

TEST(RoluSim, PassesSignalsOnAndCleansUp) {
  const Directory directory;
  Tool trapping(directory,
                {"sh", "-c", "trap 'echo got it; exit 3' TERM; echo ready; while :; do sleep 0.05; done"});
  trapping.WaitForOutput("ready");
  trapping.Signal(SIGTERM);
  EXPECT_EQ(trapping.Wait(), 3);
  EXPECT_THAT(trapping.out(), HasSubstr("got it"));

  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Tool dying(directory, {"sh", "-c", "echo ready; exec sleep 60"});
    dying.WaitForOutput("ready");
    dying.Signal(signal);
    EXPECT_EQ(dying.Wait(), 128 + signal);
  }
}

}  // namespace
}  // namespace desk_test
