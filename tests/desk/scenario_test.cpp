#include "simulator/desk/scenario.h"

#include <gmock/gmock.h>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using rolu_sim::ParseScenario;
using testing::HasSubstr;
using testing::StartsWith;

std::string ComplaintAbout(const std::string& text) {
  try {
    ParseScenario(text, "f");
    return "nothing";
  } catch (const rolu_sim::ScenarioError& problem) {
    return problem.what();
  }
}

TEST(Scenario, IsRefusedWithThePlaceAndWhatWouldBeRight) {
  const struct {
    const char* text;
    const char* place;
    const char* says;
  } kRows[] = {
      {"", "f:1:1: ", "not JSON"},
      {"{\n  \"events\": [\n  ]", "f:3:4: ", "not JSON: syntax error"},
      {"[]", "f:1:1: ", "a scenario is an object"},
      {"{}", "f:1:1: ", "\"events\" is missing"},
      {"{\"description\": 1,\n \"events\": 2}",
       "f:1:17: ", "\"description\" must be a text\nf:2:12: \"events\" must be a list"},
      {"{\"events\": [],\n\n  \"evnts\": []}", "f:3:12: ", R"(no "evnts"; did you mean events?)"},
      {"{\"events\": [],\n \"a/b~\": 1}", "f:2:10: ", "a scenario has no \"a/b~\""},
      {R"({"events": [], "events": []})", "f:1:16: ", "\"events\" is given twice"},
      {"{\"events\": [\n3]}", "f:2:1: ", "an event is an object"},
      {R"({"events": [{"at": 1}]})", "f:1:13: ", "\"do\" is missing"},
      {R"({"events": [{"do": "shock"}]})", "f:1:13: ", "\"at\" is missing"},
      {"{\"events\": [{\"at\":\n\"2x\", \"do\": \"shock\"}]}",
       "f:2:1: ", "must be a time of at most a week, such as 500ms, 2s"},
      {"{\"events\": [{\"at\": -1\n, \"do\": \"shock\"}]}", "f:1:20: ", "not \"-1\""},
      {"{\"events\": [{\"at\": 1, \"do\":\n  \"ignitoin\"}]}",
       "f:2:3: ", R"(no verb "ignitoin"; did you mean ignition?)"},
      {R"({"events": [{"at": 1, "do": "ignition"}]})",
       "f:1:13: ", "ignition needs \"state\", the key: on or off"},
      {R"({"events": [{"at": 1, "do": "ignition", "state": "of"}]})",
       "f:1:50: ", "must be on or off, not \"of\"; did you mean"},
      {"{\"events\": [{\"at\": 1, \"do\": \"lux\", \"lux\": 5, \"luxx\":\n7}]}",
       "f:2:1: ", R"(lux has no "luxx"; did you mean lux?)"},
      {"{\"events\": [{\"at\": 1, \"do\": \"lux\", \"lux\":\ttrue}]}",
       "f:1:43: ", "a whole number from 0 to 99999"},
      {R"({"events": [{"at": 1, "do": "lux", "lux": 1.5}]})", "f:1:43: ", "not \"1.5\""},
      {"{\"events\": [{\"at\": 1, \"do\": \"send\", \"text\": [\n\"a\\\"b\", null]}]}",
       "f:1:45: ", "must be a text"},
      {R"({"events": [{"at": 1, "every": 1, "do": "shock"}]})",
       "f:1:13: ", R"("every" and "repeat" belong together)"},
      {R"({"events": [{"at": 1, "do": "battery-curve", "curve": "1s"}]})", "f:1:55: ", "as in 2s=12.6"},
      {R"({"events": [{"at": 1, "do": "clock", "time": "2023-02-29 00:00"}]})",
       "f:1:46: ", "must be a time such as"},
      {R"({"events": [{"after": "reset", "at": 1, "do": "shock"}]})",
       "f:1:23: ", R"(either "at" or "after")"},
      {R"({"events": [{"after": "rest", "do": "shock"}]})",
       "f:1:23: ", R"("rest" is no step's name, no event of the )"},
      {R"({"events": [{"after": "rest", "do": "shock"}]})", "f:1:23: ", "did you mean reset?"},
      {R"({"events": [{"after": "", "do": "shock"}]})", "f:1:23: ", R"("" is no step's name)"},
      {"{\"events\": [{\"at\":\n 1e400, \"do\": \"shock\"}]}", "f:2:2: ", "the number is too large"},
      {R"({"events": [{"at": 1, "name": "reset", "do": "shock"}]})", "f:1:31: ", "is an event of the board"},
      {R"({"events": [{"at": 1, "name": "MCVG2", "do": "shock"}]})",
       "f:1:31: ", "begins as the command MCVG"},
      {"{\"events\": [{\"at\": 1, \"name\": \"a\", \"do\": \"shock\"},\n{\"name\": \"a\", \"at\": 1, \"do\": "
       "\"shock\"}]}",
       "f:2:10: ", "another step is named \"a\" already"},
      {R"({"events": [{"after": "b", "name": "a", "do": "shock"}, {"after": "a", "name": "b", "do": "shock"}]})",
       "f:1:23: ", "\"b\" waits for this step, so this"},
      {R"({"events": [{"at": 1, "delay": 1, "do": "shock"}]})", "f:1:32: ", R"("delay" belongs to "after")"},
      {R"({"events": [{"at": 1, "do": "shock", "within": 1}]})",
       "f:1:48: ", R"("within" belongs to "expect")"},
      {R"({"events": [{"at": 1, "expect": "end"}]})", "f:1:13: ", "\"within\" is missing"},
      {R"({"events": [{"at": 1, "expect": "end", "do": "shock"}]})",
       "f:1:33: ", R"(either "do" or "expect")"},
      {R"({"events": [{"at": 1, "within": 1, "expect": "ende"}]})", "f:1:46: ", "did you mean end?"},
      {R"({"events": [{"at": 1, "within": 1, "expect": "end", "every": 1}]})",
       "f:1:62: ", "end has no \"every\""},
      {R"({"events": [{"at": 1, "within": 1, "expect": "command", "command": "MCVH"}]})",
       "f:1:68: ", "the MCU has no command \"MCVH\"; did you mean MCVG?"},
      {R"({"events": [{"at": 1, "within": 1, "expect": "event", "event": "power-cut", "cause": "order"}]})",
       "f:1:86: ", "did you mean ordered?"},
      {R"({"events": [{"at": 1, "within": 1, "expect": "pin", "pin": 1, "level": 0}]})",
       "f:1:60: ", "must be 34, 35"},
      {"{\"events\": [\n"
       "  {\"at\": 1, \"do\": \"lux\", \"lux\": 1},\n"
       "  {\"at\": [], \"do\": \"pin\", \"line\": 37, \"level\": 2}\n]}",
       "f:3:10: ", "not \"[]\"\nf:3:48: \"level\" must be 0 or 1, not \"2\""},
  };
  for (const auto& row : kRows) {
    EXPECT_THAT(ComplaintAbout(row.text), StartsWith(row.place)) << row.text;
    EXPECT_THAT(ComplaintAbout(row.text), HasSubstr(row.says)) << row.text;
  }
}

