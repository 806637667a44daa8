#include "soak/operations.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "soak/answering_mcu.h"
#include "tests/oracle/operations.h"
#include "tests/support/interface_header.h"

namespace rolu_soak {
namespace {

TEST(SoakOperations, AreAllExportsOfTheMcuFamiliesThatTheBoardProvides) {
  std::set<std::string> called;
  for (const Operation& operation : Operations()) called.insert(operation.name);
  std::set<std::string> provided = rolu_test::DeclaredForMcuFamilies();
  for (const rolu_test::CallRow& row : rolu_test::SilentOperations()) {
    if (row.status == ROLU_STATUS_NOT_SUPPORTED) provided.erase(row.name);
  }
  EXPECT_EQ(called, provided);
}

// A command at the MCU must show which thread's call sent it.
TEST(SoakOperations, AreOfOneThreadEachAsTheirCommandsAre) {
  for (const Operation& operation : Operations()) {
    for (const std::string& command : rolu_test::CommandsOf(operation.row->wire)) {
      const std::size_t lane = LaneOf(command);
      EXPECT_TRUE(lane == operation.lane || lane == kAnyLane) << command;
    }
  }
  EXPECT_EQ(LaneOf("Hello"), kAnyLane);
}

TEST(SoakAnswers, SuitTheirCommandsAndAreOfOneTime) {
  for (const rolu_protocol::Command& command : rolu_protocol::kCommands) {
    for (const std::uint64_t running : {1U, 2U, 1000U, 65535U}) {
      const std::string answer = DrawnAnswer(command, running);
      if (answer.empty()) {
        EXPECT_EQ(command.answer_fields[0], rolu_protocol::kText) << command.code;
        continue;
      }
      EXPECT_TRUE(rolu_protocol::ParseFields(answer, command.answer_fields)) << command.code << " " << answer;
      const bool is_word = answer.size() == 4 && command.is_question;
      EXPECT_TRUE(!is_word || answer != DrawnAnswer(command, running + 1)) << command.code;
    }
  }
}

}  // namespace
}  // namespace rolu_soak
