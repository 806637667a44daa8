/* The model of the service that shuts a vehicle computer down in time. It keeps a state in a file. When the
 * MCU warns that it will cut the power, the service saves the state first. Then it looks why: it ends if the
 * ignition is off, if the car battery is low or if the MCU is silent, and goes on if the ignition is back.
 *
 * usage: power_manager STATE [SAVING_MS]
 * STATE is the file, SAVING_MS the time that the saving takes (200 unless given). */
#define _POSIX_C_SOURCE 200809L

#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include "kavo_rolu.h"

enum { kReadingMs = 100, kLongestReadingMs = 1000 };

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t warning_event = PTHREAD_COND_INITIALIZER; /* the library signals both warnings here */
static pthread_cond_t reading_event = PTHREAD_COND_INITIALIZER;

/* What the monitor last read. `lock` guards it. */
static struct {
  unsigned count; /* of the readings so far */
  bool ignition_on;
  bool battery_low;
} reading;

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "power_manager: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

static struct timespec After(long milliseconds) {
  struct timespec time;
  clock_gettime(CLOCK_REALTIME, &time);
  time.tv_nsec += milliseconds % 1000 * 1000000L;
  time.tv_sec += milliseconds / 1000 + time.tv_nsec / 1000000000L;
  time.tv_nsec %= 1000000000L;
  return time;
}

static void Sleep(long milliseconds) {
  const struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
  nanosleep(&time, NULL);
}

static bool LowThreshold(float* volts) {
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  return Succeeded(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), "read the battery mode") &&
         Succeeded(mode == CAR_BATTERY_MODE_24V ? KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem(volts)
                                                : KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem(volts),
                   "read the low-battery threshold");
}

/* Reads the ignition and the battery again and again, on a thread of its own: a question to a silent MCU
 * takes 3 s, and the thread that waits for the warning must not be stuck in one. */
static void* Monitor(void* low_threshold) {
  const float low_volts = *(const float*)low_threshold;
  while (true) {
    char on = 0;
    float volts = 0;
    const bool is_read = Succeeded(KAVO_ROLU_VPM_GetIgnitionStatus(&on), "read the ignition") &&
                         Succeeded(KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts), "read the voltage");
    pthread_mutex_lock(&lock);
    if (is_read) {
      reading.count++;
      reading.ignition_on = on != 0;
      reading.battery_low = volts < low_volts;
      pthread_cond_signal(&reading_event);
    }
    pthread_mutex_unlock(&lock);
    Sleep(kReadingMs);
  }
  return NULL;
}

/* Writes a new file and gives it the old one's name: however the power goes, there is a whole state. */
static bool Save(const char* path, long saving_ms) {
  char new_path[4096];
  FILE* file;
  bool is_written;
  if (snprintf(new_path, sizeof new_path, "%s.new", path) >= (int)sizeof new_path) return false;
  file = fopen(new_path, "w");
  if (file == NULL) return false;
  Sleep(saving_ms);
  is_written =
      fprintf(file, "saved at %ld\n", (long)time(NULL)) > 0 && fflush(file) == 0 && fsync(fileno(file)) == 0;
  return fclose(file) == 0 && is_written && rename(new_path, path) == 0;
}

/* Returns at a warning. A waiting thread can also wake up without one; the reading afterwards tells. */
static void WaitForWarning(void) {
  int result;
  pthread_mutex_lock(&lock);
  do {
    const struct timespec until = After(1000);
    result = pthread_cond_timedwait(&warning_event, &lock, &until);
  } while (result != 0);
  pthread_mutex_unlock(&lock);
}

/* Why the computer must go down; null when it need not. Takes the second reading from now on: the first one
 * may have begun earlier. */
static const char* ReasonToEnd(void) {
  const struct timespec until = After(kLongestReadingMs);
  const char* reason = NULL;
  unsigned wanted;
  int result = 0;
  pthread_mutex_lock(&lock);
  wanted = reading.count + 2;
  while (reading.count < wanted && result == 0) {
    result = pthread_cond_timedwait(&reading_event, &lock, &until);
  }
  if (reading.count < wanted) {
    reason = "the MCU is silent";
  } else if (!reading.ignition_on) {
    reason = "the ignition is off";
  } else if (reading.battery_low) {
    reason = "the car battery is low";
  }
  pthread_mutex_unlock(&lock);
  return reason;
}

static int Run(const char* path, long saving_ms) {
  const char* reason = NULL;
  while (reason == NULL) {
    WaitForWarning();
    printf("warning: saving\n");
    if (!Save(path, saving_ms)) {
      fprintf(stderr, "power_manager: %s could not be written\n", path);
      return 1;
    }
    reason = ReasonToEnd();
    if (reason == NULL) printf("saved; the ignition is back, going on\n");
  }
  printf("saved; going down: %s\n", reason);
  return 0;
}

int main(int argc, char** argv) {
  const long saving_ms = argc > 2 ? strtol(argv[2], NULL, 10) : 200;
  float low_volts = 0;
  pthread_t monitor;
  int status;

  if (argc < 2 || argc > 3 || saving_ms < 0) {
    fprintf(stderr, "usage: power_manager STATE [SAVING_MS]\n");
    return 2;
  }
  setvbuf(stdout, NULL, _IOLBF, 0);
  if (!Succeeded(KAVO_ROLU_VPM_Initialize(0), "initialise")) return 1;
  /* Register after Initialize: opening the link forgets registrations. */
  if (!Succeeded(KAVO_ROLU_VPM_SetIgnPowerOffEvent(&warning_event), "register the ignition's warning") ||
      !Succeeded(KAVO_ROLU_VPM_SetLBPPowerOffEvent(&warning_event), "register the battery's warning") ||
      !Succeeded(KAVO_ROLU_VPM_SetPrePowerOffAlarm(1), "switch the warning on") ||
      !LowThreshold(&low_volts) || pthread_create(&monitor, NULL, Monitor, &low_volts) != 0) {
    KAVO_ROLU_VPM_Deinitialize();
    return 1;
  }
  printf("running\n");
  status = Run(argv[1], saving_ms);
  /* Here the service of a vehicle orders the system's shutdown. It does not wait for the monitor, whose
   * question to a silent MCU may take longer than the power stays on. */
  fflush(stdout);
  _exit(status);
}
