// Wrong input of users, and the messages for it.

#include <gmock/gmock.h>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(BadInput, GetsAStatusAndASentenceThatHelps) {
  const Directory directory;
  const std::string full = directory.Write("file", "x");
  const std::string trace =
      directory.Write("trace", "{\"t_s\": 0, \"direction\": \"to-mcu\", \"line\": \"A\"}\n{\"t_s\": 1}\n");
  const std::string text_trace = directory.Write("text-trace", "   0.1 > MCVG\n");
  const std::string scenario = directory.Write("scenario", "{\n\"events\": [{}]}");
  const std::string ends =
      directory.Write("ends", R"({"events": [{"at": 0, "expect": "end", "within": 1}]})");
  const ServedBoard board(directory);
  const std::string here = " --board " + board.path() + ' ';
  const struct {
    std::string words;
    int status;
    std::string says;
  } kRows[] = {
      {"", 2, "PROGRAM is required"},
      {"/tmp", 126, "rolu-sim: /tmp"},
      {"sevre", 127, "did you mean serve?"},
      {"--bogus true", 2, "--bogus"},
      {"--mode 13 true", 2, "{12,24}"},
      {"--battery 2s true", 2, "as in 2s=12.6"},
      {"run --fault silnce -- true", 2, R"(no fault "silnce"; did you mean silence?)"},
      {"run --fault delay:MCVG -- true", 2, "fault-delay needs \"time\""},
      {"run --fault error:MCVG:ERR-M8 -- true", 2, "did you mean ERR-M08?"},
      {"run --seed 4294967296 -- true", 2, "0 to 4294967295"},
      {"run --scenarios x -- true", 2, "did you mean --scenario?"},
      {"trace --folow", 2, "did you mean --follow?"},
      {"serve one two", 2, "is one word too many"},
      {"run --scenario cold-stat -- true", 2, "did you mean cold-start?"},
      {"run --scenario " + scenario + " -- true", 2, "scenario:2:12: \"at\" is missing"},
      {"run --replay " + trace + " -- true", 2, "trace:2: \"direction\" is missing"},
      {"run --replay " + text_trace + " -- true", 2, "text-trace:1: is not JSON"},
      {"run --replay " + full + "no -- true", 2, "cannot be read"},
      {"run --strict -- true", 2, "--strict requires --replay"},
      {"run --replay " + trace + " --strict --lenient -- true", 2, "--strict excludes --lenient"},
      {"serve --scenario " + ends + ' ' + full + "no", 2, "\"end\" is for rolu-sim run"},
      {"ctl play " + ends + here, 2, "\"end\" is for rolu-sim run"},
      {"run --trace /no/such/directory/trace -- true", 125, "/no/such/directory/trace"},
      {"serve", 2, "DIR is required"},
      {"serve " + full, 2, "is not an empty directory"},
      {"serve " + directory.path(), 2, "is not an empty directory"},
      {"serve " + directory.path() + "/" + std::string(90, 'x'), 2, "at most 90"},
      {"serve " + board.path(), 5, "a board is up at " + board.path() + " already"},
      {"join " + directory.path() + " -- true", 4, "no board answers at " + directory.path()},
      {"join " + board.path() + " -- no-such-program", 127, "no-such-program"},
      {"trace", 2, "--board DIR"},
      {"trace --for 3 --board " + full, 2, "must be a time"},
      {"ctl --board " + board.path(), 2, "WORD is required"},
      {"scenarios --check " + scenario, 2, "\"do\" is missing"},
      {"ctl ignitoin on" + here, 2, R"(no verb "ignitoin"; did you mean ignition?)"},
      {"ctl stpo" + here, 2, "did you mean stop?"},
      {"ctl stop --board=" + board.path() + " now", 2, "stop takes no \"now\""},
      {"ctl ignition" + here, 2, "ignition needs \"state\", the key: on or off"},
      {"ctl ignition of" + here, 2, R"("state" must be on or off, not "of"; did you mean off?)"},
      {"ctl ignition on off" + here, 2, "ignition takes no \"off\"; usage: ignition STATE"},
      {"ctl ignition on state=on" + here, 2, "given twice"},
      {"ctl battery-voltage 100.1" + here, 2, "must be a number from 0 to 100 V, not \"100.1\""},
      {"ctl battery-voltage 12V" + here, 2, "not \"12V\""},
      {"ctl gsensor 1 2 32768" + here, 2, "from -32768 to 32767"},
      {"ctl i2c-write 0x50 0 0" + here, 2, "pairs of hexadecimal digits"},
      {"ctl i2c-write 0x51 0 00" + here, 3, "i2c-attach 0x51 puts one there"},
      {"ctl i2c-attach 0x78" + here, 2, "from 3 to 119"},
      {"ctl fault-missing luxx" + here, 2, "did you mean lux?"},
      {"ctl fault-file serial open EIO" + here, 3, "can only be missing"},
      {"ctl backup-battery" + here, 3, "needs a value"},
      {"ctl get wachdog" + here, 2, "did you mean watchdog?"},
      {"ctl play " + scenario + here, 2, "scenario:2:12: \"at\" is missing"},
      {"ctl send \xff" + here, 2, "not UTF-8"},
  };
  for (const auto& row : kRows) {
    const Ended result = RunTool(directory, Words(row.words));
    EXPECT_EQ(result.status, row.status) << row.words << ": " << result.err;
    EXPECT_THAT(result.err, HasSubstr(row.says));
    EXPECT_THAT(result.err, StartsWith("rolu-sim: "));
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(board.Get("ignition")["on"], true);
  EXPECT_EQ(board.Get("battery")["voltage_v"], 12.6);
}

