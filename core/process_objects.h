// The process-wide objects. They are built at load in the order below, whatever the order of linking, and
// destroyed at unload in the reverse order: the transaction lock is there before the first manager and
// outlives the last one. Each manager is declared with its class.
#ifndef CORE_PROCESS_OBJECTS_H
#define CORE_PROCESS_OBJECTS_H

#include <atomic>
#include <cstdint>

#include "core/critical_section.h"

// Use: CVPMMgr gVPMMgr CONSTRUCTED_AT(kConstructVPMMgr);
#define CONSTRUCTED_AT(position) __attribute__((init_priority(position)))

enum ConstructionOrder {
  kConstructTransactionLock = 1001,
  kConstructVPMMgr,
  kConstructWDMgr,
  kConstructGSensorMgr,
  kConstructPCMgr,
  kConstructEepromLock
};

// The transaction lock: one MCU command at a time in the whole process. It is held from queuing a command
// until after its post-delay, and during an open or a close of the link. It is always taken before
// io_op_lock, never after it.
extern CCriticalSection CriSectCtx;

// The EEPROM family's lock. The board provides no EEPROM, so nothing takes it.
extern CCriticalSection op_lock;

// The core's state; zero at load.
struct KavoInfo {
  std::atomic<uint8_t> initialized;  // 1 between KAVO_ROLU_CORE_Init and KAVO_ROLU_CORE_DeInit
};

extern KavoInfo kavo_info;

#endif  // CORE_PROCESS_OBJECTS_H
