#include "tools/guard.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <new>
#include <system_error>

#include "cli/messages.h"
#include "tools/interrupt.h"
#include "tools/status_words.h"

namespace rolu::guard {
namespace {

// The guard counts its own turns, not the time: on a busy computer both the guard and the command get their
// turns late.
constexpr int kTurnMs = 10;
constexpr int kIdleTurns = 15;

using Counter = std::atomic<unsigned>;
Counter* answers = nullptr;  // in memory that child processes share

std::mutex last_words_mutex;
std::string last_words = "the board did not answer";
std::atomic<pid_t> dependent{0};
std::atomic<int> unfinished{0};

Counter* NewSharedCounter() {
  void* const memory =
      mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
  return new (memory) Counter(0);
}

// A thread that no signal interrupts: the handlers run on the command's thread, whose waits they end.
template <typename Work>
std::thread StartWithoutSignals(Work work) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(work);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace

Guard::Guard(std::chrono::milliseconds timeout) : over_(eventfd(0, EFD_CLOEXEC)) {
  answers = NewSharedCounter();
  thread_ = StartWithoutSignals([this, timeout] { Run(timeout); });
}

Guard::~Guard() {
  eventfd_write(over_, 1);
  thread_.join();
  close(over_);
}

void Guard::Run(std::chrono::milliseconds timeout) const {
  pollfd ends[] = {{over_, POLLIN, 0}, {interrupt::Descriptor(), POLLIN, 0}};
  if (poll(ends, 2, timeout.count() == 0 ? -1 : static_cast<int>(timeout.count())) == 0) {
    interrupt::NoteTimeIsUp();
  }
  bool has_explained = false;
  unsigned seen = *answers;
  for (int idle = 0; idle < kIdleTurns; ++idle) {
    if (poll(ends, 1, kTurnMs) != 0) return;
    const unsigned now = *answers;
    if (now != seen || unfinished > 0) idle = 0;
    seen = now;
    if (unfinished == 0 || has_explained) continue;
    has_explained = true;
    Say("a protection is off and is switched on again first; another Ctrl-C ends at once");
  }
  EndProcess();
}

void Guard::EndProcess() const {
  // Whoever holds the lock of the stream is writing to a reader that does not read.
  if (ftrylockfile(stdout) == 0) std::fflush(stdout);
  const std::lock_guard<std::mutex> lock(last_words_mutex);
  SayProblem(interrupt::Reason() + "; " + last_words);
  if (dependent > 0) kill(dependent, SIGKILL);
  _exit(interrupt::ExitStatusOfEnd());
}

void NoteAnswer() {
  if (answers != nullptr) ++*answers;
}

void SetLastWords(std::string words) {
  const std::lock_guard<std::mutex> lock(last_words_mutex);
  last_words = std::move(words);
}

void SetDependent(pid_t child) {
  dependent = child;
}

MustFinish::MustFinish() {
  ++unfinished;
}

MustFinish::~MustFinish() {
  --unfinished;
}

}  // namespace rolu::guard
