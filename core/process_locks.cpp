#include "core/process_locks.h"

#include "core/construction_order.h"

CCriticalSection CriSectCtx CONSTRUCTED_AT(kConstructTransactionLock);
CCriticalSection op_lock CONSTRUCTED_AT(kConstructEepromLock);
