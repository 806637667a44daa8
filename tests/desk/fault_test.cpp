// The effect of each fault on a program that uses the library.

#include <gmock/gmock.h>

#include <memory>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;

TEST(Fault, ShowsInWhatTheLibraryAnswers) {
  const struct {
    std::string fault;
    std::string calls;
    std::string says;
  } kRows[] = {
      {"silence:MCVG:times=1", "voltage voltage", "voltage C048\nvoltage C000 12.60\n"},
      {"delay:MCVG:300ms", "voltage", "voltage C000 12.60\n"},
      {"late:MCVG:times=1", "voltage sleep voltage", "voltage C048\nvoltage C000 12.60\n"},
      {"error:MCVG", "voltage", "voltage C002\n"},
      {"error:MC:ERR-B02:times=3", "voltage", "start C045\nvoltage C005\n"},
      {"long-line:ATF1:64", "platform", "platform C048"},
      {"long-line:ATF1:characters=63", "platform", "platform C000 KAVO-ROLU-30"},
      {"drop:MCBG:2", "voltage", "voltage C048"},
      {"missing:lux", "light", "light C00B"},
      {"file:lux:open:EACCES", "light", "light C00B"},
      {"file:lux:read:EIO", "light", "light C000 0"},
      {"i2c:0x50:transfer:EIO", "register", "register C00C"},
      {"missing:serial", "", "start C044\n"},
      {"hang-up", "", "start C044\n"},
  };
  const Directory directory;
  std::vector<std::unique_ptr<Tool>> runs;
  for (const auto& row : kRows) {
    runs.push_back(std::make_unique<Tool>(directory, ClientRun("--fault " + row.fault, row.calls)));
  }
  for (size_t index = 0; index < runs.size(); ++index) {
    EXPECT_EQ(runs[index]->Wait(), 0) << runs[index]->err();
    EXPECT_THAT(runs[index]->out(), HasSubstr(kRows[index].says)) << kRows[index].fault;
  }
}

// With the same seed, random faults act on the same commands in the same way.
TEST(Fault, RepeatsItselfWithItsSeed) {
  const Directory directory;
  const auto run = [&](const std::string& seed) {
    return RunTool(directory,
                   ClientRun("--fault error:ATF1:ERR-Q01:chance=0.5 --fault drop:ATF0:3 --seed " + seed,
                             "platform platform platform platform platform platform platform platform"));
  };
  const Ended first = run("7");
  EXPECT_THAT(first.err, HasSubstr("random faults use the seed 7; --seed 7 repeats them"));
  EXPECT_THAT(first.out, HasSubstr("platform C045\n"));
  EXPECT_THAT(first.out, HasSubstr("platform C000 KAVO-ROLU-30\n"));
  EXPECT_EQ(run("7").out, first.out);
  EXPECT_NE(run("8").out, first.out);
}

TEST(Fault, IsListedUntilItEnds) {
  const Directory directory;
  const ServedBoard board(directory, {"--fault", "missing:serial"});
  for (const std::string fault :
       {"silence MCVG times=2", "error any ERR-B02", "late ATF", "missing lux", "file lux read EIO",
        "file i2c ioctl EPERM", "file i2c ioctl EBUSY", "i2c 0x50 select EIO", "i2c 0x50"}) {
    EXPECT_EQ(board.Ctl("fault-" + fault).status, 0) << fault;
  }
  EXPECT_EQ(board.Ctl("get faults").out,
            "faults:\n"
            "  fault silence, command MCVG, times left 2\n"
            "  fault error, command any, error ERR-B02\n"
            "  fault delay, command ATF, delay 3200 ms\n"
            "  fault missing, file serial\n"
            "  fault file, file i2c, operation ioctl, error EBUSY\n"
            "  fault missing, file lux\n"
            "  fault file, file lux, operation read, error EIO\n"
            "  fault i2c, address 0x50, stage select, error EIO\n"
            "  fault i2c, address 0x50, stage transfer, error EREMOTEIO\n");
  board.Ctl("fault-hang-up");
  EXPECT_THAT(board.Ctl("get faults").out,
              testing::AllOf(HasSubstr("fault hang-up\n"), testing::Not(HasSubstr("file serial"))));
  board.Ctl("replug");
  EXPECT_THAT(board.Ctl("get faults").out, testing::Not(HasSubstr("hang-up")));
  board.Ctl("fault-clear");
  EXPECT_EQ(board.Ctl("get name=faults").out, "faults: none\n");
  EXPECT_THAT(board.Client("voltage light register").out,
              HasSubstr("voltage C000 12.60\nlight C000 350\nregister C000"));
}

TEST(Fault, HangsThePortUpUnderAnOpenLinkAndBringsItBack) {
  const Directory directory;
  const ServedBoard board(directory);
  Tool client(directory, {"join", board.path(), "--", DESK_CLIENT, "failure"});
  ASSERT_TRUE(client.WaitForOutput("first C000"));
  EXPECT_EQ(board.Ctl("fault-hang-up").status, 0);
  EXPECT_EQ(board.Ctl("battery-voltage 13").status, 0);
  EXPECT_THAT(board.Client("").out, HasSubstr("start C044"));
  EXPECT_TRUE(client.WaitForOutput("failure C048"));
  EXPECT_EQ(board.Ctl("replug").status, 0);
  EXPECT_THAT(board.Client("voltage").out, HasSubstr("voltage C000 13.00"));
}

}  // namespace
}  // namespace desk_test
