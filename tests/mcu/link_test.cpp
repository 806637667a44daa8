// The link from open to close and its transactions, with an MCU at the far end.
#include "mcu/link.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/mcu/paused_link.h"
#include "tests/support/signal_handler.h"

namespace {

using rolu_sim::CommandMatch;
using rolu_sim::McuSerial;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(Link, StaysOpenUntilItsLastUserCloses) {
  McuSerial mcu;
  const ProcessState before;
  ASSERT_TRUE(OpenLink(mcu.DevicePath()));
  EXPECT_TRUE(OpenLink("/a path that a second user's open does not look at"));
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_TRUE(mcu.WaitForHostClosed(kGenerous));
  EXPECT_EQ(LeftSince(before), "");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_FALSE(Queue("Hello\r"));
  EXPECT_EQ(TakeReply(0), "none");
  ASSERT_TRUE(OpenLink(mcu.DevicePath())) << "the close too many took nothing away";
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_TRUE(mcu.WaitForHostClosed(kGenerous));
}

TEST(Link, OpeningForgetsWhatTheLastPortSent) {
  {
    const PausedLink link;
    link.Send("TAKEN\rSTALE\r");
    char line[kLineCapacity];
    unsigned long length = 0;
    ASSERT_TRUE(VPMRead(line, &length, 1));
    const ScopedLock lock(*io_op_lock);
    last_command_valid = true;
  }
  const McuSerial mcu;
  ASSERT_TRUE(OpenLink(mcu.DevicePath()));
  EXPECT_EQ(TakeReply(50), "none");
  EXPECT_EQ(VPMClose(), 0);
}

TEST(Link, NeverOpenedTakesNoCommand) {
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_FALSE(Queue("Hello\r"));
  EXPECT_EQ(TakeReply(0), "none");
}

// Takes all free descriptors that select() can watch.
std::vector<rolu_sim::UniqueFd> TakeLowDescriptors() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = FD_SETSIZE + 200;
  setrlimit(RLIMIT_NOFILE, &limit);
  std::vector<rolu_sim::UniqueFd> taken;
  do {
    taken.emplace_back(open("/dev/null", O_RDWR | O_CLOEXEC));
  } while (taken.back() && taken.back().get() < FD_SETSIZE);
  return taken;
}

// Sets a default stack that does not fit any address space.
void SetDefaultStack(size_t size) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, size);
  EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
  pthread_attr_destroy(&attributes);
}

TEST(Link, RefusedOpenLeavesNothingBehind) {
  McuSerial mcu;
  const std::string port = mcu.DevicePath();
  const ProcessState at_first;
  const auto refuses = [](const std::string& path) {
    const ProcessState before;
    EXPECT_FALSE(OpenLink(path)) << path;
    EXPECT_EQ(vpm_port, -1);
    EXPECT_EQ(LeftSince(before), "") << path;
  };
  refuses("/nowhere/vpm_serial");
  refuses("/dev/null");
  {
    const auto taken = TakeLowDescriptors();
    ASSERT_EQ(taken.back().get(), FD_SETSIZE);
    refuses(port);
  }
  SetDefaultStack(SIZE_MAX / 16 * 15 & ~size_t{0xFFFF});
  refuses(port);
  SetDefaultStack(8 << 20);

  ASSERT_TRUE(OpenLink(port));
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(LeftSince(at_first), "");
}

