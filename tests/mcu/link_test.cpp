// The link from open to close, with an MCU at the far end.
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
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/process_objects.h"
#include "kavo_rolu.h"
#include "mcu/transaction.h"
#include "mcu/turn.h"
#include "mcu/unsolicited.h"
#include "simulator/line/mcu_serial.h"
#include "tests/mcu/paused_link.h"
#include "tests/support/process_state.h"

namespace {

using rolu_sim::CommandMatch;
using rolu_sim::kEveryTime;
using rolu_sim::McuSerial;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

bool Open(const std::string& path) {
  return VPMOpen(path.c_str(), O_RDWR) == 0;
}

// Asks the MCU; the reply, or the failed transaction's status.
std::string Ask(const std::string& question, int post_delay_ms = 0) {
  const std::string command = question + '\r';
  char reply[kLineCapacity] = {};
  const uint32_t status = RunTransaction(nullptr, command.c_str(), static_cast<int>(command.size()), reply,
                                         sizeof reply, post_delay_ms);
  return status == ROLU_STATUS_SUCCESS ? reply : "status " + std::to_string(status);
}

class OpenLink : public testing::Test {
 protected:
  OpenLink() { EXPECT_TRUE(Open(mcu.DevicePath())); }
  ~OpenLink() override { EXPECT_EQ(VPMClose(), 0); }
  McuSerial mcu;
};

TEST(Link, StaysOpenUntilItsLastUserCloses) {
  McuSerial mcu;
  const ProcessState before;
  ASSERT_TRUE(Open(mcu.DevicePath()));
  EXPECT_TRUE(Open("/a path that a second user's open does not look at"));
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_TRUE(mcu.WaitForHostClosed(kGenerous));
  EXPECT_EQ(LeftSince(before), "");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(send_vpm_command("Hello\r", 6), -2);
  char reply[kLineCapacity];
  EXPECT_EQ(read_vpm_response(reply, 0), -1);
  ASSERT_TRUE(Open(mcu.DevicePath())) << "the close too many took nothing away";
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
  }
  const McuSerial mcu;
  ASSERT_TRUE(Open(mcu.DevicePath()));
  char reply[kLineCapacity];
  EXPECT_EQ(read_vpm_response(reply, 50), -1);
  EXPECT_EQ(VPMClose(), 0);
}

TEST(Link, NeverOpenedTakesNoCommand) {
  char reply[kLineCapacity];
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(send_vpm_command("Hello\r", 6), -2);
  EXPECT_EQ(read_vpm_response(reply, 0), -1);
}

// Takes all descriptors that select() can watch.
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

// A default stack that no address space has room for.
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
    EXPECT_FALSE(Open(path)) << path;
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

  ASSERT_TRUE(Open(port));
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_EQ(LeftSince(at_first), "");
}

TEST_F(OpenLink, OpenAndCloseGiveUpWhenTheTransactionLockIsNotFree) {
  int opened = 0;
  int closed = 0;
  {
    const ScopedLock held(CriSectCtx);
    const auto start = std::chrono::system_clock::now();
    std::thread opener([&] { opened = VPMOpen(mcu.DevicePath().c_str(), O_RDWR); });
    std::thread closer([&] { closed = VPMClose(); });
    opener.join();
    closer.join();
    EXPECT_GE(std::chrono::system_clock::now() - start, milliseconds(2000));
  }
  EXPECT_EQ(opened, -1);
  EXPECT_EQ(closed, ROLU_STATUS_VPM_NO_REPLY);
  EXPECT_EQ(Ask("Hello"), "OK");
  EXPECT_EQ(VPMClose(), 0);
  EXPECT_TRUE(mcu.WaitForHostClosed(kGenerous)) << "the failed calls changed no count";
}

int Users() {
  const ScopedLock lock(*io_op_lock);
  return vpm_ref_count;
}

TEST_F(OpenLink, OwedClosesAreSettledWhoeverEndsATurn) {
  constexpr int kUsers = 200;
  for (int i = 0; i < kUsers; ++i) ASSERT_TRUE(Open(mcu.DevicePath()));
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
  EXPECT_EQ(Users(), 1) << "the fixture's";
  EXPECT_EQ(Ask("Hello"), "OK");
}

