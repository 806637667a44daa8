// The application forks while the link is open.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "kavo_rolu.h"
#include "simulator/board.h"
#include "tests/support/process.h"

namespace {

constexpr unsigned short kTime = 0x3C;

class Fork : public testing::Test {
 protected:
  Fork() {
    board_.AttachThisProcess();
    board_.mcu().WithModel([](rolu_sim::McuModel& model) { model.watchdog.time = kTime; });
    EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  }

  static void ExpectAnswer() {
    unsigned short time = 0;
    EXPECT_EQ(KAVO_ROLU_WD_GetTime(&time), ROLU_STATUS_SUCCESS);
    EXPECT_EQ(time, kTime);
  }

  rolu_sim::Board board_;
};

TEST_F(Fork, ProgramThatIsExecutedDoesNotHoldThePort) {
  const rolu_test::Process program({"sleep", "1000"});
  ExpectAnswer();
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board_.mcu().WaitForHostClosed(kGenerous)) << "it holds the port open";
  EXPECT_EQ(kill(program.pid(), 0), 0) << "it lives";
}

TEST_F(Fork, ChildrenThatEndByThemselvesDoNoHarm) {
  std::atomic<bool> forking{true};
  std::atomic<int> answers{0};
  std::thread caller([&] {
    for (; forking; ++answers) ExpectAnswer();
  });
  for (int i = 0; i < 20; ++i) {
    const int answers_before = answers;
    const pid_t child = fork();
    if (child == 0) _exit(0);
    ASSERT_GT(child, 0);
    EXPECT_EQ(WaitStatusOf(child), 0);
    EXPECT_TRUE(WaitUntil([&] { return answers > answers_before; })) << "the link goes on";
  }
  forking = false;
  caller.join();
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board_.mcu().WaitForHostClosed(kGenerous));
}

}  // namespace
