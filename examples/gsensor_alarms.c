/* Prints G-sensor alarm samples as they come, for a number of seconds (10 unless given). */
#define _POSIX_C_SOURCE 200809L

#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "kavo_rolu.h"

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t alarm_event = PTHREAD_COND_INITIALIZER;

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "gsensor_alarms: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

/* Takes every queued sample; the queue holds 31, so drain it at each wake-up. */
static int Drain(void) {
  int samples = 0;
  ROLU_GSENSOR_DATA sample;
  while (KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS) {
    printf("alarm: x %6d  y %6d  z %6d\n", (int)sample.x, (int)sample.y, (int)sample.z);
    samples++;
  }
  return samples;
}

/* The library signals without the lock, so a signal can be missed: wait a little, then look anyway. */
static void WaitForAlarm(void) {
  struct timespec until;
  clock_gettime(CLOCK_REALTIME, &until);
  until.tv_nsec += 100 * 1000000L;
  if (until.tv_nsec >= 1000000000L) {
    until.tv_nsec -= 1000000000L;
    until.tv_sec++;
  }
  pthread_mutex_lock(&lock);
  pthread_cond_timedwait(&alarm_event, &lock, &until);
  pthread_mutex_unlock(&lock);
}

int main(int argc, char** argv) {
  const long seconds = argc > 1 ? strtol(argv[1], NULL, 10) : 10;
  struct timespec now, end;
  int samples = 0;
  int ok;

  setvbuf(stdout, NULL, _IOLBF, 0);
  if (!Succeeded(KAVO_ROLU_GSENSOR_Initialize(0), "initialise")) return 1;
  /* Register after Initialize: opening the link forgets registrations. */
  ok = Succeeded(KAVO_ROLU_GSENSOR_SetAlarmEvent(&alarm_event), "register the event") &&
       Succeeded(KAVO_ROLU_GSENSOR_SetAlarmThreshold(2000), "set the threshold") &&
       Succeeded(KAVO_ROLU_GSENSOR_AlarmEnabled(true), "switch the alarm on");
  if (ok) {
    printf("waiting for alarms for %ld s\n", seconds);
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += seconds;
    do {
      WaitForAlarm();
      samples += Drain();
      clock_gettime(CLOCK_MONOTONIC, &now);
    } while (now.tv_sec < end.tv_sec || (now.tv_sec == end.tv_sec && now.tv_nsec < end.tv_nsec));
    printf("%d samples\n", samples);
  }
  /* Switches the alarm off, too. */
  return Succeeded(KAVO_ROLU_GSENSOR_Deinitialize(), "deinitialise") && ok ? 0 : 1;
}
