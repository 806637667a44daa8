// Transactions of the managers, with an MCU at the far end.
#include "mcu/transaction.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "kavo_rolu.h"
#include "mcu/link.h"
#include "simulator/board.h"
#include "simulator/line/mcu_serial.h"
#include "tests/mcu/paused_link.h"
#include "tests/support/process_state.h"
#include "vpm/vpm_manager.h"
#include "watchdog/watchdog_manager.h"

namespace {

using rolu_sim::CommandMatch;
using std::chrono::milliseconds;

class Transaction : public testing::Test {
 protected:
  Transaction() { EXPECT_EQ(VPMOpen(mcu.DevicePath().c_str(), O_RDWR), 0); }
  ~Transaction() override { EXPECT_EQ(VPMClose(), 0); }

  uint32_t Run(const Command& command, int post_delay_ms = 0, int reply_size = kLineCapacity) {
    return RunTransaction(table.get(), command.text, command.length, reply, reply_size, post_delay_ms);
  }

  rolu_sim::McuSerial mcu;
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
    EXPECT_EQ(Run(Command("MCVG\r"), 0, row.size), ROLU_STATUS_SUCCESS) << row.size;
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
  EXPECT_EQ(Run(Command("Hello\r")), ROLU_STATUS_SUCCESS);
  EXPECT_THAT(mcu.CommandsReceived(), testing::ElementsAre("Hello"));
}

TEST_F(Transaction, PostDelayHoldsOffAnotherThread) {
  std::thread first([this] {
    char its_reply[kLineCapacity];
    EXPECT_EQ(RunTransaction(table.get(), "Hello\r", 6, its_reply, sizeof its_reply, 500),
              ROLU_STATUS_SUCCESS);
  });
  EXPECT_TRUE(mcu.WaitForCommand("Hello", kGenerous));
  EXPECT_EQ(Run(Command("ATF0\r")), ROLU_STATUS_SUCCESS);
  first.join();
  const auto lines = mcu.Log().Lines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_EQ(lines[1].bytes, "OK");
  EXPECT_EQ(lines[2].bytes, "ATF0");
  EXPECT_GE(lines[2].time - lines[1].time, milliseconds(500));
}

TEST_F(Transaction, GivesUpAfterThreeSecondsAndTheLateAnswerShiftsNothing) {
  mcu.Script(CommandMatch::Exactly("MCVG"), rolu_sim::Reply::Silence());
  const auto start = std::chrono::system_clock::now();
  EXPECT_EQ(Run(Command("MCVG\r")), ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_GE(std::chrono::system_clock::now() - start, milliseconds(3000));
  EXPECT_STREQ(reply, "untouched");
  mcu.SendRaw("LATE\r\n");
  ASSERT_TRUE(WaitUntil(IsReplyStored));
  for (const char* answer : {"0001", "0002", "0003"}) {
    mcu.Script(CommandMatch::Exactly("MCVG"), rolu_sim::Reply::Line(answer));
    EXPECT_EQ(Run(Command("MCVG\r")), ROLU_STATUS_SUCCESS);
    EXPECT_STREQ(reply, answer);
  }
}

TEST(Managers, ThreadsOfTwoManagersGetTheirOwnAnswers) {
  constexpr int kThreads = 8;
  constexpr int kQuestions = 40;
  rolu_sim::Board board;
  board.AttachThisProcess();
  for (int id = 0; id < kThreads * kQuestions; ++id) {
    const std::string number = std::to_string(id);
    board.mcu().Script(CommandMatch::Exactly("ASK" + number), rolu_sim::Reply::Line("ANSWER" + number));
  }
  ASSERT_EQ(gVPMMgr.Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(gWDMgr.Initialize(0), ROLU_STATUS_SUCCESS);
  const auto ask = [](auto& manager, int first_id) {
    for (int id = first_id; id < first_id + kQuestions; ++id) {
      Command command("ASK%d\r", id);
      Reply reply;
      EXPECT_EQ(manager.GetDataFromSTM32(command.text, command.length, reply.text, sizeof reply.text),
                ROLU_STATUS_SUCCESS);
      EXPECT_EQ(reply.text, "ANSWER" + std::to_string(id));
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; i += 2) {
    threads.emplace_back([&ask, i] { ask(gVPMMgr, i * kQuestions); });
    threads.emplace_back([&ask, i] { ask(gWDMgr, (i + 1) * kQuestions); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(gVPMMgr.Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(gWDMgr.Deinitialize(), ROLU_STATUS_SUCCESS);
}

// A line that is never quiet, as the paused link's, lets no command leave.
TEST(TransactionThatGaveUp, TakesItsCommandBack) {
  PausedLink link;
  char reply[kLineCapacity];
  const Command lost("ATPO\r");
  EXPECT_EQ(RunTransaction(nullptr, lost.text, lost.length, reply, sizeof reply, 0),
            ROLU_STATUS_VPM_NO_REPLY);
  link.Resume();
  const Command next("WDTG\r");
  std::thread answer([&link] {
    EXPECT_EQ(link.Receive(5), "WDTG\r");
    link.Send("012C\r");
  });
  EXPECT_EQ(RunTransaction(nullptr, next.text, next.length, reply, sizeof reply, 0), ROLU_STATUS_SUCCESS);
  answer.join();
  EXPECT_STREQ(reply, "012C");
}

}  // namespace
