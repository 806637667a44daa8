#include "simulator/desk/scenario.h"

#include <gmock/gmock.h>

#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using rolu_sim::ParseScenario;
using rolu_sim::Scenario;
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

TEST(Scenario, OrdersAndRepeatsEvents) {
  const Scenario scenario = ParseScenario(
      "{\"events\": ["
      "{\"at\": \"1.5s\", \"do\": \"lux\", \"lux\": 3},"
      "{\"at\": 0.5, \"every\": \"500ms\", \"repeat\": 3, \"do\": \"lux\", \"lux\": \"0x10\"},"
      "{\"at\": \"1min\", \"do\": \"wlan\", \"state\": true}]}",
      "f");
  std::vector<std::string> events;
  for (const Scenario::Event& event : scenario.events) {
    events.push_back(std::to_string(event.at.count()) + ' ' + Describe(event.action));
  }
  EXPECT_THAT(events, testing::ElementsAre("500 lux lux=16", "1000 lux lux=16", "1500 lux lux=3",
                                           "1500 lux lux=16", "60000 wlan state=on"));
}

TEST(Scenario, HappensInItsOrderAndNotTooEarly) {
  const Directory directory;
  const std::string scenario =
      directory.Write("s.json",
                      "{\"events\": [{\"at\": \"400ms\", \"do\": \"lux\", \"lux\": 2},"
                      "{\"at\": \"200ms\", \"do\": \"lux\", \"lux\": 1},"
                      "{\"at\": \"300ms\", \"do\": \"i2c-detach\", \"address\": 9},"
                      "{\"at\": \"400ms\", \"do\": \"send\", \"text\": \"[0000]\"}]}");
  const Ended run = RunTool(directory, {"run", "--scenario", scenario, "--trace", directory.path() + "/trace",
                                        "--", ROLU_SIM, "ctl", "wait", "warning"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("scenario, 300 ms: i2c-detach: no register device sits at 0x09"));

  std::vector<std::string> words;
  double previous = 0;
  for (const nlohmann::json& record : Records(directory.Read("trace"))) {
    words.push_back(record["words"]);
    EXPECT_GE(record["t_s"].get<double>(), previous);
    previous = record["t_s"];
  }
  EXPECT_THAT(words, testing::ElementsAre("lux lux=1", "i2c-detach address=9", HasSubstr("i2c-detach"),
                                          "lux lux=2", "send text=[0000]", HasSubstr("warning")));
  EXPECT_GE(previous, 0.4);
}

TEST(Scenario, IsReadyForTheUsualCases) {
  const Directory directory;
  const Ended list = RunTool(directory, {"scenarios"});
  for (const char* const name :
       {"cold-start", "cranking-dip", "misbehaving-mcu", "parked-overnight", "shaken-vehicle"}) {
    EXPECT_THAT(list.out, HasSubstr(std::string(name) + ' '));
    EXPECT_EQ(RunTool(directory, {"scenarios", "--check", name}).status, 0) << name;
  }
  EXPECT_THAT(RunTool(directory, {"scenarios", "--show", "cold-start"}).out, StartsWith("{\n"));
}

// The scenario plays a night in one second. The alarm comes at half past seven in the morning.
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
