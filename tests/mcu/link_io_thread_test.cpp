// The steps of the I/O thread, one at a time on a paused link.
#include <gmock/gmock.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "tests/mcu/paused_link.h"
#include "tests/support/signal_handler.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kPoll{5};

// Reads all lines that have come, until the first empty poll. A second empty poll would not end on a quiet
// line that holds no part of a line.
std::vector<std::string> ReadLines() {
  std::vector<std::string> lines;
  char line[kLineCapacity];
  unsigned long length = 0;
  while (VPMRead(line, &length, 1)) lines.emplace_back(line, length);
  return lines;
}

TEST(QuietRule, WakeUpEndsAPollOnlyOnAQuietLine) {
  constexpr milliseconds kLongPoll{30};
  auto start = Clock::now();
  const PausedLink link;
  WakeIoThread();
  EXPECT_EQ(PollPort(kLongPoll), -2) << "nothing is known about the line yet";
  EXPECT_GE(Clock::now() - start, kLongPoll);
  WakeIoThread();
  EXPECT_EQ(PollPort(kGenerous), kWoken);

  start = Clock::now();
  WakeIoThread();
  link.Send("x");
  EXPECT_EQ(PollPort(kGenerous), 0) << "bytes come before a wake-up";
  EXPECT_EQ(PollPort(kLongPoll), -2) << "bytes have just arrived";
  EXPECT_GE(Clock::now() - start, kLongPoll);
  EXPECT_EQ(PollPort(kGenerous), kWoken) << "the wake-up from before the bytes";
  EXPECT_EQ(PollPort(milliseconds(1)), -2) << "a wake-up counts once";
}

TEST(QuietRule, OnlyTheWaitForAnAnswerHurriesACommand) {
  PausedLink link;
  EXPECT_EQ(PollPort(kPoll), -2) << "the line is quiet";
  EXPECT_EQ(TakeReply(0), "none");
  EXPECT_FALSE(IsReadable(vpm_wake_event, 0)) << "a wait with nothing queued has nothing to hurry";
  ASSERT_TRUE(Queue("A\r"));
  ASSERT_TRUE(Queue("B\r"));
  EXPECT_FALSE(tx_urgent);
  EXPECT_EQ(TakeReply(0), "none");
  EXPECT_TRUE(tx_urgent);
  EXPECT_TRUE(IsReadable(vpm_wake_event, 0));
  cancel_queued_commands();
  EXPECT_FALSE(tx_urgent) << "what was taken back hurries nothing after it";
  ASSERT_TRUE(Queue("A\r"));
  ASSERT_TRUE(Queue("B\r"));
  EXPECT_EQ(TakeReply(0), "none");
  link.Resume();
  EXPECT_EQ(link.Receive(4), "A\rB\r") << "commands that are queued together leave together";
  EXPECT_TRUE(WaitUntil([] { return !tx_urgent; })) << "what was written hurries nothing after it";
}

TEST(QuietRule, CommandThatNobodyWaitsForLeavesAfterAPoll) {
  const PausedLink link;
  ReadLines();
  const auto start = Clock::now();
  ASSERT_TRUE(Queue("A\r"));
  EXPECT_TRUE(IsReadable(vpm_wake_event, 0)) << "a thread that waits without a time-out hears of it";
  EXPECT_THAT(ReadLines(), testing::IsEmpty());
  EXPECT_GE(Clock::now() - start, kPoll);
  EXPECT_EQ(link.Receive(2), "A\r");
}

// The test sends a byte every millisecond, if the machine is fast enough. At any speed, a command may leave
// only after a gap of a whole poll.
TEST(QuietRule, CommandLeavesAStreamOnlyInAGap) {
  PausedLink link;
  link.Resume();
  struct Moment {
    Clock::time_point before;
    Clock::time_point after;
  };
  std::vector<Moment> stream;
  std::string reply;
  std::thread caller;
  while (stream.size() < 150 && !link.HasReceived(1)) {
    const auto before = Clock::now();
    link.Send("x");
    stream.push_back({before, Clock::now()});
    if (stream.size() == 5) {
      caller = std::thread([&reply] {
        EXPECT_TRUE(Queue("ASK\r"));
        reply = TakeReply(kGenerousMs);
      });
    }
  }
  if (link.HasReceived(0)) {
    stream.push_back({Clock::now(), Clock::now()});
    Clock::duration widest{};
    for (size_t i = 1; i < stream.size(); ++i) {
      widest = std::max(widest, stream[i].after - stream[i - 1].before);
    }
    EXPECT_GE(widest, kPoll) << "after " << stream.size() << " bytes";
  }
  EXPECT_EQ(link.Receive(4), "ASK\r");
  link.Send("]\rANSWER\r");
  caller.join();
  EXPECT_EQ(reply, "ANSWER");
}

TEST(BrokenLine, EmptyPollsTakeTheirTime) {
  PausedLink link;
  link.HangUp();
  const auto start = Clock::now();
  for (int i = 0; i < 10; ++i) EXPECT_LT(PollPort(kPoll), 0);
  EXPECT_GE(Clock::now() - start, 8 * kPoll) << "all but the first, which began when the link was opened";
}

