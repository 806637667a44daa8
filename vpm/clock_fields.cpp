#include "vpm/clock_fields.h"

namespace {

int DaysInMonth(unsigned char year, unsigned char month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int full_year = 2000 + year;
  const bool leap = full_year % 400 == 0 || (full_year % 4 == 0 && full_year % 100 != 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

}  // namespace

int CheckRTCRange(unsigned char year, unsigned char month, unsigned char day, unsigned char weekday,
                  unsigned char hour, unsigned char minute, unsigned char second) {
  if (hour > 23 || minute > 59 || year > 99) return 0;
  if (month == 0 || month > 12) return 0;
  if (day == 0 || day > DaysInMonth(year, month)) return 0;
  if (weekday > 6 || second > 59) return 0;
  return 1;
}
