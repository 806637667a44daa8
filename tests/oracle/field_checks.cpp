#include "tests/oracle/field_checks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "mcu/error_reply.h"
#include "mcu/reply_fields.h"
#include "tests/oracle/plain_reading.h"
#include "vpm/clock_fields.h"
#include "vpm/voltage_scale.h"
#include "vpm/vpm_manager.h"

namespace rolu_test {

bool NumbersAgree(const std::string& reply) {
  return ReadHexadecimal(reply.c_str()) == NumberOf(reply, 16) &&
         ReadBinary(reply.c_str()) == NumberOf(reply, 2);
}

bool FieldsAgree(const std::string& reply, size_t position, size_t width) {
  const std::string field = FieldOf(reply, position, std::min<size_t>(width, 8));
  return ReadHexadecimalField(reply.c_str(), position, width) == NumberOf(field, 16);
}

bool CharactersAgree(const std::string& reply, int32_t position) {
  const bool within = position >= 0 && static_cast<size_t>(position) < reply.size();
  const char expected = within ? reply[static_cast<size_t>(position)] : '\0';
  return CharacterAt(reply.c_str(), position) == expected;
}

bool FloatsAgree(const std::string& reply) {
  constexpr float kUntouched = -77.0F;
  float value = kUntouched;
  const bool read = ReadFloat(reply.c_str(), &value);
  if (!read && value != kUntouched) return false;
  // Only the C library reads exponents, hexadecimal floats, infinities and the like.
  if (reply.find_first_of("eExXnN") != reply.npos) return true;
  const std::string decimal = DecimalOf(reply);
  return read == !decimal.empty() && (!read || value == strtof(decimal.c_str(), nullptr));
}

bool ErrorsAgree(const std::string& reply) {
  static const std::unique_ptr<ErrorReplyEntry[], decltype(&free)> table(NewErrorTable(), free);
  return StatusOfErrorNumber(FindErrorReply(table.get(), reply.c_str())) == StatusOfReply(reply);
}

// Converts as the board's processor does: towards zero, and saturating at 32 bits.
bool RawVoltsAgree(float volts, float scale) {
  const double units = std::floor(static_cast<double>(volts / scale) + 0.5);
  uint16_t expected = 0;
  if (units >= 4294967295.0) {
    expected = 0xFFFF;
  } else if (units > 0) {
    expected = static_cast<uint16_t>(std::fmod(units, 65536.0));
  }
  return VoltsToRaw(volts, scale) == expected;
}

bool ClockRangesAgree(const VPM_RTC_TIME& time) {
  // Every fourth of the years 2000 to 2099 has a 29 February.
  const int days[] = {31, time.year % 4 == 0 ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool valid = time.year < 100 && time.month >= 1 && time.month <= 12 && time.day >= 1 &&
                     time.day <= days[(time.month + 11) % 12] && time.weekday < 7 && time.hour < 24 &&
                     time.minute < 60 && time.second < 60;
  return CheckRTCRange(time.year, time.month, time.day, time.weekday, time.hour, time.minute, time.second) ==
         (valid ? 1 : 0);
}

bool AlarmFieldsAgree(unsigned char value) {
  const unsigned char raw = CVPMMgr::TimeToRAW(value);
  return CVPMMgr::RAWToTime(value) == AlarmFieldOf(value) &&
         (value >= 80 || CVPMMgr::RAWToTime(raw) == value);
}

}  // namespace rolu_test
