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
// settles at once what it finds.
void SettleIfFree() {
  while (owed_closes > 0 && CriSectCtx.TimeLock(0) == 0) {
    SettleOwedCloses();
    CriSectCtx.Unlock();
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
