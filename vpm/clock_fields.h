#ifndef VPM_CLOCK_FIELDS_H
#define VPM_CLOCK_FIELDS_H

// 1 when the seven fields are a time between 2000 and 2099, else 0. The weekday is not compared with
// the date.
int CheckRTCRange(unsigned char year, unsigned char month, unsigned char day, unsigned char weekday,
                  unsigned char hour, unsigned char minute, unsigned char second);

#endif  // VPM_CLOCK_FIELDS_H