// An opening that waits for its turn while a close is owed must find the link closed: what was registered
// and queued before is the old users'.
TEST(Link, OwedCloseComesBeforeAnOpeningThatWaits) {
  McuSerial mcu;
  ROLU_GSENSOR_DATA sample;
  for (int round = 0; round < 30; ++round) {
    ASSERT_TRUE(Open(mcu.DevicePath()));
    {
      const ScopedLock lock(*io_op_lock);
      push_gsensor_alarm_data("[GI:000100010001]");
    }
    std::thread opener;
    {
      const Turn held;
      std::thread(OweClose).join();
      opener = std::thread([&] { EXPECT_TRUE(Open(mcu.DevicePath())); });
      std::this_thread::sleep_for(milliseconds(1));
    }
    opener.join();
    EXPECT_EQ(pop_gsensor_alarm_data(&sample), -2);
    EXPECT_EQ(VPMClose(), 0);
  }
}

// Numbers 0, 1 and 2 are free for a while.
class ClosedStandardStreams {
 public:
  ClosedStandardStreams() {
    fflush(stdout);
    for (int stream = 0; stream < kStreams; ++stream) {
      kept_[stream] = fcntl(stream, F_DUPFD_CLOEXEC, kOutOfTheWay);
      close(stream);
    }
  }
  ~ClosedStandardStreams() {
    for (int stream = 0; stream < kStreams; ++stream) {
      dup2(kept_[stream], stream);
      close(kept_[stream]);
    }
  }
  ClosedStandardStreams(const ClosedStandardStreams&) = delete;
  ClosedStandardStreams& operator=(const ClosedStandardStreams&) = delete;

 private:
  static constexpr int kStreams = 3;
  static constexpr int kOutOfTheWay = 100;
  int kept_[kStreams] = {};
};

TEST(Link, NoDescriptorOfItsIsAStandardStream) {
  McuSerial mcu;
  const ProcessState before;
  int port = -1;
  int wake_event = -1;
  std::array<bool, 3> taken{};
  {
    const ClosedStandardStreams closed;
    if (!Open(mcu.DevicePath())) std::abort();
    port = vpm_port;
    wake_event = vpm_wake_event;
    for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
      taken[static_cast<size_t>(stream)] = fcntl(stream, F_GETFD) != -1;
    }
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

// How often the I/O thread has gone to sleep since it started.
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
  const auto received = [&line](size_t size) {
    std::string bytes(size, '\0');
    size_t count = 0;
    while (count < size && IsReadable(line.master(), kGenerousMs)) {
      const ssize_t more = read(line.master(), bytes.data() + count, size - count);
      if (more <= 0) break;
      count += static_cast<size_t>(more);
    }
    return bytes;
  };
  ASSERT_TRUE(Open(line.device_path()));
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  ASSERT_EQ(send_vpm_command("ONE\r", 4), 0);
  EXPECT_EQ(received(4), "ONE\r") << "a command that nobody waits for";
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  ASSERT_EQ(write(line.master(), "LINE\r\n", 6), 6);
  EXPECT_TRUE(WaitUntil(IsReplyStored));
  EXPECT_TRUE(WaitUntil(IoThreadStaysAsleep));
  EXPECT_EQ(VPMClose(), 0);
}

// Another process that has the port open takes bytes between the I/O thread's poll and its read.
TEST(LinkClose, EndsWhileAnotherProcessTakesTheBytes) {
  const rolu_sim::PseudoTerminal line;
  ASSERT_TRUE(Open(line.device_path()));
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
  // Would end a close that hangs.
  EXPECT_EQ(write(line.master(), "\r", 1), 1);
  EXPECT_EQ(closed.get(), 0);
}

struct CancelledCall {
  std::string command;
  int post_delay_ms;
  std::string answer;
};

// A thread that leaves, whose close is owed and settled by itself, ends behind that, too.
void* LeaveAndEnd(void*) {
  OweClose();
  pthread_testcancel();
  return nullptr;
}

TEST(Link, CancelledThreadThatSettlesAnOwedCloseKeepsNoLock) {
  McuSerial mcu;
  for (int round = 0; round < 50; ++round) {
    ASSERT_TRUE(Open(mcu.DevicePath()));
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, LeaveAndEnd, nullptr), 0);
    EXPECT_EQ(pthread_cancel(thread), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    // Cancelled before it began, it owes nothing.
    EXPECT_EQ(VPMClose(), 0);
    EXPECT_EQ(Users(), 0);
  }
}

void* AskAndEnd(void* argument) {
  auto* call = static_cast<CancelledCall*>(argument);
  call->answer = Ask(call->command, call->post_delay_ms);
  pthread_testcancel();
  return nullptr;
}

