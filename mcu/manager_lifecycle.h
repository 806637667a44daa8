// The steps that all managers share when they come up and go down.
#ifndef MCU_MANAGER_LIFECYCLE_H
#define MCU_MANAGER_LIFECYCLE_H

#include <atomic>
#include <cstdint>

#include "mcu/error_reply.h"

// Builds the error reply table, opens the link and greets the MCU, whose answer does not matter.
// `before_open` runs between the first two, if given. On success the manager holds a reference to the link
// and a table, and sets `initialized` itself once its own steps are done; on any other status it holds
// neither.
uint32_t StartUpManager(const std::atomic<uint8_t>& initialized, ErrorReplyEntry*& table,
                        void (*before_open)() = nullptr);

// Gives back what StartUpManager took, when the manager's own steps fail.
void AbandonStartUp(ErrorReplyEntry*& table);

// Releases the table, closes the link and clears `initialized`.
uint32_t ShutDownManager(std::atomic<uint8_t>& initialized, ErrorReplyEntry*& table);

#endif  // MCU_MANAGER_LIFECYCLE_H
