#ifndef CORE_EXPORTED_CALL_H
#define CORE_EXPORTED_CALL_H

#include "kavo_rolu.h"

// A manager method answers in 32 bits; an exported function hands on the low 16, the status code.
constexpr ROLU_STATUS StatusCode(uint32_t method_result) {
  return static_cast<ROLU_STATUS>(method_result);
}

// A `bool` argument by the byte that the caller passed: any but 0 is on. The language knows no other value
// than 0 and 1, so a compiler may hand on a 2 as it is or look at the lowest bit alone; the volatile read
// keeps it from either.
inline bool IsOn(const bool& argument) {
  return *reinterpret_cast<const volatile unsigned char*>(&argument) != 0;
}

#endif  // CORE_EXPORTED_CALL_H
