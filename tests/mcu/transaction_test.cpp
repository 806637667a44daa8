// Transactions of the managers, with an MCU at the far end.
#include "mcu/transaction.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>

#include "tests/mcu/paused_link.h"

namespace {

using rolu_sim::CommandMatch;

class Transaction : public LinkTest {
 protected:
  const std::unique_ptr<ErrorReplyEntry[], decltype(&free)> table{NewErrorTable(), free};
  char reply[kLineCapacity] = "untouched";
};

TEST_F(Transaction, CutsTheReplyToTheCallersBuffer) {
  const std::string longest = std::string(62, 'a') + 'z';
  const struct {
    int size;
    std::string text;
  } rows[] = {{64, longest}, {63, longest.substr(0, 62)}, {32, longest.substr(0, 31)}, {2, "a"}, {1, ""}};
  for (const auto& row : rows) {
    memset(reply, '#', sizeof reply);
    mcu.Script(CommandMatch::Exactly("MCVG"), rolu_sim::Reply::Line(longest));
    EXPECT_EQ(RunTransaction(table.get(), "MCVG\r", 5, reply, row.size, 0), ROLU_STATUS_SUCCESS) << row.size;
    EXPECT_STREQ(reply, row.text.c_str());
    if (row.size < 64) {
      EXPECT_EQ(reply[row.size], '#') << row.size;
    }
  }
}

TEST_F(Transaction, WhatCannotBeQueuedIsNotSent) {
  EXPECT_EQ(RunTransaction(table.get(), nullptr, 0, reply, sizeof reply, 0), ROLU_STATUS_VPM_SEND_FAILED);
  EXPECT_EQ(RunTransaction(table.get(), "MCVG\r", 5, nullptr, 0, 0), ROLU_STATUS_VPM_SEND_FAILED);
  const std::string too_long(512, 'x');
  EXPECT_EQ(RunTransaction(table.get(), too_long.c_str(), 512, reply, sizeof reply, 0),
            ROLU_STATUS_VPM_SEND_FAILED);
  EXPECT_STREQ(reply, "untouched");
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_THAT(mcu.CommandsReceived(), testing::ElementsAre("Hello"));
}

// A line that is never quiet, as the paused link's, lets no command leave.
TEST(TransactionThatGaveUp, TakesItsCommandBack) {
  PausedLink link;
  EXPECT_EQ(Ask("ATPO"), "status " + std::to_string(ROLU_STATUS_VPM_NO_REPLY));
  link.Resume();
  std::thread answer([&link] {
    EXPECT_EQ(link.Receive(5), "WDTG\r");
    link.Send("012C\r");
  });
  EXPECT_EQ(Ask("WDTG"), "012C");
  answer.join();
}

}  // namespace
