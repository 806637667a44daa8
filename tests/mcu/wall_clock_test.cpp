// The wall clock is set once while calls of the shipped library wait. A call's wait ends at a time of that
// clock. So the present wait becomes shorter or longer by that much; nothing else may change.
#include "tests/support/wall_clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <string>

#include "kavo_rolu.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"

namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Reply;
using rolu_test::MoveWallClock;
using rolu_test::WaitsForConditions;
using rolu_test::WaitsForLocks;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kReplyWait{3000};
constexpr milliseconds kLinkWait{2000};
constexpr unsigned short kTime = 0x3C;

struct Made {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  milliseconds took{0};
};

std::future<Made> Start(const std::function<ROLU_STATUS()>& call) {
  return std::async(std::launch::async, [=] {
    const auto start = Clock::now();
    const ROLU_STATUS status = call();
    return Made{status, std::chrono::duration_cast<milliseconds>(Clock::now() - start)};
  });
}

// Waits for the result and records the duration in the test's output.
Made Finish(const char* key, std::future<Made>& call) {
  const Made made = call.get();
  testing::Test::RecordProperty(key, static_cast<int>(made.took.count()));
  return made;
}

class WallClock : public testing::Test {
 protected:
  WallClock() {
    board_.AttachThisProcess();
    board_.mcu().WithModel([](rolu_sim::McuModel& model) { model.watchdog.time = kTime; });
    EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  }
  ~WallClock() override { EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS); }

  // Starts a call and returns when its command is at the MCU.
  std::future<Made> StartWithAnswer(const std::string& command, const Reply& reply,
                                    const std::function<ROLU_STATUS()>& call) {
    board_.mcu().Log().Clear();
    board_.mcu().Script(CommandMatch::Exactly(command), reply);
    auto made = Start(call);
    EXPECT_TRUE(board_.mcu().WaitForCommand(command, kGenerous));
    return made;
  }
  std::future<Made> AskTime(const Reply& reply) {
    return StartWithAnswer("WDTG", reply, [this] { return KAVO_ROLU_WD_GetTime(&time_); });
  }

  // Sets the clock while the library waits for the answer.
  Made AskWhileTheClockIsSet(const Reply& reply, seconds by) {
    auto call = AskTime(reply);
    EXPECT_TRUE(WaitUntil([] { return WaitsForConditions() == 1; }));
    const auto set_at = Clock::now();
    MoveWallClock(by);
    const Made made = Finish("took_ms", call);
    RecordProperty("after_set_us", static_cast<int>((Clock::now() - set_at) / std::chrono::microseconds(1)));
    return made;
  }

  void ExpectNextCallsWhole() {
    EXPECT_EQ(KAVO_ROLU_WD_GetTime(&time_), ROLU_STATUS_SUCCESS);
    EXPECT_EQ(time_, kTime);
    const Made lost = AskTime(Reply::Silence()).get();
    EXPECT_EQ(lost.status, ROLU_STATUS_VPM_NO_REPLY);
    EXPECT_GE(lost.took, kReplyWait);
  }

  rolu_sim::Board board_;
  unsigned short time_ = 0;
};

TEST_F(WallClock, SetForwardEndsTheWaitForAnAnswer) {
  const Made made = AskWhileTheClockIsSet(Reply::Silence(), hours(1));
  EXPECT_EQ(made.status, ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_LT(made.took, kReplyWait);
  // The late answer comes after all. When the message after it is there, the library has read the answer.
  ROLU_GSENSOR_DATA sample;
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  board_.mcu().SendRaw("0001\r\n[GI:000100010001]\r\n");
  EXPECT_TRUE(WaitUntil([&] { return KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS; }));
  ExpectNextCallsWhole();
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
}

TEST_F(WallClock, SetBackLengthensTheWaitForAnAnswerUntilItComes) {
  constexpr milliseconds kLaterThanTheWait(3300);
  const Made made = AskWhileTheClockIsSet(Reply::Line("0007", kLaterThanTheWait), -hours(1));
  EXPECT_EQ(made.status, ROLU_STATUS_SUCCESS);
  EXPECT_EQ(time_, 7);
  EXPECT_GE(made.took, kLaterThanTheWait);
  ExpectNextCallsWhole();
}

TEST_F(WallClock, SetBackLengthensTheWaitForAnAnswerByAsMuch) {
  const Made made = AskWhileTheClockIsSet(Reply::Silence(), -seconds(1));
  EXPECT_EQ(made.status, ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_GE(made.took, kReplyWait + seconds(1));
  EXPECT_LT(made.took, kGenerous);
  ExpectNextCallsWhole();
}

// A post-delay holds the turn for which the link waits. It keeps its length, whatever the clock shows.
// Without the setting, the link would open when the post-delay ends.
TEST_F(WallClock, SetForwardEndsTheWaitForTheLinkAndNoPostDelay) {
  constexpr milliseconds kPostDelay(1250);
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  auto holder = StartWithAnswer("EEDF", Reply::Line("OK"), KAVO_ROLU_VPM_LoadDefaultValue);
  ASSERT_TRUE(WaitUntil([] { return WaitsForConditions() == 0; }));
  auto opening = Start([] { return KAVO_ROLU_GSENSOR_Initialize(0); });
  ASSERT_TRUE(WaitUntil([] { return WaitsForLocks() == 1; }));
  MoveWallClock(hours(1));
  const Made opened = Finish("link_took_ms", opening);
  MoveWallClock(-hours(1));
  const Made held = Finish("post_delay_took_ms", holder);
  EXPECT_EQ(opened.status, ROLU_STATUS_VPM_OPEN_FAILED);
  EXPECT_LT(opened.took, kLinkWait);
  EXPECT_EQ(held.status, ROLU_STATUS_SUCCESS);
  EXPECT_GE(held.took, kPostDelay);
  EXPECT_LT(held.took, kGenerous);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  ExpectNextCallsWhole();
}

TEST_F(WallClock, SetBackLengthensTheWaitForTheLink) {
  constexpr milliseconds kLaterThanBothWaits(4000);
  auto holder = AskTime(Reply::Line("0007", kLaterThanBothWaits));
  auto opening = Start([] { return KAVO_ROLU_GSENSOR_Initialize(0); });
  ASSERT_TRUE(WaitUntil([] { return WaitsForConditions() == 1 && WaitsForLocks() == 1; }));
  MoveWallClock(-hours(1));
  const Made opened = Finish("link_took_ms", opening);
  EXPECT_EQ(opened.status, ROLU_STATUS_SUCCESS);
  EXPECT_GE(opened.took, kLinkWait);
  EXPECT_EQ(holder.get().status, ROLU_STATUS_SUCCESS);
  EXPECT_EQ(time_, 7);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
  ExpectNextCallsWhole();
}

// The caller loses the processor after it has queued its command and before it waits for the answer. Both
// lines come meanwhile: on a busy line a command leaves even if nobody waits.
TEST_F(WallClock, LinesThatComeBeforeTheWaitAreKept) {
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  for (int round = 0; round < 5; ++round) {
    EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_SUCCESS) << "the line is busy";
    rolu_test::PauseAtNextLook(milliseconds(20));
    EXPECT_EQ(KAVO_ROLU_VPM_SetRTCTime({14, 7, 25, 5, 13, 45, 30}), ROLU_STATUS_SUCCESS);
  }
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
}

}  // namespace
