#pragma once

#include <pthread.h>
#include <signal.h>

namespace rolu_sim {

// Blocks all signals of this thread while it lives. A thread that is started meanwhile keeps them
// blocked: a program's signal handlers run on the program's own threads.
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

}  // namespace rolu_sim
