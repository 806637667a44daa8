#include <cstdio>

#include "core/exported_call.h"
#include "mcu/reply_fields.h"
#include "mcu/transaction.h"
#include "vpm/clock_fields.h"
#include "vpm/vpm_manager.h"

namespace {

constexpr int kClockSetMs = 50;
constexpr int kAlarmSetMs = 150;

// The weight of each bit in an alarm field, which is sent as a BCD byte with its bits in reverse order. Bit 0
// is the match flag.
constexpr int32_t kAlarmBitWeights[8] = {0, 40, 20, 10, 8, 4, 2, 1};
constexpr unsigned int kMatchFlag = 0x01;
// In the hour's byte only: it uses the bit of weight 40, which no hour needs.
constexpr unsigned int kAfternoonFlag = 0x02;

unsigned int AlarmByte(const char* reply, size_t position) {
  return static_cast<uint8_t>(ReadHexadecimalField(reply, position, 2));
}

ALARM_MODE ModeOf(unsigned int weekday, unsigned int hour, unsigned int minute) {
  if ((weekday & kMatchFlag) != 0) return ALARM_MODE_WEEKLY;
  if ((hour & kMatchFlag) != 0) return ALARM_MODE_DAILY;
  return (minute & kMatchFlag) != 0 ? ALARM_MODE_HOURLY : ALARM_MODE_NONE;
}

}  // namespace

unsigned char CVPMMgr::TimeToRAW(unsigned char value) {
  unsigned int raw = 0;
  int32_t left = value;
  for (unsigned int bit = 1; bit <= 7; ++bit) {
    if (left == 0 || left < kAlarmBitWeights[bit]) continue;
    left -= kAlarmBitWeights[bit];
    raw |= 1U << bit;
  }
  return static_cast<unsigned char>(raw);
}

unsigned char CVPMMgr::RAWToTime(unsigned char raw) {
  int32_t value = 0;
  for (unsigned int bit = 1; bit <= 7; ++bit) {
    if ((raw & (1U << bit)) != 0) value += kAlarmBitWeights[bit];
  }
  return static_cast<unsigned char>(value);
}

uint32_t CVPMMgr::SetRTCTime(VPM_RTC_TIME time) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (CheckRTCRange(time.year, time.month, time.day, time.weekday, time.hour, time.minute, time.second) ==
      0) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  const Command command("RTCS%02X%02X%02X%02X%02X%02X%02X\r", time.year, time.month, time.day, time.weekday,
                        time.hour, time.minute, time.second);
  // The MCU answers the clock setting, and only that, with two lines; the second one counts.
  Reply reply;
  return RunTransaction(error_table, command.text, command.length, reply.text, sizeof reply.text, kClockSetMs,
                        2);
}

uint32_t CVPMMgr::GetRTCTime(VPM_RTC_TIME* time) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (time == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("RTCG\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  unsigned int fields[7] = {};
  sscanf(reply.text, "%2X%2X%2X%2X%2X%2X%2X", &fields[0], &fields[1], &fields[2], &fields[3], &fields[4],
         &fields[5], &fields[6]);
  const auto low_byte = [&fields](size_t index) { return static_cast<uint8_t>(fields[index]); };
  *time = {low_byte(0), low_byte(1), low_byte(2), low_byte(3), low_byte(4), low_byte(5), low_byte(6)};
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetAlarmTime(ALARM_MODE mode, VPM_ALARM_TIME time) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (time.weekday > 6 || time.hour > 23 || time.minute > 59) return ROLU_STATUS_INVALID_PARAMETER;
  if (mode < ALARM_MODE_HOURLY || mode > ALARM_MODE_WEEKLY) return ROLU_STATUS_INVALID_PARAMETER;
  unsigned int weekday = TimeToRAW(time.weekday);
  unsigned int hour = TimeToRAW(time.hour);
  unsigned int minute = TimeToRAW(time.minute);
  minute |= kMatchFlag;
  if (mode >= ALARM_MODE_DAILY) hour |= kMatchFlag;
  if (mode >= ALARM_MODE_WEEKLY) weekday |= kMatchFlag;
  if (time.hour > 11) hour |= kAfternoonFlag;
  return Order(error_table, Command("RTAS%02X%02X%02X\r", weekday, hour, minute), kAlarmSetMs);
}

uint32_t CVPMMgr::GetAlarmTime(ALARM_MODE* mode, VPM_ALARM_TIME* time) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode == nullptr || time == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("RTAG\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const unsigned int weekday = AlarmByte(reply.text, 0);
  const unsigned int hour = AlarmByte(reply.text, 2);
  const unsigned int minute = AlarmByte(reply.text, 4);
  *mode = ModeOf(weekday, hour, minute);
  time->weekday = RAWToTime(static_cast<unsigned char>(weekday));
  time->hour = RAWToTime(static_cast<unsigned char>(hour & ~kAfternoonFlag));
  time->minute = RAWToTime(static_cast<unsigned char>(minute));
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_VPM_SetRTCTime(VPM_RTC_TIME time) {
  return StatusCode(gVPMMgr.SetRTCTime(time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetRTCTime(VPM_RTC_TIME* time) {
  return StatusCode(gVPMMgr.GetRTCTime(time));
}
ROLU_STATUS KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE mode, VPM_ALARM_TIME time) {
  return StatusCode(gVPMMgr.SetAlarmTime(mode, time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetAlarmTime(ALARM_MODE* mode, VPM_ALARM_TIME* time) {
  return StatusCode(gVPMMgr.GetAlarmTime(mode, time));
}