TEST(Help, TellsOfEachSubcommandAndVerb) {
  const Directory directory;
  for (const char* const subcommand : {"run", "serve", "join", "ctl", "trace", "scenarios"}) {
    const Ended help = RunTool(directory, {subcommand, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr(std::string("Usage: rolu-sim ") + subcommand));
    EXPECT_THAT(help.out, HasSubstr("Exit status"));
  }
  EXPECT_THAT(RunTool(directory, {"ctl", "wait", "--help"}).out, testing::StartsWith("wait TEXT"));
  EXPECT_THAT(RunTool(directory, {"ctl", "fault-delay", "--help"}).out,
              StartsWith("fault-delay COMMAND TIME [TIMES] [CHANCE]\n"));
  EXPECT_THAT(RunTool(directory, {"man"}).out, HasSubstr("\\fBfault\\-delay COMMAND TIME"));
}

TEST(Completion, OffersWhatCanStandThere) {
  const struct {
    const char* words;  // as bash splits them
    const char* offered;
  } kRows[] = {
      {"sc", "scenarios"},
      {"ctl ign", "ignition"},
      {"ctl ignition o", "on off"},
      {"run --scenario cold", "cold-start"},
      {"ctl ignition st", "state="},
      {"ctl ignition state =", "on off"},
      {"ctl ignition state = of", "off"},
      {"ctl --board lux fault-file lux operation =", "open read write ioctl"},
      {"ctl fault-file file = lux operation = r", "read"},
      {"ctl get name = fa", "faults"},
      {"ctl clock time =", ""},
      {"ctl ignition state=of", "state=off"},
  };
  const Directory directory;
  std::string script = "source " + directory.Write("completion", RunTool(directory, {"completion"}).out) +
                       "\ncomplete_it() { COMP_WORDS=(rolu-sim \"$@\"); COMP_CWORD=$#; _rolu_sim; echo "
                       "\"${COMPREPLY[*]}\"; }\n";
  std::string offered;
  for (const auto& row : kRows) {
    script += std::string("complete_it ") + row.words + '\n';
    offered += std::string(row.offered) + '\n';
  }
  EXPECT_EQ(RunTool(directory, {"--", "bash", "-c", script}).out, offered);
}

}  // namespace
}  // namespace desk_test
