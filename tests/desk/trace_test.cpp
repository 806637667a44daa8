// The trace in plain words, its recording and the replay of a recording.

#include <gmock/gmock.h>

#include "protocol/words.h"
#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;

TEST(WireWords, SayWhatCommandsAndAnswersMean) {
  const struct {
    const char* command;
    const char* says;
    const char* answer;
    const char* answer_says;
  } kRows[] = {
      {"MCPS3102EB", "set the low-battery threshold of the 12 V system to 747 units", "OK", "done"},
      {"MCCG", "read which protections are on", "10", "pre-boot protection on, low-battery protection off"},
      {"MCPR3", "read the threshold range of the 12 V system", "02AA02EB030C",
       "from 682 to 780 units, 747 in the middle"},
      {"MCUS3003C", "set the delay from the ignition going off to the power-off warning to 60 MCU units",
       "ERR-M08", "refused: a parameter is out of its range"},
      {"RTASA0CB0D", "set the wake-up alarm to every day at 13:30", "OK", "done"},
      {"RTAG", "read the wake-up alarm", "01E101", "every week on weekday 0 at 07:00"},
      {"WKMG", "read the wake-up sources", "10000010001", "switched on: 0, 6, 10"},
      {"WKSG", "read what woke the computer last", "30", "woken by: the clock's alarm"},
      {"GSV", "read a G-sensor sample", "V0001FFFF0100", "status V, x 1, y -1, z 256"},
      {"ARGI01", "switch the G-sensor alarm on", "ERR-G01",
       "refused: the MCU answers with the error ERR-G01"},
      {"B03", "read the backup battery's temperature", "0BA6", "25.05 degrees Celsius"},
      {"B04", "read the backup battery's voltage", "1068", "4.200 V"},
      {"B05", "read the backup battery's status bits", "1000000010000001", "bits set: 0, 7, 15"},
      {"MCAS012", "set the keep-alive mode to 0 and the AT mode to 12", "OK", "done"},
      {"MCPS31", "MCPS with fields that do not fit", "ERR-M08", "refused: a parameter is out of its range"},
      {"MCVG", "measure the car battery's voltage", "02E", "an answer to MCVG that does not fit"},
      {"WHAT", "a command that is not known", "ERR-C01", "refused: the MCU does not know the command"},
  };
  rolu_protocol::Words words;
  for (const auto& row : kRows) {
    EXPECT_EQ(words.OfCommand(row.command), row.says);
    EXPECT_EQ(words.OfAnswer(row.answer), row.answer_says) << row.command;
  }
  EXPECT_EQ(words.OfAnswer("02EB"), "a line that no command waits for");
  EXPECT_EQ(words.OfAnswer("[GI:0001FFFF0100]"), "G-sensor alarm: x 1, y -1, z 256");
  EXPECT_EQ(words.OfAnswer("[0001]"), "warning: the power goes off, the car battery is low");
}

TEST(Trace, IsShownOfAServedBoardAsTextAndAsJson) {
  const Directory directory;
  ServedBoard board(directory);
  EXPECT_EQ(RunTool(directory, {"trace", "--board", board.path()}).out, "");
  Tool following(directory, {"trace", "--board", board.path(), "--follow"});
  board.Client("voltage");
  board.Ctl("send [0000]");
  ASSERT_TRUE(following.WaitForOutput("[0000]"));
  EXPECT_THAT(following.out(), HasSubstr(" > MCVG                measure the car battery's voltage\n"));

  const std::vector<nlohmann::json> records =
      Records(RunTool(directory, {"trace", "--json", "--board", board.path()}).out);
  ASSERT_FALSE(records.empty());
  EXPECT_EQ(records.front()["direction"], "to-mcu");
  EXPECT_EQ(records.front()["line"], "Hello");
  EXPECT_EQ(records.back()["direction"], "from-mcu");
  EXPECT_EQ(records.back()["words"], "warning: the power goes off, the ignition is off");

  const Ended over = RunTool(directory, {"trace", "--follow", "--for", "50ms", "--board", board.path()});
  EXPECT_EQ(over.status, 0);
  board.Ctl("stop");
  EXPECT_EQ(following.Wait(), 0);
  EXPECT_THAT(following.err(), HasSubstr("went down"));
}

