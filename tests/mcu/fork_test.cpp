// The application forks while the link is open.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

#include "kavo_rolu.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"

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
  int leash[2];
  ASSERT_EQ(pipe2(leash, O_CLOEXEC), 0);
  const pid_t child = fork();
  if (child == 0) {
    // Lives until the leash is let go.
    dup2(leash[0], STDIN_FILENO);
    execlp("cat", "cat", nullptr);
    _exit(1);
  }
  close(leash[0]);
  ASSERT_GT(child, 0);
  const std::string program = "/proc/" + std::to_string(child) + "/comm";
  ASSERT_TRUE(WaitUntil([&] {
    std::string name;
    std::ifstream(program) >> name;
    return name == "cat";
  }));
  ExpectAnswer();
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board_.mcu().WaitForHostClosed(kGenerous)) << "the child holds the port open";
  EXPECT_EQ(kill(child, 0), 0) << "it lives";
  close(leash[1]);
  EXPECT_EQ(WaitStatusOf(child), 0);
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
