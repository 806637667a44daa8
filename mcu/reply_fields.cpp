#include "mcu/reply_fields.h"

#include <locale.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

int32_t Saturated(long long value) {
  return static_cast<int32_t>(
      std::clamp<long long>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}  // namespace

int32_t ReadHexadecimal(const char* text) {
  // strtoll itself saturates at 64 bits on every platform.
  return Saturated(strtoll(text, nullptr, 16));
}

// Does not use strtoll, which accepts a "0b" before the digits in newer C libraries.
int32_t ReadBinary(const char* text) {
  text += strspn(text, " \t\n\v\f\r");
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  long long value = 0;
  for (; *text == '0' || *text == '1'; ++text) {
    value = std::min<long long>(value * 2 + (*text - '0'), std::numeric_limits<uint32_t>::max());
  }
  return Saturated(negative ? -value : value);
}

char CharacterAt(const char* reply, int32_t position) {
  if (position < 0 || static_cast<size_t>(position) >= strlen(reply)) return '\0';
  return reply[position];
}

int32_t ReadHexadecimalField(const char* reply, size_t position, size_t width) {
  constexpr size_t kWidest = 8;
  char field[kWidest + 1] = {};
  const size_t length = strlen(reply);
  if (position < length) memcpy(field, reply + position, std::min({width, kWidest, length - position}));
  return ReadHexadecimal(field);
}

bool ReadFloat(const char* text, float* value) {
  // The MCU sends a decimal point; the application may run in a locale that has a comma there.
  const locale_t c_locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  if (c_locale == static_cast<locale_t>(nullptr)) return false;
  const locale_t before = uselocale(c_locale);
  const int read = sscanf(text, "%f", value);
  uselocale(before);
  freelocale(c_locale);
  return read == 1;
}
