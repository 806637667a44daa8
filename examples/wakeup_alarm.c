/* Lets the MCU wake the computer tomorrow morning: sets its clock from the system's, then the alarm to
 * the time given as HH:MM (07:30 unless given). */
#define _POSIX_C_SOURCE 200809L

#include <stdbool.h>
#include <stdio.h>
#include <time.h>

#include "kavo_rolu.h"

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "wakeup_alarm: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

static VPM_RTC_TIME SystemTime(void) {
  const time_t now = time(NULL);
  struct tm local;
  VPM_RTC_TIME clock_time;
  localtime_r(&now, &local);
  clock_time.year = (uint8_t)(local.tm_year - 100);
  clock_time.month = (uint8_t)(local.tm_mon + 1);
  clock_time.day = (uint8_t)local.tm_mday;
  clock_time.weekday = (uint8_t)local.tm_wday;
  clock_time.hour = (uint8_t)local.tm_hour;
  clock_time.minute = (uint8_t)local.tm_min;
  clock_time.second = (uint8_t)(local.tm_sec > 59 ? 59 : local.tm_sec);
  return clock_time;
}

static int SetAlarm(unsigned hour, unsigned minute) {
  VPM_ALARM_TIME alarm = {0, 0, 0};
  VPM_RTC_TIME clock_time = SystemTime();
  ALARM_MODE mode = ALARM_MODE_NONE;
  char active = 0;

  /* Weekly, on tomorrow's weekday: it wakes the computer once, and then not before next week. */
  alarm.weekday = (uint8_t)((clock_time.weekday + 1) % 7);
  alarm.hour = (uint8_t)hour;
  alarm.minute = (uint8_t)minute;
  if (!Succeeded(KAVO_ROLU_VPM_SetRTCTime(clock_time), "set the clock") ||
      !Succeeded(KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_WEEKLY, alarm), "set the alarm") ||
      !Succeeded(KAVO_ROLU_VPM_SetAlarmActive(1), "switch the alarm on")) {
    return 0;
  }
  /* Read back what the MCU holds now. */
  if (!Succeeded(KAVO_ROLU_VPM_GetRTCTime(&clock_time), "read the clock") ||
      !Succeeded(KAVO_ROLU_VPM_GetAlarmTime(&mode, &alarm), "read the alarm") ||
      !Succeeded(KAVO_ROLU_VPM_GetAlarmActive(&active), "read the switch")) {
    return 0;
  }
  printf("clock: 20%02u-%02u-%02u %02u:%02u:%02u\n", clock_time.year, clock_time.month, clock_time.day,
         clock_time.hour, clock_time.minute, clock_time.second);
  printf("alarm: weekday %u at %02u:%02u, %s\n", alarm.weekday, alarm.hour, alarm.minute,
         active ? "on" : "off");
  return mode == ALARM_MODE_WEEKLY && active == 1;
}

int main(int argc, char** argv) {
  unsigned hour = 7;
  unsigned minute = 30;
  int ok;

  if (argc > 1 && (sscanf(argv[1], "%2u:%2u", &hour, &minute) != 2 || hour > 23 || minute > 59)) {
    fprintf(stderr, "wakeup_alarm: the time is HH:MM, not %s\n", argv[1]);
    return 2;
  }
  if (!Succeeded(KAVO_ROLU_VPM_Initialize(0), "initialise")) return 1;
  ok = SetAlarm(hour, minute);
  return Succeeded(KAVO_ROLU_VPM_Deinitialize(), "deinitialise") && ok ? 0 : 1;
}
