#include "mcu/turn.h"

#include <atomic>

#include "core/process_objects.h"
#include "mcu/link_state.h"

namespace {

std::atomic<int> owed_closes{0};

void SettleOwedCloses() {
  for (int owed = owed_closes.exchange(0); owed > 0; --owed) RemoveLinkUser();
}

// A thread that owes a close and finds the lock taken leaves the close to the holder of the lock. The holder
// comes here after it has released the lock, and the next holder first settles what is owed. So a holder's
// release of the lock must be visible before it reads owed_closes, just as an owing thread counts up
// owed_closes before it tries the lock. A mutex alone does not keep the holder's order; the fence does.
void SettleIfFree() NO_THREAD_SAFETY_ANALYSIS {
  const CancellationOff until_it_is_settled;
  std::atomic_thread_fence(std::memory_order_seq_cst);
  while (owed_closes > 0 && pthread_mutex_trylock(CriSectCtx.mutex()) == 0) {
    SettleOwedCloses();
    CriSectCtx.Unlock();
    std::atomic_thread_fence(std::memory_order_seq_cst);
  }
}

}  // namespace

Turn::Turn() : held_(true) {
  CriSectCtx.Lock();
  SettleOwedCloses();
}

Turn::Turn(unsigned long limit_ms) : held_(CriSectCtx.TimeLock(limit_ms) == 0) {
  if (held_) SettleOwedCloses();
}

Turn::~Turn() {
  if (!held_) return;
  CriSectCtx.Unlock();
  SettleIfFree();
}

void OweClose() {
  ++owed_closes;
  SettleIfFree();
}
