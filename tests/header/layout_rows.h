/* The layout of every record and enumeration of the interface, as a table that C and C++ both fill
 * in: applications in either language must mean the same bytes. */
#ifndef TESTS_HEADER_LAYOUT_ROWS_H
#define TESTS_HEADER_LAYOUT_ROWS_H

#include <stddef.h>

#include "kavo_rolu.h"

struct LayoutRow {
  const char* name;
  size_t actual;
  size_t expected;
};

#define SIZE_ROW(type, expected) \
  { "size of " #type, sizeof(type), expected }
#define OFFSET_ROW(type, member, expected) \
  { #type "." #member, offsetof(type, member), expected }
#define POINTER_SIZE sizeof(void*)

static const struct LayoutRow kLayoutRows[] = {
    SIZE_ROW(ROLU_STATUS, 2),
    SIZE_ROW(CAR_BATTERY_MODE, 4),
    SIZE_ROW(IGNITION_MODE, 4),
    SIZE_ROW(SHUTDOWN_SOURCE, 4),
    SIZE_ROW(WAKEUP_SOURCE, 4),
    SIZE_ROW(ALARM_MODE, 4),
    SIZE_ROW(ROLU_GSENSOR_RES, 4),
    SIZE_ROW(PERIPHERAL_TYPE, 4),

    SIZE_ROW(ROLU_PLATFORM_NAME, 2 * POINTER_SIZE),
    OFFSET_ROW(ROLU_PLATFORM_NAME, name, 0),
    OFFSET_ROW(ROLU_PLATFORM_NAME, length, POINTER_SIZE),

    SIZE_ROW(ROLU_IMAGE_INFO, 4 * POINTER_SIZE),
    OFFSET_ROW(ROLU_IMAGE_INFO, release, 2 * POINTER_SIZE),
    OFFSET_ROW(ROLU_IMAGE_INFO, version, 3 * POINTER_SIZE),

    SIZE_ROW(VPM_FIRMWARE_INFO, 32),

    SIZE_ROW(BATTERY_INFO, 16),
    OFFSET_ROW(BATTERY_INFO, range_end, 0),
    OFFSET_ROW(BATTERY_INFO, range_start, 4),
    OFFSET_ROW(BATTERY_INFO, range_mid, 8),
    OFFSET_ROW(BATTERY_INFO, range_mid_copy, 12),

    SIZE_ROW(VPM_RTC_TIME, 7),
    OFFSET_ROW(VPM_RTC_TIME, year, 0),
    OFFSET_ROW(VPM_RTC_TIME, month, 1),
    OFFSET_ROW(VPM_RTC_TIME, day, 2),
    OFFSET_ROW(VPM_RTC_TIME, weekday, 3),
    OFFSET_ROW(VPM_RTC_TIME, hour, 4),
    OFFSET_ROW(VPM_RTC_TIME, minute, 5),
    OFFSET_ROW(VPM_RTC_TIME, second, 6),

    SIZE_ROW(VPM_ALARM_TIME, 3),
    OFFSET_ROW(VPM_ALARM_TIME, weekday, 0),
    OFFSET_ROW(VPM_ALARM_TIME, hour, 1),
    OFFSET_ROW(VPM_ALARM_TIME, minute, 2),

    SIZE_ROW(BACKUP_BATTERY_INFO, 20),
    OFFSET_ROW(BACKUP_BATTERY_INFO, info_value, 0),
    OFFSET_ROW(BACKUP_BATTERY_INFO, reserved, 4),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit0, 8),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit1, 9),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit2, 10),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit7, 11),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit8, 12),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit9, 13),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit10, 14),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit11, 15),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit14, 16),
    OFFSET_ROW(BACKUP_BATTERY_INFO, status_bit15, 17),

    SIZE_ROW(ROLU_GSENSOR_DATA, 12),
    OFFSET_ROW(ROLU_GSENSOR_DATA, x, 0),
    OFFSET_ROW(ROLU_GSENSOR_DATA, y, 4),
    OFFSET_ROW(ROLU_GSENSOR_DATA, z, 8),

    SIZE_ROW(ROLU_BRIGHT_RANGE, 3 * POINTER_SIZE),
    OFFSET_ROW(ROLU_BRIGHT_RANGE, min, 0),
    OFFSET_ROW(ROLU_BRIGHT_RANGE, max, POINTER_SIZE),
    OFFSET_ROW(ROLU_BRIGHT_RANGE, step, 2 * POINTER_SIZE),

    SIZE_ROW(ROLU_IIC_TRANSFER, 8 + 4 * POINTER_SIZE),
    OFFSET_ROW(ROLU_IIC_TRANSFER, slave_address, 4),
    OFFSET_ROW(ROLU_IIC_TRANSFER, data, 8),
    OFFSET_ROW(ROLU_IIC_TRANSFER, data_length, 8 + POINTER_SIZE),
    OFFSET_ROW(ROLU_IIC_TRANSFER, read_data, 8 + 2 * POINTER_SIZE),
    OFFSET_ROW(ROLU_IIC_TRANSFER, read_length, 8 + 3 * POINTER_SIZE),
};

static const size_t kLayoutRowCount = sizeof kLayoutRows / sizeof kLayoutRows[0];

#ifdef __cplusplus
extern "C" {
#endif
/* The table as the C compiler fills it in; `count` receives the number of its rows. */
const struct LayoutRow* LayoutInC(size_t* count);
#ifdef __cplusplus
}
#endif

#endif /* TESTS_HEADER_LAYOUT_ROWS_H */
