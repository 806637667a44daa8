// What each fault does to a program that uses the library.

#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;

TEST(Fault, ShowsInWhatTheLibraryAnswers) {
  const struct {
    std::string fault;
    std::vector<std::string> calls;
    std::string says;
  } kRows[] = {
      {"silence:MCVG:times=1", {"voltage", "voltage"}, "voltage C048\nvoltage C000 12.60\n"},
      {"delay:MCVG:300ms", {"voltage"}, "voltage C000 12.60\n"},
      {"late:MCVG:times=1", {"voltage", "sleep", "voltage"}, "voltage C048\nvoltage C000 12.60\n"},
      {"error:MCVG", {"voltage"}, "voltage C002\n"},
      {"error:MC:ERR-B02:times=3", {"voltage"}, "start C045\nvoltage C005\n"},
      {"long-line:ATF1:64", {"platform"}, "platform C048"},
      {"long-line:ATF1:characters=63", {"platform"}, "platform C000 KAVO-ROLU-30"},
      {"drop:MCBG:2", {"voltage"}, "voltage C048"},
      {"missing:lux", {"light"}, "light C00B"},
      {"file:lux:open:EACCES", {"light"}, "light C00B"},
      {"file:lux:read:EIO", {"light"}, "light C000 0"},
      {"i2c:0x50:transfer:EIO", {"register"}, "register C00C"},
      {"missing:serial", {}, "start C044\n"},
      {"hang-up", {}, "start C044\n"},
  };
  const Directory directory;
  std::vector<std::unique_ptr<Tool>> runs;
  for (const auto& row : kRows) {
    runs.push_back(std::make_unique<Tool>(directory, ClientRun({"--fault", row.fault}, row.calls)));
  }
  for (size_t index = 0; index < runs.size(); ++index) {
    EXPECT_EQ(runs[index]->Wait(), 0) << runs[index]->err();
    EXPECT_THAT(runs[index]->out(), HasSubstr(kRows[index].says)) << kRows[index].fault;
  }
}

TEST(Fault, DelaysNoLessThanAsked) {
  const Directory directory;
  RunTool(directory,
          ClientRun({"--fault", "delay:MCVG:250ms", "--trace", directory.File("trace")}, {"voltage"}));
  double sent = 0;
  double answered = 0;
  for (const nlohmann::json& record : Records(directory.Read("trace"))) {
    if (record.value("line", "") == "MCVG") sent = record["t_s"];
    if (record.value("words", "") == "819 units") answered = record["t_s"];
  }
  EXPECT_GE(answered - sent, 0.25);
}

// Random faults strike the same commands in the same way with the same seed.
TEST(Fault, RepeatsItselfWithItsSeed) {
  const Directory directory;
  const auto run = [&](const std::string& seed) {
    return RunTool(directory, ClientRun({"--fault", "error:ATF1:ERR-Q01:chance=0.5", "--fault", "drop:ATF0:3",
                                         "--seed", seed},
                                        std::vector<std::string>(12, "platform")));
  };
  const Ended first = run("7");
  EXPECT_THAT(first.err, HasSubstr("random faults use the seed 7; --seed 7 repeats them"));
  EXPECT_THAT(first.out, HasSubstr("platform C045\n"));
  EXPECT_THAT(first.out, HasSubstr("platform C000 KAVO-ROLU-30\n"));
  EXPECT_EQ(run("7").out, first.out);
  EXPECT_NE(run("8").out, first.out);
}

// In the words of the verbs that made them.
std::vector<std::string> FaultsOf(const ServedBoard& board) {
  std::vector<std::string> faults;
  for (const nlohmann::json& fault : board.Get("faults")) {
    std::string words = fault["fault"];
    for (const auto& [name, value] : fault.items()) {
      if (name != "fault")
        words += ' ' + name + '=' + (value.is_string() ? value.get<std::string>() : value.dump());
    }
    faults.push_back(std::move(words));
  }
  return faults;
}

TEST(Fault, IsListedUntilItEnds) {
  const Directory directory;
  const ServedBoard board(directory, {"--fault", "missing:serial"});
  const char* const kMade[] = {
      "silence MCVG times=2", "error any ERR-B02",    "missing lux",         "file lux read EIO",
      "file i2c ioctl EPERM", "file i2c ioctl EBUSY", "i2c 0x50 select EIO", "i2c 0x50"};
  for (const char* const fault : kMade) {
    std::istringstream words("fault-" + std::string(fault));
    EXPECT_EQ(board.Ctl({std::istream_iterator<std::string>(words), {}}).status, 0) << fault;
  }
  EXPECT_THAT(FaultsOf(board),
              testing::ElementsAre("silence command=MCVG times_left=2", "error command=any error=ERR-B02",
                                   "missing file=serial", "file error=EBUSY file=i2c operation=ioctl",
                                   "missing file=lux", "file error=EIO file=lux operation=read",
                                   "i2c address=0x50 error=EIO stage=select",
                                   "i2c address=0x50 error=EREMOTEIO stage=transfer"));
  board.Ctl({"fault-hang-up"});
  EXPECT_THAT(FaultsOf(board), testing::AllOf(testing::Contains("hang-up"),
                                              testing::Not(testing::Contains("missing file=serial"))));
  board.Ctl({"replug"});
  EXPECT_THAT(FaultsOf(board), testing::Not(testing::Contains("hang-up")));
  board.Ctl({"fault-clear"});
  EXPECT_EQ(board.Ctl({"get", "name=faults"}).out, "faults: none\n");
  EXPECT_THAT(board.Client({"voltage", "light", "register"}).out,
              HasSubstr("voltage C000 12.60\nlight C000 350\nregister C000"));
}

TEST(Fault, HangsThePortUpUnderAnOpenLinkAndBringsItBack) {
  const Directory directory;
  const ServedBoard board(directory);
  Tool client(directory, {"join", board.path(), "--", DESK_CLIENT, "failure"});
  ASSERT_TRUE(client.WaitForOutput("first C000"));
  EXPECT_EQ(board.Ctl({"fault-hang-up"}).status, 0);
  EXPECT_EQ(board.Ctl({"battery-voltage", "13"}).status, 0);
  EXPECT_THAT(board.Client({}).out, HasSubstr("start C044"));
  EXPECT_TRUE(client.WaitForOutput("failure C048"));
  EXPECT_EQ(board.Ctl({"replug"}).status, 0);
  EXPECT_THAT(board.Client({"voltage"}).out, HasSubstr("voltage C000 13.00"));
}

}  // namespace
}  // namespace desk_test
