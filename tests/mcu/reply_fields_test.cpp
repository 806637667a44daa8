#include "mcu/reply_fields.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

namespace {

constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();

TEST(ReadHexadecimal, ReadsAsA32BitStrtol) {
  const struct {
    const char* text;
    int32_t number;
  } rows[] = {
      {"02EB", 0x2EB},
      {"02eb", 0x2EB},
      {"0x1F", 0x1F},
      {"0X1f", 0x1F},
      {" \t 7F", 0x7F},
      {"-10", -16},
      {"+10", 16},
      {"-0x10", -16},
      {"12G4", 0x12},
      {"12 34", 0x12},
      {"0x", 0},
      {"0xG", 0},
      {"", 0},
      {"   ", 0},
      {"OK", 0},
      {"--1", 0},
      {"\xff", 0},
      {"7FFFFFFF", kHighest},
      {"80000000", kHighest},
      {"FFFFFFFF", kHighest},
      {"-80000000", kLowest},
      {"-80000001", kLowest},
      {"100000000", kHighest},
      {"FFFFFFFFFFFFFFFFFFFFFFFF", kHighest},
      {"-FFFFFFFFFFFFFFFFFF", kLowest},
      {"00000000000000000000001A", 0x1A},
  };
  for (const auto& row : rows) EXPECT_EQ(ReadHexadecimal(row.text), row.number) << row.text;
}

TEST(ReadBinary, TakesTheDigits0And1Only) {
  const struct {
    const char* text;
    int32_t number;
  } rows[] = {
      {"1000000000000001", 0x8001},
      {" \t-101", -5},
      {"+11", 3},
      {"1021", 2},
      {"0b101", 0},
      {"0B1", 0},
      {"", 0},
      {"-", 0},
      {"- 1", 0},
      {"2", 0},
      {"1111111111111111111111111111111", kHighest},
      {"10000000000000000000000000000000", kHighest},
      {"-10000000000000000000000000000000", kLowest},
      {"-10000000000000000000000000000001", kLowest},
      {"100000000000000000000000000000000000000000000000000000000000001", kHighest},
  };
  for (const auto& row : rows) EXPECT_EQ(ReadBinary(row.text), row.number) << row.text;
}

TEST(ReadHexadecimalField, ReadsOnlyItsCharacters) {
  const struct {
    const char* reply;
    size_t position;
    size_t width;
    int32_t number;
  } rows[] = {
      {"02EB03200410", 0, 4, 0x2EB},
      {"02EB03200410", 4, 4, 0x320},
      {"02EB03200410", 8, 4, 0x410},
      {"02EB03", 4, 4, 0x03},
      {"02EB", 4, 4, 0},
      {"02EB", 40, 4, 0},
      {"", 0, 4, 0},
      {"FFFFFFFF", 0, 8, kHighest},
      {"1234567890", 0, 10, 0x12345678},
      {"02EB", 0, 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ReadHexadecimalField(row.reply, row.position, row.width), row.number)
        << row.reply << " " << row.position << " " << row.width;
  }
}

void ExpectFloats() {
  constexpr float kUntouched = -77.0F;
  const struct {
    const char* text;
    bool read;
    float value;
  } rows[] = {
      {"0.01582", true, 0.01582F}, {"3.7V", true, 3.7F},    {" -1e2", true, -100.0F},    {"5", true, 5.0F},
      {"0,5", true, 0.0F},         {"", false, kUntouched}, {"V3.7", false, kUntouched},
  };
  for (const auto& row : rows) {
    float value = kUntouched;
    EXPECT_EQ(ReadFloat(row.text, &value), row.read) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(ReadFloat, ReadsWithAPoint) {
  ExpectFloats();
}

// One of the system's locales whose numbers have a decimal comma, or one made here for this test.
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

TEST(ReadFloat, ReadsWithAPointInALocaleOfCommas) {
  if (!EnterCommaLocale()) GTEST_SKIP() << "this system has no locale with a decimal comma";
  ExpectFloats();
  EXPECT_STREQ(localeconv()->decimal_point, ",") << "the application's locale stays";
  setlocale(LC_NUMERIC, "C");
}

}  // namespace