TEST_F(OpenLink, CancelledThreadEndsBehindItsCallAndKeepsNoLock) {
  constexpr milliseconds kAnswerTime(200);
  mcu.Script(CommandMatch::Exactly("SLOW"), rolu_sim::Reply::Line("0001", kAnswerTime));
  mcu.Script(CommandMatch::Exactly("ORDER"), rolu_sim::Reply::Line("0002"));
  for (CancelledCall call : {CancelledCall{"SLOW", 0, ""}, CancelledCall{"ORDER", 200, ""}}) {
    SCOPED_TRACE(call.command);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, AskAndEnd, &call), 0);
    EXPECT_TRUE(mcu.WaitForCommand(call.command, kGenerous));
    EXPECT_EQ(pthread_cancel(thread), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED) << "the request is not forgotten";
    EXPECT_THAT(call.answer, testing::StartsWith("000"));
    auto next = std::async(std::launch::async, [] { return Ask("Hello"); });
    ASSERT_EQ(next.wait_for(kGenerous), std::future_status::ready) << "a lock is kept";
    EXPECT_EQ(next.get(), "OK");
  }
}

TEST_F(OpenLink, AnswerThatCameBeforeTheWaitIsTakenAtOnce) {
  ASSERT_EQ(send_vpm_command("Hello\r", 6), 0);
  ASSERT_TRUE(WaitUntil(IsReplyStored));
  char reply[kLineCapacity];
  EXPECT_EQ(read_vpm_response(reply, 0), 0);
  EXPECT_STREQ(reply, "OK");
}

// The link keeps the second line for a caller that may ask for it; the next command may come first.
TEST_F(OpenLink, SecondLineThatNobodyReadsIsNotTheNextAnswer) {
  mcu.Script(CommandMatch::Exactly("TWICE"), rolu_sim::Reply::Lines({"ONE", "TWO"}), kEveryTime);
  mcu.Script(CommandMatch::Exactly("MCVG"), rolu_sim::Reply::Line("02EB"), kEveryTime);
  for (int i = 0; i < 50; ++i) {
    EXPECT_THAT(Ask("TWICE"), testing::AnyOf("ONE", "TWO"));
    EXPECT_EQ(Ask("MCVG"), "02EB");
  }
}

TEST(LinkClose, EndsWhileTheMcuSendsWithoutLineEnds) {
  const rolu_sim::PseudoTerminal line;
  ASSERT_TRUE(Open(line.device_path()));
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
  ASSERT_TRUE(Open(mcu.DevicePath()));
  mcu.HangUp();
  const auto cpu_time = [] {
    clockid_t clock = 0;
    timespec time{};
    EXPECT_EQ(pthread_getcpuclockid(vpm_io_thread_handle, &clock), 0);
    EXPECT_EQ(clock_gettime(clock, &time), 0);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const auto before = cpu_time();
  char reply[kLineCapacity];
  ASSERT_EQ(send_vpm_command("Hello\r", 6), 0);
  EXPECT_EQ(read_vpm_response(reply, 300), -1);
  EXPECT_LT(cpu_time() - before, milliseconds(100)) << "the I/O thread rests between its polls";
  EXPECT_EQ(VPMClose(), 0);
}

std::string DescriptorsOfAChild() {
  std::string listing;
  FILE* child = popen("ls -l /proc/self/fd", "r");
  char text[256];
  while (child != nullptr && fgets(text, sizeof text, child) != nullptr) listing += text;
  if (child != nullptr) pclose(child);
  return listing;
}

TEST_F(OpenLink, ChildrenDoNotInheritThePort) {
  const std::string inherited = DescriptorsOfAChild();
  EXPECT_THAT(inherited, testing::HasSubstr("pipe:")) << "the listing itself";
  EXPECT_THAT(inherited, testing::Not(testing::HasSubstr(mcu.DevicePath() + "\n")));
  EXPECT_THAT(inherited, testing::Not(testing::HasSubstr("eventfd")));
}

std::atomic<int> signals_handled{0};

void CountSignal(int) {
  ++signals_handled;
}

void HandleSignal(int signal_number) {
  struct sigaction action {};
  action.sa_handler = CountSignal;
  signals_handled = 0;
  ASSERT_EQ(sigaction(signal_number, &action, nullptr), 0);
}

TEST_F(OpenLink, SignalStormDisturbsNoTransaction) {
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

// Every thread but the library's has the signal blocked: if that one did not, the signal would be
// handled there.
TEST_F(OpenLink, SignalsAreNotHandledOnTheIoThread) {
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

}  // namespace
