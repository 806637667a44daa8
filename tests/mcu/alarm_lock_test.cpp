// A program asks for an alarm sample while another thread holds the lock of the link's state.
#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "kavo_rolu.h"
#include "mcu/link_state.h"
#include "mcu/unsolicited.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kLockWait{1000};

// The result of `call` while the lock is held.
template <typename Call>
auto CallWithoutTheLock(Call call) {
  const auto start = Clock::now();
  std::future<decltype(call())> result;
  {
    const ScopedLock held(*io_op_lock);
    result = std::async(std::launch::async, call);
    EXPECT_EQ(result.wait_for(kGenerous), std::future_status::ready) << "it waits without end";
  }
  EXPECT_GE(Clock::now() - start, kLockWait);
  return result.get();
}

TEST(AlarmData, IsGivenUpWhenTheLockIsNotFree) {
  rolu_sim::Board board;
  board.AttachThisProcess();
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  ROLU_GSENSOR_DATA sample = {1, 2, 3};
  EXPECT_EQ(CallWithoutTheLock([&] { return pop_gsensor_alarm_data(&sample); }), -3);
  EXPECT_EQ(CallWithoutTheLock([&] { return KAVO_ROLU_GSENSOR_GetAlarmData(&sample); }), ROLU_STATUS_TIMEOUT);
  EXPECT_EQ(sample.x, 1);
  EXPECT_EQ(sample.y, 2);
  EXPECT_EQ(sample.z, 3);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_GetAlarmData(&sample), ROLU_STATUS_GSENSOR_NO_ALARM_DATA) << "and so on";
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
}

}  // namespace
