#ifndef CORE_EXPORTED_CALL_H
#define CORE_EXPORTED_CALL_H

#include "kavo_rolu.h"

// A manager method answers in 32 bits; an exported function hands on the low 16, the status code.
constexpr ROLU_STATUS StatusCode(uint32_t method_result) {
  return static_cast<ROLU_STATUS>(method_result);
}

// Names the symbol of a function that is defined with another parameter than the header declares: a `bool`
// of any byte but 0 is on, but the language knows no other value than 0 and 1, so that of a 2 a compiler may
// see the lowest bit alone. Defined for the byte, the function sees what the caller passed. A sanitizer that
// compares the types of a call and its function is not told this one.
#define EXPORTED_AS(name) __asm__(name) __attribute__((no_sanitize("undefined")))

#endif  // CORE_EXPORTED_CALL_H
