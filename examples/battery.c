/* Watches the car battery: prints the vehicle's battery system and its low-battery thresholds, then
 * the voltage four times a second. The exit status is 0, 1 when the board does not answer as it
 * should, 2 for wrong use. */
#define _POSIX_C_SOURCE 200809L  // for nanosleep; NOLINT(bugprone-reserved-identifier)

#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "kavo_rolu.h"

static const char* Words(ROLU_STATUS status) {
  switch (status) {
    case ROLU_STATUS_INVALID_PARAMETER:
      return "a parameter was refused";
    case ROLU_STATUS_NOT_INITIALIZED:
      return "the family is not initialised";
    case ROLU_STATUS_ALREADY_INITIALIZED:
      return "the family is already initialised";
    case ROLU_STATUS_VPM_OPEN_FAILED:
      return "the link to the MCU cannot be opened";
    case ROLU_STATUS_VPM_ERROR_REPLY:
      return "the MCU answered with an error";
    case ROLU_STATUS_VPM_SEND_FAILED:
      return "the command could not be sent";
    case ROLU_STATUS_VPM_NO_REPLY:
      return "the MCU does not answer";
    default:
      return "unexpected status";
  }
}

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "battery: %s: %s (0x%04X)\n", action, Words(status), (unsigned int)status);
  return false;
}

static bool ReadThresholds(CAR_BATTERY_MODE mode, float* preboot, float* low_battery) {
  const bool is_24v = mode == CAR_BATTERY_MODE_24V;
  return Succeeded(is_24v ? KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem(preboot)
                          : KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem(preboot),
                   "reading the pre-boot threshold") &&
         Succeeded(is_24v ? KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem(low_battery)
                          : KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem(low_battery),
                   "reading the low-battery threshold");
}

/* One '=' for each percent of the threshold from 80 % on. */
static void PrintVoltage(float volts, float low_battery) {
  char bar[] = "========================================";
  const float marks = (volts / low_battery - 0.8F) * 100.0F;
  const float longest = (float)(sizeof bar - 1);
  if (!(marks >= longest)) bar[marks > 0.0F ? (int)marks : 0] = '\0';
  printf("%6.2f V  %s%s\n", (double)volts, bar,
         volts < low_battery ? "  below the low-battery threshold" : "");
}

static bool Watch(long readings) {
  const struct timespec pause = {0, 250000000L};
  CAR_BATTERY_MODE mode;
  float preboot, low_battery, volts;
  if (!Succeeded(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), "reading the battery system")) return false;
  if (!ReadThresholds(mode, &preboot, &low_battery)) return false;
  printf("Battery system:         %d V\n", mode == CAR_BATTERY_MODE_24V ? 24 : 12);
  printf("Pre-boot threshold:     %.2f V\n", (double)preboot);
  printf("Low-battery threshold:  %.2f V\n", (double)low_battery);
  for (long i = 0; i < readings; ++i) {
    if (i > 0) nanosleep(&pause, NULL);
    if (!Succeeded(KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts), "reading the voltage")) return false;
    PrintVoltage(volts, low_battery);
  }
  return true;
}

int main(int argc, char** argv) {
  char* end = NULL;
  const long readings = argc > 1 ? strtol(argv[1], &end, 10) : 25;
  if (argc > 2 || (end != NULL && *end != '\0') || readings < 1) {
    fprintf(stderr, "usage: battery [READINGS]\nREADINGS is at least 1; 25 are taken in about 6 seconds.\n");
    return 2;
  }
  setvbuf(stdout, NULL, _IOLBF, BUFSIZ);
  if (!Succeeded(KAVO_ROLU_VPM_Initialize(0), "initialising the VPM family")) return 1;
  const bool watched = Watch(readings);
  const bool down = Succeeded(KAVO_ROLU_VPM_Deinitialize(), "deinitialising the VPM family");
  return watched && down ? 0 : 1;
}