TEST(BrokenLine, WriteToALineThatTakesNothingFailsAtOnce) {
  const PausedLink link;
  const std::string bytes(511, 'x');
  size_t accepted = 0;
  while (VPMWrite(bytes.data(), 511)) accepted += bytes.size();
  EXPECT_GT(accepted, 0U);
  link.Receive(accepted);
  EXPECT_TRUE(VPMWrite(bytes.data(), 511)) << "the line takes bytes again";
}

TEST(BrokenLine, WriteGoesOnWhereAShortOneStopped) {
  const PausedLink link;
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends), 0);
  const int port = std::exchange(vpm_port, ends[0]);
  const std::string more_than_fits(4 << 20, 'x');
  EXPECT_FALSE(VPMWrite(more_than_fits.data(), static_cast<int>(more_than_fits.size())));
  vpm_port = port;
  close(ends[0]);
  close(ends[1]);
}

TEST(TransmitQueue, Holds511Bytes) {
  const PausedLink link;
  const std::string first(300, 'a');
  const std::string second(211, 'b');
  EXPECT_TRUE(Queue(first));
  EXPECT_FALSE(Queue(second + 'b'));
  EXPECT_TRUE(Queue(second));
  EXPECT_THAT(ReadLines(), testing::IsEmpty());
  EXPECT_EQ(link.Receive(511), first + second);
}

TEST(ReplyStore, NewestReplyStandsWhileNobodyWaits) {
  PausedLink link;
  ASSERT_TRUE(Queue("RTCS\r", 2));
  EXPECT_EQ(TakeReply(0), "none") << "who gave up waits for nothing more";
  cancel_queued_commands();
  link.Resume();
  // If the link kept each reply for a while, the last one would come too late.
  constexpr int kReplies = 60;
  for (int i = 1; i <= kReplies; ++i) link.Send(std::to_string(i) + '\r');
  EXPECT_TRUE(WaitUntil([] {
    const ScopedLock lock(*io_op_lock);
    return last_command_result == std::to_string(kReplies);
  }));
  EXPECT_EQ(TakeReply(0), std::to_string(kReplies));
  EXPECT_EQ(TakeReply(0), "none");
}

bool IsCallerWaiting() {
  const ScopedLock lock(*io_op_lock);
  return vpm_awaited_lines == 1;
}

// The link keeps both lines of the answer from the moment at which the transaction queues its command.
TEST(ReplyStore, CallerThatWaitsLateReadsBothLines) {
  PausedLink link;
  ASSERT_TRUE(Queue("RTCS\r", 2));
  EXPECT_THAT(ReadLines(), testing::IsEmpty());
  EXPECT_EQ(link.Receive(5), "RTCS\r");
  link.Send("ONE\r\nTWO\r\nNOISE\r\n");
  link.Resume();
  for (const char* line : {"ONE", "TWO"}) {
    EXPECT_TRUE(WaitUntil(IsReplyStored));
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(TakeReply(kGenerousMs), line);
  }
}

TEST(ReplyStore, WakeUpWithoutAReplyWaitsOn) {
  PausedLink link;
  std::thread caller([] { EXPECT_EQ(TakeReply(kGenerousMs), "OK"); });
  EXPECT_TRUE(WaitUntil(IsCallerWaiting));
  {
    const ScopedLock lock(*io_op_lock);
    pthread_cond_signal(vpm_resp_event);
  }
  link.Send("OK\r");
  link.Resume();
  caller.join();
}

// A signal handler holds the caller's thread from before the first line arrives until the link has received
// both lines.
int gate[2];

void AwaitGate(int) {
  char byte = 0;
  [[maybe_unused]] const ssize_t length = read(gate[0], &byte, 1);
}

// The repetitions make a delay visible: if the link kept every second line back for as long as it may, the
// test would run out of time.
TEST(ReplyStore, CallerThatWakesUpLateReadsBothLines) {
  constexpr size_t kTimes = 25;
  ASSERT_EQ(pipe(gate), 0);
  HandleSignal(SIGUSR1, AwaitGate);
  PausedLink link;
  std::atomic<size_t> taken{0};
  std::thread caller([&taken] {
    for (size_t i = 0; i < kTimes; ++i) {
      for (const char* line : {"ONE", "TWO"}) {
        EXPECT_EQ(TakeReply(kGenerousMs), line);
        ++taken;
      }
    }
  });
  const auto start = Clock::now();
  for (size_t i = 0; i < kTimes; ++i) {
    EXPECT_TRUE(WaitUntil([&] { return taken == 2 * i && IsCallerWaiting(); }));
    pthread_kill(caller.native_handle(), SIGUSR1);
    link.Send("ONE\r\nTWO\r\n");
    if (i == 0) link.Resume();
    EXPECT_TRUE(WaitUntil(IsReplyStored));
    EXPECT_EQ(write(gate[1], "x", 1), 1);
  }
  caller.join();
  EXPECT_LT(Clock::now() - start, kGenerous);
  close(gate[0]);
  close(gate[1]);
}

}  // namespace
