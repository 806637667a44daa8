#include "vpm/clock_fields.h"

#include <gtest/gtest.h>

#include "vpm/vpm_manager.h"

namespace {

TEST(ClockFields, RangeOfEachField) {
  struct Row {
    unsigned char year, month, day, weekday, hour, minute, second;
    int valid;
  };
  constexpr Row kRows[] = {
      {0, 2, 29, 0, 0, 0, 0, 1},   {4, 2, 29, 0, 0, 0, 0, 1},      {1, 2, 29, 0, 0, 0, 0, 0},
      {0, 2, 30, 0, 0, 0, 0, 0},   {99, 12, 31, 6, 23, 59, 59, 1}, {100, 1, 1, 0, 0, 0, 0, 0},
      {14, 4, 30, 0, 0, 0, 0, 1},  {14, 4, 31, 0, 0, 0, 0, 0},     {14, 1, 31, 0, 0, 0, 0, 1},
      {14, 1, 32, 0, 0, 0, 0, 0},  {14, 0, 1, 0, 0, 0, 0, 0},      {14, 13, 1, 0, 0, 0, 0, 0},
      {14, 1, 0, 0, 0, 0, 0, 0},   {14, 1, 1, 7, 0, 0, 0, 0},      {14, 1, 1, 0, 24, 0, 0, 0},
      {14, 1, 1, 0, 0, 60, 0, 0},  {14, 1, 1, 0, 0, 0, 60, 0},     {14, 9, 31, 0, 0, 0, 0, 0},
      {14, 11, 30, 0, 0, 0, 0, 1}, {14, 7, 31, 0, 0, 0, 0, 1},     {14, 8, 31, 0, 0, 0, 0, 1},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(CheckRTCRange(row.year, row.month, row.day, row.weekday, row.hour, row.minute, row.second),
              row.valid)
        << int{row.year} << '-' << int{row.month} << '-' << int{row.day} << ' ' << int{row.hour} << ':'
        << int{row.minute} << ':' << int{row.second} << " weekday " << int{row.weekday};
  }
}

// The byte is the value's BCD byte with the order of its bits reversed.
TEST(ClockFields, AlarmBytesAreMirroredBcd) {
  for (unsigned int value = 0; value < 80; ++value) {
    const unsigned int bcd = value / 10 << 4 | value % 10;
    unsigned int mirrored = 0;
    for (unsigned int bit = 0; bit < 8; ++bit) mirrored |= (bcd >> bit & 1U) << (7 - bit);
    const unsigned char raw = CVPMMgr::TimeToRAW(static_cast<unsigned char>(value));
    EXPECT_EQ(raw, mirrored) << value;
    EXPECT_EQ(CVPMMgr::RAWToTime(raw), value);
    EXPECT_EQ(CVPMMgr::RAWToTime(static_cast<unsigned char>(raw | 1U)), value)
        << "the match flag has no weight";
  }
}

}  // namespace
