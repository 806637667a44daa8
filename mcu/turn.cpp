#include "mcu/turn.h"

#include <atomic>

#include "core/process_objects.h"
#include "mcu/link_state.h"

namespace {

std::atomic<int> owed_closes{0};

void SettleOwedCloses() {
  for (int owed = owed_closes.exchange(0); owed > 0; --owed) RemoveLinkUser();
}

// Who finds the lock taken relies on who holds it: that one comes here when it has let go, and the next one
// settles at once what it finds. So the letting go must be seen before the look at what is owed, as the owing
// is before the look at the lock; the fence holds the first order, which a mutex alone does not.
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