TEST(Scenario, HappensInItsOrderAndNotTooEarly) {
  const Directory directory;
  const std::string scenario = directory.Write("s.json", R"({"events": [
        {"after": "second", "delay": "250ms", "do": "send", "text": "[0000]"},
        {"at": "400ms", "do": "lux", "lux": "0x2"},
        {"at": "100ms", "every": 0.1, "repeat": 2, "do": "lux", "lux": 1, "name": "second"},
        {"at": "300ms", "do": "i2c-detach", "address": 9}]})");
  const Ended run = RunTool(directory, {"run", "--scenario", scenario, "--trace", directory.path() + "/trace",
                                        "--", ROLU_SIM, "ctl", "wait", "warning"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("s.json:5: i2c-detach: no register device sits at 0x09"));

  std::vector<std::string> words;
  double previous = 0;
  for (const nlohmann::json& record : Records(directory.Read("trace"))) {
    words.push_back(record["words"]);
    EXPECT_GE(record["t_s"].get<double>(), previous);
    previous = record["t_s"];
  }
  EXPECT_THAT(words,
              testing::ElementsAre("lux lux=1", "lux lux=1", "i2c-detach address=9", HasSubstr("i2c-detach"),
                                   "lux lux=2", "send text=[0000]", HasSubstr("warning")));
  EXPECT_GE(previous, 0.45);
}

