#pragma once

#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "simulator/system/system_error.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// Blocks all signals of this thread while the object lives. A thread that starts meanwhile keeps them
// blocked, so a program's signal handlers run only on the program's own threads.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_{};
};

// Wakes a thread that polls its descriptor. Several signals count as one until Take.
class WakeupEvent {
 public:
  WakeupEvent() {
    if (!event_) ThrowErrno("eventfd");
  }

  int fd() const { return event_.get(); }

  // A write fails only when the counter is full: then a wake-up is already pending.
  void Signal() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(event_.get(), &one, sizeof one);
  }
  void Take() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(event_.get(), &count, sizeof count);
  }

 private:
  UniqueFd event_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

}  // namespace rolu_sim
