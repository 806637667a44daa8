// The process-wide objects are built at load in this order, whatever the order of linking, and
// destroyed at unload in the reverse order: the transaction lock is there before the first manager
// and outlives the last one.
#ifndef CORE_CONSTRUCTION_ORDER_H
#define CORE_CONSTRUCTION_ORDER_H

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

#endif  // CORE_CONSTRUCTION_ORDER_H
