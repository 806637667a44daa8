#ifndef CORE_EXPORTED_CALL_H
#define CORE_EXPORTED_CALL_H

#include "kavo_rolu.h"

// A manager method answers in 32 bits; an exported function hands on the low 16, the status code.
constexpr ROLU_STATUS StatusCode(uint32_t method_result) {
  return static_cast<ROLU_STATUS>(method_result);
}

// Names the symbol of a function that is defined with another type of parameter than the header declares. Any
// byte but 0 in a `bool` is on, but C++ knows only the values 0 and 1, so a compiler may look at the lowest
// bit of a 2 alone. A function that is defined with the byte's type sees what the caller passed. The
// sanitizer's comparison of the types of a call and its function is off for it.
#define EXPORTED_AS(name) __asm__(name) __attribute__((no_sanitize("undefined")))

#endif  // CORE_EXPORTED_CALL_H
