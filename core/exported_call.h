#ifndef CORE_EXPORTED_CALL_H
#define CORE_EXPORTED_CALL_H

#include "kavo_rolu.h"

// A manager method answers in 32 bits; an exported function hands on the low 16, the status code.
constexpr ROLU_STATUS StatusCode(uint32_t method_result) {
  return static_cast<ROLU_STATUS>(method_result);
}

#endif  // CORE_EXPORTED_CALL_H
