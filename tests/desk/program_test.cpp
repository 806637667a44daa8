// rolu-sim with a program of its own.

#include <gmock/gmock.h>
#include <signal.h>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(RoluSim, GivesEachOutcomeItsExitStatusAndASentence) {
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* says;
  } kRows[] = {
      {{"--", "sh", "-c", "exit 7"}, 7, ""},
      {{"sh", "-c", "kill -9 $$"}, 128 + SIGKILL, ""},
      {{"--help"}, 0, "--battery"},
      {{"--version"}, 0, "rolu-sim "},
      {{}, 2, "PROGRAM is required"},
      {{"--bogus", "true"}, 2, "--bogus"},
      {{"--mode", "13", "true"}, 2, "{12,24}"},
      {{"--battery", "0s=12.6 2s", "true"}, 2, "as in 2s=12.6"},
      {{"/tmp"}, 126, "rolu-sim: /tmp"},
      {{"no-such-program"}, 127, "rolu-sim: no-such-program"},
  };
  const Directory directory;
  for (const auto& row : kRows) {
    const Ended run = RunTool(directory, row.arguments);
    EXPECT_EQ(run.status, row.status) << run.err;
    EXPECT_THAT(run.out + run.err, HasSubstr(row.says));
  }
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
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"sh", SCRIPTS "whole_board.sh"},
        std::vector<std::string>{"bash", SCRIPTS "whole_board.sh"},
        std::vector<std::string>{"python3", SCRIPTS "whole_board.py"}}) {
    const Ended run = RunTool(directory, command);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
  }
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
