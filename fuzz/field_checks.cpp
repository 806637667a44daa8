#include "fuzz/field_checks.h"

#include <cmath>
#include <cstring>
#include <memory>

#include "mcu/error_reply.h"
#include "mcu/line_assembler.h"
#include "mcu/reply_fields.h"
#include "tests/oracle/plain_reading.h"
#include "tests/oracle/wire_model.h"
#include "vpm/clock_fields.h"
#include "vpm/voltage_scale.h"
#include "vpm/vpm_manager.h"

namespace rolu_fuzz {
namespace {

using rolu_test::DecimalOf;
using rolu_test::NumberOf;

void CheckNumbers(const std::string& reply, size_t position, size_t width) {
  Require(ReadHexadecimal(reply.c_str()) == NumberOf(reply, 16), "another hexadecimal number");
  Require(ReadBinary(reply.c_str()) == NumberOf(reply, 2), "another binary number");
  const std::string field = rolu_test::FieldOf(reply, position, std::min<size_t>(width, 8));
  Require(ReadHexadecimalField(reply.c_str(), position, width) == NumberOf(field, 16), "another field");
}

void CheckCharacter(const std::string& reply, int32_t position) {
  const bool within = position >= 0 && static_cast<size_t>(position) < reply.size();
  const char expected = within ? reply[static_cast<size_t>(position)] : '\0';
  Require(CharacterAt(reply.c_str(), position) == expected, "another character");
}

void CheckFloat(const std::string& reply) {
  constexpr float kUntouched = -77.0F;
  float value = kUntouched;
  const bool read = ReadFloat(reply.c_str(), &value);
  if (!read) Require(value == kUntouched, "a float was written, though none was read");
  // Exponents, hexadecimal floats, infinities and the like are left to the C library.
  if (reply.find_first_of("eExXnN") != reply.npos) return;
  const std::string decimal = DecimalOf(reply);
  Require(read == !decimal.empty(), "a float where none is, or none where one is");
  if (read) Require(value == strtof(decimal.c_str(), nullptr), "another float");
}

void CheckError(const std::string& reply) {
  static const std::unique_ptr<ErrorReplyEntry[], decltype(&free)> table(NewErrorTable(), free);
  const int32_t number = FindErrorReply(table.get(), reply.c_str());
  Require(StatusOfErrorNumber(number) == rolu_test::StatusOfReply(reply), "another status of a reply");
}

// As the board's processor converts: towards zero, and what does not fit saturates at 32 bits.
void CheckVolts(float volts, float scale) {
  const double units = std::floor(static_cast<double>(volts / scale) + 0.5);
  uint16_t expected = 0;
  if (units >= 4294967295.0) {
    expected = 0xFFFF;
  } else if (units > 0) {
    expected = static_cast<uint16_t>(std::fmod(units, 65536.0));
  }
  Require(VoltsToRaw(volts, scale) == expected, "another raw voltage");
}

void CheckClock(Input& input) {
  const unsigned char year = input.Byte();
  const unsigned char month = input.Byte();
  const unsigned char day = input.Byte();
  const unsigned char weekday = input.Byte();
  const unsigned char hour = input.Byte();
  const unsigned char minute = input.Byte();
  const unsigned char second = input.Byte();
  // Of the years 2000 to 2099 every fourth has a 29 February.
  const int days[] = {31, year % 4 == 0 ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool valid = year < 100 && month >= 1 && month <= 12 && day >= 1 && day <= days[(month + 11) % 12] &&
                     weekday < 7 && hour < 24 && minute < 60 && second < 60;
  Require(CheckRTCRange(year, month, day, weekday, hour, minute, second) == (valid ? 1 : 0),
          "a time is judged otherwise");
}

void CheckAlarmField(unsigned char value) {
  // Sums of the weights of the byte's bits, and back.
  const unsigned char raw = CVPMMgr::TimeToRAW(value);
  if (value < 80) Require(CVPMMgr::RAWToTime(raw) == value, "an alarm field does not come back");
  Require(CVPMMgr::RAWToTime(value) == rolu_test::AlarmFieldOf(value), "another alarm field");
}

}  // namespace

void CheckFields(Input& input) {
  CheckVolts(input.Raw<float>(), input.Raw<float>());
  CheckClock(input);
  CheckAlarmField(input.Byte());
  const size_t position = input.Byte() % 80U;
  const size_t width = input.Byte() % 12U;
  const auto character = input.Raw<int32_t>();
  std::string reply = input.Text(kLineCapacity - 1);
  reply.resize(strlen(reply.c_str()));
  CheckNumbers(reply, position, width);
  CheckCharacter(reply, character);
  CheckCharacter(reply, static_cast<int32_t>(position));
  CheckFloat(reply);
  CheckError(reply);
}

}  // namespace rolu_fuzz
