// Turns at the MCU: which threads wait for one and for how long, what a cancelled thread leaves behind, and
// the closes that the link is owed meanwhile.
#include "mcu/turn.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>
#include <vector>

#include "core/process_objects.h"
#include "mcu/unsolicited.h"
#include "simulator/board.h"
#include "tests/mcu/link_calls.h"
#include "tests/support/process_state.h"

namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Reply;
using std::chrono::milliseconds;
using std::chrono::system_clock;

class Turns : public LinkTest {};

TEST_F(Turns, OpenAndCloseGiveUpWhenTheTransactionLockIsNotFree) {
  int opened = 0;
  int closed = 0;
  {
    const ScopedLock held(CriSectCtx);
    const auto start = system_clock::now();
    std::thread opener([&] { opened = VPMOpen(mcu.DevicePath().c_str(), O_RDWR); });
    std::thread closer([&] { closed = VPMClose(); });
    opener.join();
    closer.join();
    EXPECT_GE(system_clock::now() - start, milliseconds(2000));
  }
  EXPECT_EQ(opened, -1);
  EXPECT_EQ(closed, ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(LinkUsers(), 1) << "the failed calls changed no count";
}

TEST_F(Turns, OwedClosesAreSettledWhoeverEndsATurn) {
  constexpr int kUsers = 200;
  for (int i = 0; i < kUsers; ++i) ASSERT_TRUE(OpenLink(mcu.DevicePath()));
  std::atomic<bool> taking_turns{true};
  const auto take_turns = [&] {
    while (taking_turns) const Turn turn;
  };
  std::thread first(take_turns);
  std::thread second(take_turns);
  for (int i = 0; i < kUsers; ++i) OweClose();
  taking_turns = false;
  first.join();
  second.join();
  EXPECT_EQ(LinkUsers(), 1) << "the fixture's";
  EXPECT_EQ(Ask("Hello"), "OK");
}

// An opening waits for its turn while a close is owed. It must find the link closed, because the
// registrations and the queued samples belong to the old users.
TEST(OwedClose, ComesBeforeAnOpeningThatWaits) {
  rolu_sim::McuSerial mcu;
  ROLU_GSENSOR_DATA sample;
  for (int round = 0; round < 30; ++round) {
    ASSERT_TRUE(OpenLink(mcu.DevicePath()));
    {
      const ScopedLock lock(*io_op_lock);
      push_gsensor_alarm_data("[GI:000100010001]");
    }
    std::thread opener;
    {
      const Turn held;
      std::thread(OweClose).join();
      opener = std::thread([&] { EXPECT_TRUE(OpenLink(mcu.DevicePath())); });
      std::this_thread::sleep_for(milliseconds(1));
    }
    opener.join();
    EXPECT_EQ(pop_gsensor_alarm_data(&sample), -2);
    EXPECT_EQ(VPMClose(), 0);
  }
}

TEST_F(Turns, PostDelayHoldsOffAnotherThread) {
  std::thread first([] { EXPECT_EQ(Ask("Hello", 500), "OK"); });
  EXPECT_TRUE(mcu.WaitForCommand("Hello", kGenerous));
  Ask("ATF0");
  first.join();
  const auto lines = mcu.Log().Lines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_EQ(lines[1].bytes, "OK");
  EXPECT_EQ(lines[2].bytes, "ATF0");
  EXPECT_GE(lines[2].time - lines[1].time, milliseconds(500));
}

TEST_F(Turns, ThreadsGetTheirOwnAnswers) {
  constexpr int kThreads = 8;
  constexpr int kQuestions = 40;
  std::vector<std::thread> threads;
  for (int id = 0; id < kThreads * kQuestions; ++id) {
    const std::string number = std::to_string(id);
    mcu.Script(CommandMatch::Exactly("ASK" + number), Reply::Line("ANSWER" + number));
  }
  for (int first = 0; first < kThreads * kQuestions; first += kQuestions) {
    threads.emplace_back([first] {
      for (int id = first; id < first + kQuestions; ++id)
        EXPECT_EQ(Ask("ASK" + std::to_string(id)), "ANSWER" + std::to_string(id));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(Turns, CancelledThreadEndsBehindItsCallAndKeepsNoLock) {
  mcu.Script(CommandMatch::Exactly("SLOW"), Reply::Line("0001", milliseconds(200)));
  mcu.Script(CommandMatch::Exactly("ORDER"), Reply::Line("0002"));
  const struct {
    const char* command;
    int post_delay_ms;
    const char* answer;
  } rows[] = {{"SLOW", 0, "0001"}, {"ORDER", 200, "0002"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command);
    CancelDuring([&row] { EXPECT_EQ(Ask(row.command, row.post_delay_ms), row.answer); },
                 [&] { EXPECT_TRUE(mcu.WaitForCommand(row.command, kGenerous)); });
    auto next = std::async(std::launch::async, [] { return Ask("Hello"); });
    ASSERT_EQ(next.wait_for(kGenerous), std::future_status::ready) << "a lock is kept";
    EXPECT_EQ(next.get(), "OK");
  }
}

// A cancelled thread that settles its own owed close must also end after that.
TEST(OwedClose, IsSettledByACancelledThreadThatKeepsNoLock) {
  rolu_sim::McuSerial mcu;
  for (int round = 0; round < 50; ++round) {
    ASSERT_TRUE(OpenLink(mcu.DevicePath()));
    CancelDuring(OweClose, [] {});
    // A thread that was cancelled before its call owes nothing.
    EXPECT_EQ(VPMClose(), 0);
    EXPECT_EQ(LinkUsers(), 0);
  }
}

class TurnsOfFamilies : public testing::Test {
 protected:
  TurnsOfFamilies() { board.AttachThisProcess(); }
  rolu_sim::Board board;
};

// The library prints the line with the firmware's version. A print is a point at which a cancelled thread
// could end.
TEST_F(TurnsOfFamilies, CancelledThreadBringsItsFamilyUpFirst) {
  setvbuf(stdout, nullptr, _IOLBF, 0);
  board.mcu().Script(CommandMatch::Exactly("ATF0"), Reply::Line("*VER:001.010*", milliseconds(200)));
  CancelDuring([] { EXPECT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS); },
               [&] { EXPECT_TRUE(board.mcu().WaitForCommand("ATF0", kGenerous)); });
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
}

// Another thread's turn takes longer than the 2 s that a close waits.
TEST_F(TurnsOfFamilies, FamilyGoesDownInTimeAndThePortIsClosedLater) {
  const ProcessState before;
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS) << "a close that was owed takes no other";
    {
      const Turn held;
      const auto start = system_clock::now();
      std::thread leaving([] { EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS); });
      leaving.join();
      EXPECT_GE(system_clock::now() - start, milliseconds(2000));
      EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_NOT_INITIALIZED);
      EXPECT_EQ(LinkUsers(), 1);
    }
    EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
    EXPECT_EQ(LeftSince(before), "");
  }
}

