// Compares two kinds of functions with the plainest code for the same: those that read a reply's fields, and
// those that convert numbers. The functions return true when both agree.
#ifndef TESTS_ORACLE_FIELD_CHECKS_H
#define TESTS_ORACLE_FIELD_CHECKS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "kavo_rolu.h"

namespace rolu_test {

bool NumbersAgree(const std::string& reply);
bool FieldsAgree(const std::string& reply, size_t position, size_t width);
bool CharactersAgree(const std::string& reply, int32_t position);
bool FloatsAgree(const std::string& reply);
bool ErrorsAgree(const std::string& reply);
bool RawVoltsAgree(float volts, float scale);
bool ClockRangesAgree(const VPM_RTC_TIME& time);
// Compares both directions.
bool AlarmFieldsAgree(unsigned char value);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_FIELD_CHECKS_H
