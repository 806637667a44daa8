// Reading the fields of a reply line. All of them give the same answer on every platform and in
// every locale.
#ifndef MCU_REPLY_FIELDS_H
#define MCU_REPLY_FIELDS_H

#include <cstddef>
#include <cstdint>

// The number at the start of the text, as strtol reads it where long has 32 bits: leading blanks, a
// sign and a "0x" are accepted, the number ends at the first other character, no digit gives 0, and
// what does not fit saturates.
int32_t ReadHexadecimal(const char* text);

// The same for `width` characters at `position` of a reply; characters beyond its end count as NUL.
int32_t ReadHexadecimalField(const char* reply, size_t position, size_t width);

// The same in base 2, without a prefix.
int32_t ReadBinary(const char* text);

// The character at `position` of a reply; NUL before its start and beyond its end.
char CharacterAt(const char* reply, int32_t position);

// The decimal float at the start of the text, as "%f" reads it; false and `value` untouched if there
// is none.
bool ReadFloat(const char* text, float* value);

#endif  // MCU_REPLY_FIELDS_H