TEST(Scenario, ExpectsWhatTheProgramAndTheBoardDo) {
  const struct {
    const char* events;
    const char* script;
    int status;
    const char* says;  // on standard error, which has the trace
  } kRows[] = {
      {R"({"at": 0, "expect": "command", "command": "WDTR", "times": 2, "within": 9, "name": "a"},
          {"after": "a", "expect": "command", "command": "WDTR", "within": 9},
          {"after": "WDTD", "expect": "running", "within": 0})",
       R"(printf 'WDTE\rWDTR\rMCVG\rWDTR\rWDTR\rWDTD\r' >/proc/vpm_serial; sleep 60; true)", 0,
       "* scenario: all 3 expectations were met\n"},
      {R"({"at": 0, "expect": "command", "command": "WDTR", "within": 9, "name": "a"},
          {"after": "a", "expect": "command", "command": "WDTR", "within": "50ms"})",
       R"(printf 'WDTR\rMCVG\r' >/proc/vpm_serial; exec sleep 60)", 9,
       ":2 expects command WDTR, within 50ms from 0."},
      {R"({"at": 0, "expect": "command", "command": "MCVG", "times": 2, "within": 9})",
       R"(printf 'MCVG\rMCBG\r' >/proc/vpm_serial)", 9,
       "but it came once; the program ended with status 0 ***\nrolu-sim: the last lines on the wire:\n"},
      {R"({"at": 0, "expect": "event", "event": "power-cut", "cause": "ignition", "within": 9})",
       R"(printf 'ATPO\r' >/proc/vpm_serial)", 9, "but it did not come; the program ended with"},
      {R"({"at": 0, "expect": "event", "event": "power-cut", "cause": "ordered", "within": 9})",
       R"(printf 'ATPO\r' >/proc/vpm_serial; exec sleep 60)", 0, "* scenario: the expectation was met\n"},
      {R"({"at": 0, "expect": "shutdown", "within": 9})",
       R"(printf 'ATPO\r' >/proc/vpm_serial; exec sleep 60)", 9, "but power-cut (ordered) came ***"},
      {R"({"after": "ATPO", "expect": "event", "event": "power-cut", "within": 9})",
       R"(printf 'ATPO\r' >/proc/vpm_serial)", 0, "* scenario: the expectation was met\n"},
      {R"({"at": 0, "expect": "shutdown", "within": "50ms"})", "exec sleep 60", 9,
       "but the program still runs"},
      {R"({"at": 0, "expect": "shutdown", "within": 9, "name": "down"},
          {"after": "down", "expect": "pin", "pin": 35, "level": 1, "within": 0})",
       "cd /sys/class/gpio; echo 35 >export; echo high >gpio35/direction; exit 3", 3, "all 2 expectations"},
      {R"({"at": 0, "expect": "shutdown", "within": 9})", "kill -9 $$", 9, "ended with status 137"},
      {R"({"at": 0, "expect": "end", "status": 3, "within": 9})", "exit 3", 0, "was met"},
      {R"({"at": 0, "expect": "end", "status": 3, "within": 9})", "exit 4", 9, "ended with status 4"},
      {R"({"at": 0, "expect": "running", "within": 9})", "exit 0", 9, "ended with status 0"},
      {R"({"after": "ignition-warning", "expect": "end", "within": 9},
          {"at": 9, "expect": "running", "within": 9})",
       "exit 0", 9, "2 expects running, within 9s from 9."},
      {R"({"after": "ignition-warning", "expect": "end", "within": 9})", "exit 0", 9,
       "end, within 9s (after ignition-warning), but ignition-warning did not come in time"},
      {R"({"at": "50ms", "do": "backlight", "level": 3},
          {"at": 0, "expect": "backlight", "level": 3, "within": 9})",
       "exec sleep 60", 0, "was met"},
      {R"({"at": 0, "expect": "pin", "pin": 37, "level": 1, "within": 0})", "exec sleep 60", 9,
       "but pin 37 is 0"},
  };
  const Directory directory;
  for (const auto& row : kRows) {
    const std::string scenario = directory.Write("s.json", "{\"events\": [" + std::string(row.events) + "]}");
    const Ended run =
        RunTool(directory, {"run", "--scenario", scenario, "--trace", "-", "--", "sh", "-c", row.script});
    EXPECT_EQ(run.status, row.status) << row.events << run.err;
    EXPECT_THAT(run.err, HasSubstr(row.says)) << row.events;
  }
}

TEST(Scenario, ExpectsOfAServedBoardAsWell) {
  const Directory directory;
  const std::string scenario = directory.Write(
      "s.json", R"({"events": [{"at": 0, "expect": "command", "command": "MCVG", "within": 9, "name": "a"},
                               {"after": "a", "expect": "pin", "pin": 37, "level": 1, "within": 0}]})");
  ServedBoard board(directory, {"--scenario", scenario});
  EXPECT_EQ(board.Get("scenario")["expectations_pending"], 2);
  board.Client("voltage");
  EXPECT_EQ(board.Ctl("wait FAILED").status, 0);
  const nlohmann::json progress = board.Get("scenario");
  EXPECT_EQ(progress["expectations_met"], 1);
  EXPECT_THAT(progress["failure"].get<std::string>(), HasSubstr("s.json:2 expects pin 37, level 1"));
  board.Ctl("stop");
  EXPECT_EQ(board.tool().Wait(), 9);
}

TEST(Scenario, IsReadyForTheUsualCases) {
  const Directory directory;
  const Ended list = RunTool(directory, {"scenarios"});
  for (const char* const name : {"cold-start", "cranking-dip", "misbehaving-mcu", "parked-overnight",
                                 "shaken-vehicle", "shutdown-in-time"}) {
    EXPECT_THAT(list.out, HasSubstr(std::string(name) + ' '));
    EXPECT_EQ(RunTool(directory, {"scenarios", "--check", name}).status, 0) << name;
  }
  EXPECT_THAT(RunTool(directory, {"scenarios", "--show", "cold-start"}).out, StartsWith("{\n"));
}

// The scenario plays a night in some seconds. The alarm comes at half past seven in the morning.
TEST(Scenario, WakesTheParkedVehicleInTheMorning) {
  const Directory directory;
  const ServedBoard board(directory);
  EXPECT_THAT(board.Client("alarm").out, HasSubstr("alarm C000"));
  ASSERT_EQ(board.Ctl("play scenario=parked-overnight").status, 0);
  EXPECT_EQ(board.Ctl("wait wakes").status, 0);
  const nlohmann::json events = board.Get("events");
  EXPECT_EQ(events.back()["event"], "alarm-wakeup");
  // The scenario goes on meanwhile.
  EXPECT_THAT(board.Get("clock")["time"].get<std::string>(), StartsWith("2024-06-01 07:3"));
}

}  // namespace
}  // namespace desk_test
