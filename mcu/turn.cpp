#include "mcu/turn.h"

#include <atomic>

#include "core/process_locks.h"
#include "mcu/link_state.h"

namespace {

std::atomic<int> owed_closes{0};

void SettleOwedCloses() {
  for (int owed = owed_closes.exchange(0); owed > 0; --owed) RemoveLinkUser();
}

// A close that comes to be owed between the settling and the unlocking finds the lock taken and relies on
// who holds it: that one looks again when it has let go. (A turn may not have the lock, which the analysis
// cannot follow.)
void EndTurn() NO_THREAD_SAFETY_ANALYSIS {
  do {
    SettleOwedCloses();
    CriSectCtx.Unlock();
  } while (owed_closes > 0 && CriSectCtx.TimeLock(0) == 0);
}

}  // namespace

Turn::Turn() : held_(true) {
  CriSectCtx.Lock();
}

Turn::Turn(unsigned long limit_ms) : held_(CriSectCtx.TimeLock(limit_ms) == 0) {}

Turn::~Turn() {
  if (held_) EndTurn();
}

void OweClose() {
  ++owed_closes;
  // Ends at once: the turn that was in the way may have ended before the close was owed.
  const Turn turn(0);
}
