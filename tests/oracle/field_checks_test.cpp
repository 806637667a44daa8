// Compares all edges of each field's range, and unusual texts. The fuzzer makes the same comparisons with the
// texts that it finds.
#include "tests/oracle/field_checks.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

#include <filesystem>
#include <limits>
#include <sstream>

#include "mcu/error_reply.h"
#include "mcu/reply_fields.h"
#include "vpm/voltage_scale.h"

namespace rolu_test {
namespace {

TEST(ReplyFields, NumbersAreReadAsA32BitStrtolReadsThem) {
  std::istringstream all_digits(
      "|0|02EB|02eb|0x1F|0X1f|0x|0xG|0x-1|12G4|12 34|OK|\xff|7FFFFFFF|80000000|80000001|FFFFFFFF|100000000|"
      "1FFFFFFFFFFFFFFFFFF|00000000000000000000001A|1000000000000001|1021|0b101|0B1|2|"
      "1111111111111111111111111111111|10000000000000000000000000000000|10000000000000000000000000000001|"
      "100000000000000000000000000000000000000000000000000000000000001");
  for (std::string digits; std::getline(all_digits, digits, '|');) {
    for (const char* sign : {"", "-", "+", "--", " \t", "\v\f -", "- "}) {
      EXPECT_TRUE(NumbersAgree(sign + digits)) << sign << digits;
    }
  }
  EXPECT_EQ(ReadHexadecimal("123456789"), std::numeric_limits<int32_t>::max());
}

TEST(ReplyFields, FieldsAndCharactersAreThoseOfTheReplyAlone) {
  for (const char* reply : {"", "1", "02EB", "02EB03200410", "FFFFFFFF", "1234567890", "-1 0x10+22"}) {
    for (int position = -2; position < 15; ++position) {
      EXPECT_TRUE(CharactersAgree(reply, position)) << reply << " at " << position;
      for (size_t width = 0; position >= 0 && width <= 10; ++width) {
        EXPECT_TRUE(FieldsAgree(reply, static_cast<size_t>(position), width)) << reply << " at " << position;
      }
    }
  }
  EXPECT_TRUE(CharactersAgree("02EB", std::numeric_limits<int32_t>::max()));
  EXPECT_TRUE(CharactersAgree("02EB", std::numeric_limits<int32_t>::min()));
}

TEST(ReplyFields, FloatsAreReadWithAPoint) {
  for (const char* text : {"0.01582", "3.7V", "-0.5", "+.5", ".", "5", "5.", "0,5", "", "V3.7", " 1.5"}) {
    EXPECT_TRUE(FloatsAgree(text)) << text;
  }
  float value = 0;
  EXPECT_TRUE(ReadFloat(" -1e2", &value));
  EXPECT_EQ(value, -100.0F);
}

// Enters a system locale whose numbers have a decimal comma, or one that this test makes.
bool EnterCommaLocale() {
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "nl_NL.UTF-8", "it_IT.UTF-8", "es_ES.UTF-8"}) {
    if (setlocale(LC_NUMERIC, name) != nullptr) return true;
  }
  char directory[] = "/tmp/rolu-locale-XXXXXX";
  if (mkdtemp(directory) == nullptr) return false;
  const std::string command = "localedef --no-archive -i de_DE -f UTF-8 " + std::string(directory) + "/comma";
  setenv("LOCPATH", directory, 1);
  const bool entered = system((command + " 2>/dev/null").c_str()) == 0 && setlocale(LC_NUMERIC, "comma");
  unsetenv("LOCPATH");
  std::filesystem::remove_all(directory);
  return entered;
}

TEST(ReplyFields, FloatsAreReadWithAPointInALocaleOfCommas) {
  if (!EnterCommaLocale()) GTEST_SKIP() << "this system has no locale with a decimal comma";
  float value = 0;
  EXPECT_TRUE(ReadFloat("0.5", &value));
  EXPECT_EQ(value, 0.5F);
  EXPECT_STREQ(localeconv()->decimal_point, ",") << "the application's locale stays";
  setlocale(LC_NUMERIC, "C");
}

TEST(ErrorReplies, AreFoundAnywhereInALine) {
  for (const char* reply : {"*ERR-W02*", "0123ERR-M08", "ERR-Q02 ERR-M08", "ERR-M08ERR-Q02", "ERR-M05",
                            "ERR-M07", "err-M08", "ERR-M0", "ERR", "OK", ""}) {
    EXPECT_TRUE(ErrorsAgree(reply)) << reply;
  }
  EXPECT_EQ(FindErrorReply(nullptr, "ERR-M08"), 0) << "a manager that is down has no table";
}

TEST(RawVolts, AreTheNearestUnitAsOnTheBoard) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  for (const float scale : {0.015385F, 0.01582F, 1.0F, -0.015385F, 1e-30F, 0.0F, kInfinity, kNan}) {
    for (const float volts :
         {0.0F, 0.4F, 0.5F, 0.49999997F, 1.5F, 2.5F, 11.5F, 11.5002871F, 23.0F, 65535.0F, 65535.5F, 65537.0F,
          16777215.0F, 4294967040.0F, 4294967296.0F, 1e30F, kInfinity, kNan}) {
      EXPECT_TRUE(RawVoltsAgree(volts, scale)) << volts << " by " << scale;
      EXPECT_TRUE(RawVoltsAgree(-volts, scale)) << -volts << " by " << scale;
    }
  }
  EXPECT_EQ(VoltsToRaw(11.5002871F, 0.015385F), 747) << "a product with 1 / scale is above the half";
  EXPECT_EQ(VoltsToRaw(0.49999997F, 1.0F), 0) << "the sum with 0.5 needs more than a float";
}

TEST(ClockFields, HaveTheirRanges) {
  for (const unsigned int year : {0U, 1U, 2U, 4U, 96U, 99U, 100U, 255U}) {
    for (unsigned char month = 0; month < 15; ++month) {
      for (unsigned char day = 0; day < 34; ++day) {
        EXPECT_TRUE(ClockRangesAgree({static_cast<unsigned char>(year), month, day, 6, 23, 59, 59}))
            << year << '-' << int{month} << '-' << int{day};
      }
    }
  }
  for (unsigned char field = 0; field < 255; ++field) {
    EXPECT_TRUE(ClockRangesAgree({14, 1, 1, field, 0, 0, 0})) << "weekday " << int{field};
    EXPECT_TRUE(ClockRangesAgree({14, 1, 1, 0, field, 0, 0})) << "hour " << int{field};
    EXPECT_TRUE(ClockRangesAgree({14, 1, 1, 0, 0, field, 0})) << "minute " << int{field};
    EXPECT_TRUE(ClockRangesAgree({14, 1, 1, 0, 0, 0, field})) << "second " << int{field};
    EXPECT_TRUE(AlarmFieldsAgree(field)) << int{field};
  }
}

}  // namespace
}  // namespace rolu_test