TEST(Link, NoDescriptorOfItsIsAStandardStream) {
  McuSerial mcu;
  const ProcessState before;
  // For a while the numbers of the standard streams are free.
  std::array<int, 3> kept{};
  std::array<bool, 3> taken{};
  fflush(stdout);
  for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
    kept.at(static_cast<size_t>(stream)) = fcntl(stream, F_DUPFD_CLOEXEC, 100);
    close(stream);
  }
  if (!OpenLink(mcu.DevicePath())) std::abort();
  const int port = vpm_port;
  const int wake_event = vpm_wake_event;
  for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
    const auto index = static_cast<size_t>(stream);
    taken.at(index) = fcntl(stream, F_GETFD) != -1;
    dup2(kept.at(index), stream);
    close(kept.at(index));
  }
  EXPECT_GT(port, STDERR_FILENO);
  EXPECT_GT(wake_event, STDERR_FILENO);
  EXPECT_THAT(taken, testing::Each(false)) << "what was moved is closed where it was";
  EXPECT_NE(fcntl(port, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_NE(fcntl(wake_event, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(LeftSince(before), "");
}

// How often the I/O thread has slept since it started.
long IoThreadSleeps() {
  long sleeps = -1;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    if (thread.path().filename() == std::to_string(getpid())) continue;
    std::ifstream status(thread.path() / "status");
    for (std::string word; status >> word;) {
      if (word == "voluntary_ctxt_switches:") status >> sleeps;
    }
  }
  return sleeps;
}

bool IoThreadStaysAsleep() {
  const long before = IoThreadSleeps();
  std::this_thread::sleep_for(milliseconds(100));
  return before > 0 && IoThreadSleeps() == before;
}

TEST(LinkAtRest, WakesNobodyAndStillHearsAndSends) {
  const rolu_sim::PseudoTerminal line;
  ASSERT_TRUE(OpenLink(line.device_path()));
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  ASSERT_TRUE(Queue("ONE\r"));
  EXPECT_EQ(ReceiveAt(line.master(), 4), "ONE\r") << "a command that nobody waits for";
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  ASSERT_EQ(write(line.master(), "LINE\r\n", 6), 6);
  EXPECT_TRUE(WaitUntil(IsReplyStored));
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  EXPECT_EQ(VPMClose(), 0);
}

// Another process has the port open and takes bytes between the I/O thread's poll and its read.
TEST(LinkClose, EndsWhileAnotherProcessTakesTheBytes) {
  const rolu_sim::PseudoTerminal line;
  ASSERT_TRUE(OpenLink(line.device_path()));
  std::atomic<bool> stealing{true};
  std::thread thief([&] {
    const rolu_sim::UniqueFd port(open(line.device_path().c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK));
    char byte = 0;
    while (stealing) [[maybe_unused]] const ssize_t taken = read(port.get(), &byte, 1);
  });
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(write(line.master(), "x", 1), 1);
  auto closed = std::async(std::launch::async, VPMClose);
  EXPECT_EQ(closed.wait_for(kGenerous), std::future_status::ready);
  stealing = false;
  thief.join();
  // If the close hangs, this line ends it.
  EXPECT_EQ(write(line.master(), "\r", 1), 1);
  EXPECT_EQ(closed.get(), 0);
}

TEST(LinkClose, EndsWhileTheMcuSendsWithoutLineEnds) {
  const rolu_sim::PseudoTerminal line;
  ASSERT_TRUE(OpenLink(line.device_path()));
  std::atomic<bool> flooding{true};
  std::atomic<size_t> sent{0};
  size_t sent_before_stop = 0;
  std::thread flood([&] {
    const std::string bytes(64, 'x');
    while (flooding) {
      if (io_thread_active) sent_before_stop = sent;
      const ssize_t written = write(line.master(), bytes.data(), bytes.size());
      if (written > 0) sent += static_cast<size_t>(written);
    }
  });
  constexpr size_t kMoreThanTheLineHolds = 200000;
  EXPECT_TRUE(WaitUntil([&] { return sent > kMoreThanTheLineHolds; })) << "the link reads";
  EXPECT_EQ(VPMClose(), 0);
  flooding = false;
  flood.join();
  EXPECT_LT(sent - sent_before_stop, kMoreThanTheLineHolds) << "a link that has to end reads no further";
}

TEST(LinkClose, EndsOnADeadPort) {
  McuSerial mcu;
  ASSERT_TRUE(OpenLink(mcu.DevicePath()));
  mcu.HangUp();
  const auto cpu_time = [] {
    clockid_t clock = 0;
    timespec time{};
    const ScopedLock lock(*io_op_lock);
    EXPECT_EQ(pthread_getcpuclockid(vpm_io_thread_handle, &clock), 0);
    EXPECT_EQ(clock_gettime(clock, &time), 0);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const auto before = cpu_time();
  ASSERT_TRUE(Queue("Hello\r"));
  EXPECT_EQ(TakeReply(300), "none");
  EXPECT_LT(cpu_time() - before, milliseconds(100)) << "the I/O thread rests between its polls";
  EXPECT_EQ(VPMClose(), 0);
}

TEST_F(LinkTest, SignalStormDisturbsNoTransaction) {
  HandleSignal(SIGUSR1);
  std::atomic<bool> storming{true};
  const pthread_t caller = pthread_self();
  std::thread storm([&] {
    while (storming) {
      pthread_kill(caller, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  });
  for (int i = 0; i < 30; ++i) EXPECT_EQ(Ask("Hello"), "OK");
  const auto start = Clock::now();
  EXPECT_EQ(Ask("Hello", 100), "OK");
  EXPECT_GE(Clock::now() - start, milliseconds(100)) << "a signal does not end a post-delay";
  EXPECT_TRUE(WaitUntil([] { return signals_handled > 30; }));
  storming = false;
  storm.join();
}

// Every thread except the library's blocks the signal. If the library's thread did not block it, that thread
// would handle it.
TEST_F(LinkTest, SignalsAreNotHandledOnTheIoThread) {
  HandleSignal(SIGUSR1);
  sigset_t usr1;
  sigemptyset(&usr1);
  sigaddset(&usr1, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &usr1, nullptr);
  kill(getpid(), SIGUSR1);
  EXPECT_EQ(Ask("Hello"), "OK") << "the I/O thread has been running meanwhile";
  EXPECT_EQ(signals_handled, 0);
  pthread_sigmask(SIG_UNBLOCK, &usr1, nullptr);
  EXPECT_EQ(signals_handled, 1);
}

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
  EXPECT_EQ(send_vpm_command("x", -1), -2);
  EXPECT_EQ(RunTransaction(table.get(), nullptr, 0, reply, sizeof reply, 0), ROLU_STATUS_VPM_SEND_FAILED);
  EXPECT_EQ(RunTransaction(table.get(), "MCVG\r", 5, nullptr, 0, 0), ROLU_STATUS_VPM_SEND_FAILED);
  const std::string too_long(512, 'x');
  EXPECT_EQ(RunTransaction(table.get(), too_long.c_str(), 512, reply, sizeof reply, 0),
            ROLU_STATUS_VPM_SEND_FAILED);
  EXPECT_STREQ(reply, "untouched");
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_THAT(mcu.CommandsReceived(), testing::ElementsAre("Hello"));
}

// The line of the paused link is never quiet, so no command leaves.
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
