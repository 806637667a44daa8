// The wall clock is set while calls wait. What a call waits for ends at a time of that clock: the wait in
// hand is shorter or longer by as much, and nothing else.
#include "tests/support/wall_clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "core/critical_section.h"
#include "core/deadline.h"
#include "kavo_rolu.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"

namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Reply;
using rolu_test::MoveWallClock;
using std::chrono::hours;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kReplyWait{3000};
constexpr unsigned short kTime = 0x3C;

struct Answered {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  unsigned short time = 0;
  milliseconds took{0};
};

Answered AskTime() {
  Answered answered;
  const auto start = Clock::now();
  answered.status = KAVO_ROLU_WD_GetTime(&answered.time);
  answered.took = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  return answered;
}

class WallClock : public testing::Test {
 protected:
  WallClock() {
    board_.AttachThisProcess();
    board_.mcu().WithModel([](rolu_sim::McuModel& model) { model.watchdog.time = kTime; });
    EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  }
  ~WallClock() override { EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS); }

  // A question whose command is at the MCU.
  std::future<Answered> AskWithAnswer(const Reply& reply) {
    board_.mcu().Script(CommandMatch::Exactly("WDTG"), reply);
    auto answered = std::async(std::launch::async, AskTime);
    EXPECT_TRUE(board_.mcu().WaitForCommand("WDTG", kGenerous, ++asked_));
    return answered;
  }

  void ExpectNextCallsWhole() {
    const Answered answered = AskTime();
    ++asked_;
    EXPECT_EQ(answered.status, ROLU_STATUS_SUCCESS);
    EXPECT_EQ(answered.time, kTime);
    const Answered lost = AskWithAnswer(Reply::Silence()).get();
    EXPECT_EQ(lost.status, ROLU_STATUS_VPM_NO_REPLY);
    EXPECT_GE(lost.took, kReplyWait);
  }

  rolu_sim::Board board_;
  std::size_t asked_ = 0;
};

// Sets the clock, again and again, while a call runs: whenever the call took its deadline, the clock was
// set after it.
template <typename Result>
Result SetDuring(std::future<Result> call, std::chrono::seconds by) {
  while (call.wait_for(milliseconds(5)) != std::future_status::ready) MoveWallClock(by);
  return call.get();
}

TEST_F(WallClock, SetForwardEndsTheWaitInHand) {
  const Answered answered = SetDuring(AskWithAnswer(Reply::Silence()), hours(1));
  RecordProperty("took_ms", static_cast<int>(answered.took.count()));
  EXPECT_EQ(answered.status, ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_LT(answered.took, kReplyWait);
  // The answer to it comes after all.
  board_.mcu().SendRaw("0001\r\n");
  ExpectNextCallsWhole();
}

TEST_F(WallClock, SetBackLengthensTheWaitUntilTheAnswer) {
  constexpr milliseconds kLaterThanTheWait(3300);
  const Answered answered = SetDuring(AskWithAnswer(Reply::Line("0007", kLaterThanTheWait)), -hours(1));
  RecordProperty("took_ms", static_cast<int>(answered.took.count()));
  EXPECT_EQ(answered.status, ROLU_STATUS_SUCCESS);
  EXPECT_EQ(answered.time, 7);
  EXPECT_GE(answered.took, kLaterThanTheWait);
  ExpectNextCallsWhole();
}

TEST(WallClockAndLocks, SetForwardEndsTheWaitForALock) {
  CCriticalSection section;
  const ScopedLock held(section);
  const auto start = Clock::now();
  EXPECT_EQ(SetDuring(std::async(std::launch::async, [&] { return section.TimeLock(60000); }), hours(1)), -1);
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
}

TEST(WallClockAndDelays, KeepTheirLength) {
  constexpr milliseconds kDelay(200);
  for (const hours by : {hours(1), hours(-1)}) {
    const auto start = Clock::now();
    const auto sleep = [=] { return SleepForMs(static_cast<int>(kDelay.count())), true; };
    EXPECT_TRUE(SetDuring(std::async(std::launch::async, sleep), by));
    EXPECT_GE(Clock::now() - start, kDelay);
    EXPECT_LT(Clock::now() - start, kGenerous);
  }
}

}  // namespace
