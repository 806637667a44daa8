// The functions that read the fields of a reply line, and those that convert numbers, compared with what
// the interface promises, told in the plainest way.
#ifndef FUZZ_FIELD_CHECKS_H
#define FUZZ_FIELD_CHECKS_H

#include "fuzz/input.h"

namespace rolu_fuzz {

// With any line and any numbers.
void CheckFields(Input& input);

}  // namespace rolu_fuzz

#endif  // FUZZ_FIELD_CHECKS_H
