// Gives tests a look into the link to the MCU.
#ifndef TESTS_SUPPORT_LINK_STATE_H
#define TESTS_SUPPORT_LINK_STATE_H

#include "mcu/link_state.h"

inline bool IsReplyStored() {
  const ScopedLock lock(*io_op_lock);
  return last_command_valid;
}

inline int LinkUsers() {
  const ScopedLock lock(*io_op_lock);
  return vpm_ref_count;
}

#endif  // TESTS_SUPPORT_LINK_STATE_H
