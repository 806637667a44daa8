// The I/O thread's own times keep their length when the wall clock is set. The test makes the polls one by
// one on a paused link.
#include <chrono>
#include <future>

#include "tests/mcu/paused_link.h"
#include "tests/support/wall_clock.h"

namespace {

using rolu_test::MoveWallClock;
using std::chrono::hours;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kPoll{30};
constexpr int kNothing = -2;

// A busy line: its last byte was read just now.
class QuietTime : public testing::Test {
 protected:
  QuietTime() {
    link_.Send("x");
    EXPECT_EQ(PollPort(kPoll), 0);
  }

  const Clock::time_point before_byte_ = Clock::now();
  PausedLink link_;
};

TEST_F(QuietTime, IsNoLongerWhenTheClockIsSetBack) {
  MoveWallClock(-hours(1));
  auto poll = std::async(std::launch::async, PollPort, kPoll);
  const bool has_ended = poll.wait_for(kGenerous) == std::future_status::ready;
  EXPECT_TRUE(has_ended) << "a command would wait until the clock has caught up";
  if (!has_ended) link_.Send("y");
  EXPECT_EQ(poll.get(), kNothing);
}

TEST_F(QuietTime, IsNoShorterWhenTheClockIsSetForward) {
  MoveWallClock(hours(1));
  EXPECT_EQ(PollPort(kPoll), kNothing);
  EXPECT_GE(Clock::now() - before_byte_, kPoll) << "a command would leave amid what the MCU sends";
}

}  // namespace