TEST_F(TurnsOfFamilies, FamiliesThatGoDownAtOnceBehindOneSilentCommandCloseThePort) {
  const ProcessState before;
  ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(LinkUsers(), 4);
  board.mcu().Script(CommandMatch::Exactly("SILENT"), Reply::Silence());
  std::vector<std::thread> threads;
  threads.emplace_back(
      [] { EXPECT_EQ(Ask("SILENT"), "status " + std::to_string(ROLU_STATUS_VPM_NO_REPLY)); });
  ASSERT_TRUE(board.mcu().WaitForCommand("SILENT", kGenerous));
  for (const auto deinitialize : {KAVO_ROLU_WD_Deinitialize, KAVO_ROLU_VPM_Deinitialize,
                                  KAVO_ROLU_GSENSOR_Deinitialize, KAVO_ROLU_PERIPHERALCTRL_Deinitialize}) {
    threads.emplace_back([deinitialize] { EXPECT_EQ(deinitialize(), ROLU_STATUS_SUCCESS); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
  EXPECT_EQ(LeftSince(before), "");
}

TEST_F(TurnsOfFamilies, AlarmSampleIsGivenUpWhenTheLockOfTheLinksStateIsNotFree) {
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  ROLU_GSENSOR_DATA sample = {1, 2, 3};
  const auto start = std::chrono::steady_clock::now();
  std::future<ROLU_STATUS> result;
  {
    const ScopedLock held(*io_op_lock);
    result = std::async(std::launch::async, [&] { return KAVO_ROLU_GSENSOR_GetAlarmData(&sample); });
    EXPECT_EQ(result.wait_for(kGenerous), std::future_status::ready) << "it waits without end";
  }
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(1000));
  EXPECT_EQ(result.get(), ROLU_STATUS_TIMEOUT);
  EXPECT_EQ(sample.x, 1);
  EXPECT_EQ(sample.y, 2);
  EXPECT_EQ(sample.z, 3);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_GetAlarmData(&sample), ROLU_STATUS_GSENSOR_NO_ALARM_DATA) << "and so on";
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
}

}  // namespace
