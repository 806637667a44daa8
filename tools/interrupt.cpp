#include "tools/interrupt.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "tools/status_words.h"

namespace rolu::interrupt {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> requested{0};
int wakeup = -1;

// Makes only calls that are allowed in a signal handler.
void Request(int number) {
  const int error = errno;
  requested = number;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wakeup, &one, sizeof one);
  errno = error;
}

}  // namespace

void Watch() {
  if (wakeup >= 0) close(wakeup);
  wakeup = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  struct sigaction action {};
  action.sa_handler = Request;
  // Without SA_RESTART, so that a signal also ends a question at the terminal.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigemptyset(&action.sa_mask);
  for (const int number : kSignals) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    // A signal that nohup or a background shell ignores stays ignored.
    if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
  // With SIGPIPE ignored, a reader that goes away cannot end the program while the board is initialized.
  signal(SIGPIPE, SIG_IGN);
}

int Signal() {
  return requested;
}

void NoteTimeIsUp() {
  Request(SIGALRM);
}

std::string Reason() {
  if (requested == SIGALRM) return "stopped: it took longer than --timeout allows";
  return std::string("stopped by a signal: ") + strsignal(requested);  // NOLINT(concurrency-mt-unsafe)
}

ExitStatus ExitStatusOfEnd() {
  return requested == SIGALRM ? kNoAnswer : static_cast<ExitStatus>(kSignalBase + requested);
}

void ThrowIfRequested() {
  if (requested != 0) throw CommandError(ExitStatusOfEnd(), Reason());
}

int Descriptor() {
  return wakeup;
}

bool SleepFor(std::chrono::milliseconds time) {
  const auto deadline = std::chrono::steady_clock::now() + time;
  while (requested == 0) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return true;
    pollfd stop{wakeup, POLLIN, 0};
    poll(&stop, 1, static_cast<int>(std::min<std::int64_t>(left.count(), 60'000)));
  }
  return false;
}

}  // namespace rolu::interrupt
