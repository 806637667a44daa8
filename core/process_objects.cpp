#include "core/process_objects.h"

KavoInfo kavo_info{};

CCriticalSection CriSectCtx CONSTRUCTED_AT(kConstructTransactionLock);
CCriticalSection op_lock CONSTRUCTED_AT(kConstructEepromLock);
