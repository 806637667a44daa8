#ifndef CORE_PROCESS_LOCKS_H
#define CORE_PROCESS_LOCKS_H

#include "core/critical_section.h"

// One MCU command at a time in the whole process: held from queuing a command until after its
// post-delay, and for the whole of an open or a close of the link. Always taken before io_op_lock,
// never after it.
extern CCriticalSection CriSectCtx;

// The EEPROM family's lock. The board provides no EEPROM, so nothing takes it.
extern CCriticalSection op_lock;

#endif  // CORE_PROCESS_LOCKS_H