TEST(Trace, IsPlayedBackAsTheScriptOfTheMcu) {
  const Directory directory;
  const std::string trace = directory.path() + "/trace";
  const auto run = [&](const std::string& options, const char* calls) {
    return RunTool(directory, ClientRun(options, calls));
  };
  const Ended recorded =
      run("--battery 0s=9.87 --fault delay:MCVG:200ms --trace " + trace, "voltage platform");
  EXPECT_THAT(recorded.out, HasSubstr("voltage C000 9.88"));

  const Ended replayed =
      run("--replay " + trace + " --trace " + directory.File("again"), "platform voltage voltage");
  EXPECT_THAT(replayed.out, HasSubstr("voltage C000 9.88\nvoltage C000 12.60\n"));
  EXPECT_THAT(replayed.err,
              HasSubstr("replay: the recording holds no further answer to MCVG; the model answers\n"));
  EXPECT_THAT(replayed.err,
              HasSubstr("9 of 9 recorded commands were sent, 2 in another order; 2 that were sent are not"));
  double sent = 0;
  for (const nlohmann::json& record : Records(directory.Read("again"))) {
    if (sent == 0 && record.value("line", "") == "MCVG") sent = record["t_s"];
    if (record.value("words", "") != "642 units") continue;
    EXPECT_GE(record["t_s"].get<double>() - sent, 0.199);
  }
  EXPECT_GT(sent, 0);
}

TEST(Trace, SaysHowAReplayDiverges) {
  const struct {
    const char* option;
    const char* commands;
    int status;  // of a program that ends with 0
    const char* says;
  } kRows[] = {
      {"", "AB CD", 0, "2 of 2 recorded commands were sent\n"},
      {"", "CD AB", 0, "1 in another order"},
      {"", "AB CD AB", 10, "failed: the replay diverged"},
      {"", "AB", 10, "1 of 2 recorded commands were sent\n"},
      {"--lenient", "AB EF", 0, "1 that were sent are not in the recording"},
      {"--strict", "CD AB", 0, "1 in another order"},
      {"--strict", "AB", 10, "1 of 2"},
      {"--strict", "AB EF CD", 10,
       "EF came, which the recording does not have or has no more; the recording has CD next (at 2.000 s) "
       "***"},
  };
  const Directory directory;
  const std::string trace = directory.Write("field.json", R"({"t_s": 1, "direction": "to-mcu", "line": "AB"}
{"t_s": 1, "direction": "from-mcu", "line": "OK"}
{"t_s": 2, "direction": "to-mcu", "line": "CD"}
{"t_s": 2, "direction": "from-mcu", "line": "OK"}
)");
  for (const auto& row : kRows) {
    const std::string script = std::string("exec 3<>/proc/vpm_serial; for command in ") + row.commands +
                               R"(; do printf "$command\r" >&3; read answer <&3; done)";
    const Ended run = RunTool(
        directory,
        Joined(Words(std::string("run --replay ") + trace + ' ' + row.option), {"--", "sh", "-c", script}));
    EXPECT_EQ(run.status, row.status) << row.option << row.commands << run.err;
    EXPECT_THAT(run.err, HasSubstr(row.says)) << row.option << row.commands;
  }
}

TEST(Trace, PlaysBackUnaskedLinesSilenceAndAnyBytes) {
  const Directory directory;
  const std::string trace = directory.Write(
      "field.json",
      "{\"t_s\": 0.01, \"direction\": \"from-mcu\", \"line\": \"[0000]\"}\n"
      "{\"t_s\": 0.02, \"direction\": \"desk\", \"words\": \"ignition state=off\"}\n"
      "{\"t_s\": 1, \"direction\": \"to-mcu\", \"line\": \"AB\"}\n"
      "{\"t_s\": 1.1, \"direction\": \"from-mcu\", \"line\": \"x\\\\xFF\", \"hex\": \"78FF\"}\n"
      "{\"t_s\": 1.2, \"direction\": \"from-mcu\", \"line\": \"[0001]\"}\n"
      "{\"t_s\": 2, \"direction\": \"to-mcu\", \"line\": \"CD\"}\n");
  const Ended run =
      RunTool(directory,
              {"run", "--replay", trace, "--trace", "-", "--", "bash", "-c",
               "exec 3<>/proc/vpm_serial; printf 'CD\\rAB\\r' >&3; for line in 1 2; do read -r -u3; done"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("< [0000] "));
  EXPECT_THAT(run.err, HasSubstr("< x\\xFF "));
  EXPECT_LT(run.err.find("< x\\xFF"), run.err.find("< [0001]"));
  EXPECT_THAT(run.err, HasSubstr("2 of 2 recorded commands were sent, 1 in another order\n"));
}

}  // namespace
}  // namespace desk_test
