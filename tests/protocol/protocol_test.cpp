// Compares the table of the MCU's commands with the table of operations, which is what the library must send,
// and with the simulated MCU.

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "protocol/commands.h"
#include "protocol/values.h"
#include "protocol/words.h"
#include "simulator/mcu/mcu_model.h"
#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_test {
namespace {

using rolu_protocol::kCommands;

// The line of a command, without its carriage return.
std::string LineOf(const std::string& command) {
  return command.substr(0, command.size() - 1);
}

const CallRow& RowNamed(const std::string& name) {
  for (const Operation& operation : AllOperations()) {
    if (operation.row->name == name) return *operation.row;
  }
  throw std::out_of_range(name);
}

TEST(Protocol, KnowsEachCommandThatTheLibrarySendsAndNoOther) {
  std::set<std::string_view> sent;
  for (const Operation& operation : AllOperations()) {
    const CallRow& row = *operation.row;
    const std::vector<std::string> commands = CommandsOf(row.wire);
    int post_delay_ms = 0;
    for (size_t i = 0; i < commands.size(); ++i) {
      const std::string line = LineOf(commands[i]);
      const rolu_protocol::Command* const known = rolu_protocol::FindCommand(line);
      ASSERT_NE(known, nullptr) << line;
      EXPECT_TRUE(rolu_protocol::ParseCommandFields(line, *known)) << line;
      sent.insert(known->code);
      post_delay_ms += known->post_delay_ms;
      if (i >= row.answers.size()) continue;
      const std::vector<std::string> answer = ReplyLines(BytesOf(row.answers[i]));
      EXPECT_EQ(answer.size(), static_cast<size_t>(known->answer_lines)) << line;
      EXPECT_TRUE(known->is_question || answer.back() == "OK") << line;
    }
    EXPECT_EQ(post_delay_ms, row.post_delay_ms) << row.name;
  }
  for (const rolu_protocol::Command& command : kCommands) {
    EXPECT_EQ(sent.count(command.code), 1U) << command.code << " is sent by no operation";
  }
}

// The simulated MCU must understand what the library sends, and its answers must fit the table and its words.
TEST(Protocol, IsWhatTheSimulatedMcuSpeaks) {
  std::set<std::string_view> asked;
  for (const Operation& operation : AllOperations()) {
    rolu_sim::McuModel mcu;
    mcu.gsensor.on = true;
    for (const std::string& command : CommandsOf(operation.row->wire)) {
      const std::string line = LineOf(command);
      const rolu_protocol::Command& known = *rolu_protocol::FindCommand(line);
      const std::vector<std::string> answer = mcu.Execute(line, {});
      ASSERT_EQ(answer.size(), static_cast<size_t>(known.answer_lines)) << line;
      EXPECT_NE(answer.back(), rolu_protocol::kUnknownCommandReply) << line << ": no case, no factory answer";
      EXPECT_TRUE(rolu_protocol::ParseFields(answer.back(), known.answer_fields))
          << line << " is answered with " << answer.back();
      rolu_protocol::Words words;
      EXPECT_THAT(words.OfCommand(line), testing::Not(testing::HasSubstr("that do not fit")));
      EXPECT_THAT(words.OfAnswer(answer.back()), testing::Not(testing::StartsWith("an answer to")));
      asked.insert(known.code);
    }
  }
  EXPECT_EQ(asked.size(), std::size(kCommands));
}

TEST(Protocol, RefusesFieldsThatStandForNothing) {
  for (const char* const line :
       {"WDTS012", "WDTS012C0", "WDTS012c",   "WDTS-12C",   "MCVU4",   "MCUG5",     "MCUG8",
        "MSSS2",   "MCS11",     "MCS01234",   "WKMS1",      "WKMS011", "WKMS27",    "WKMS-11",
        "ARGI02",  "MCBS01",    "MCPS3202EB", "MCPS3102eb", "MCAS0x",  "RTAS00000", "WDTR1"}) {
    const rolu_protocol::Command* const known = rolu_protocol::FindCommand(line);
    ASSERT_NE(known, nullptr) << line;
    EXPECT_FALSE(rolu_protocol::ParseCommandFields(line, *known)) << line;
  }
  for (const char* const line : {"", "MCV", "hello", "XYZ"}) {
    EXPECT_EQ(rolu_protocol::FindCommand(line), nullptr) << line;
  }
}

TEST(Protocol, SplitsFieldsWhoseWidthTheLineTells) {
  const auto fields = [](const char* line) {
    return *rolu_protocol::ParseCommandFields(line, *rolu_protocol::FindCommand(line));
  };
  EXPECT_EQ(fields("WKMS101")[0].number, 10U);
  EXPECT_EQ(fields("WKMS101")[1].number, 1U);
  EXPECT_EQ(fields("MCAS1255")[1].number, 255U);
  EXPECT_EQ(fields("MCPS3102EB")[2].number, 747U);
}

TEST(Protocol, HasTheErrorRepliesOfTheLibrary) {
  EXPECT_THAT(rolu_protocol::kErrorReplies, testing::ElementsAreArray(kErrorReplies));
}

TEST(Protocol, HasTheWakeupCodesOfTheLibrary) {
  const CallRow& row = RowNamed("VPM_GetLastWakeupSource");
  for (unsigned int code = 0; code < 256; ++code) {
    char text[3];
    snprintf(text, sizeof text, "%02X", code);
    const Ending ending = MeaningOf(row, {text});
    const auto* const known =
        std::ranges::find(rolu_protocol::kWakeupCodes, code, &rolu_protocol::WakeupCode::code);
    const bool is_known = known != rolu_protocol::kWakeupCodes.end();
    ASSERT_EQ(ending.status == ROLU_STATUS_SUCCESS, is_known) << text;
    if (!is_known) continue;
    EXPECT_EQ(ending.output, MemoryWith(Written(int32_t{known->source}))) << text;
  }
}

TEST(Protocol, ReadsAndWritesTheAlarmAsTheLibraryDoes) {
  const CallRow& row = RowNamed("VPM_GetAlarmTime");
  for (const unsigned int number : {0x000000U, 0x000001U, 0x00E101U, 0x01E101U, 0xA0CB0DU, 0xA14B9BU}) {
    char text[7];
    snprintf(text, sizeof text, "%06X", number);
    const rolu_protocol::AlarmTime time = rolu_protocol::AlarmTimeOf(number);
    EXPECT_EQ(rolu_protocol::NumberOf(time), number) << text;
    ALARM_MODE mode = ALARM_MODE_NONE;
    if (time.match_minute) mode = ALARM_MODE_HOURLY;
    if (time.match_hour) mode = ALARM_MODE_DAILY;
    if (time.match_weekday) mode = ALARM_MODE_WEEKLY;
    const VPM_ALARM_TIME expected = {time.weekday, time.hour, time.minute};
    EXPECT_EQ(MeaningOf(row, {text}).output, MemoryWith(Written(mode, expected))) << text;
  }
}

TEST(Protocol, HasTheScalesOfTheLibrary) {
  EXPECT_EQ(static_cast<float>(rolu_protocol::kBatterySystems[0].volts_per_unit), k24V);
  EXPECT_EQ(static_cast<float>(rolu_protocol::kBatterySystems[1].volts_per_unit), k12V);
  for (const rolu_protocol::BatterySystem& system : rolu_protocol::kBatterySystems) {
    EXPECT_EQ(std::stod(std::string(system.scale_text)), system.volts_per_unit);
  }
}

}  // namespace
}  // namespace rolu_test
