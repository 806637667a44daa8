/* Waits until the MCU warns that it will cut the power because the ignition went off, and uses the time
 * that is left: the model of a service that must save its work. Ends after a number of seconds (60
 * unless given) without a warning. */
#define _POSIX_C_SOURCE 200809L

#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "kavo_rolu.h"

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t warning_event = PTHREAD_COND_INITIALIZER;

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "orderly_shutdown: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

static void WaitForSignal(long milliseconds) {
  struct timespec until;
  clock_gettime(CLOCK_REALTIME, &until);
  until.tv_nsec += milliseconds * 1000000L;
  until.tv_sec += until.tv_nsec / 1000000000L;
  until.tv_nsec %= 1000000000L;
  pthread_mutex_lock(&lock);
  pthread_cond_timedwait(&warning_event, &lock, &until);
  pthread_mutex_unlock(&lock);
}

/* 1: the ignition is off; 0: it stayed on all the time; -1: failure. The signal only shortens the
 * wait: a waiting thread can wake up without one, and one that is not waiting misses it, so the function
 * reads the ignition itself. */
static int WaitForIgnitionOff(long seconds) {
  long rounds = seconds * 2;
  char on = 1;
  while (Succeeded(KAVO_ROLU_VPM_GetIgnitionStatus(&on), "read the ignition")) {
    if (!on) return 1;
    if (rounds-- == 0) return 0;
    WaitForSignal(500);
  }
  return -1;
}

static int Run(long seconds) {
  unsigned short delay = 0;
  int off;
  if (!Succeeded(KAVO_ROLU_VPM_SetIgnPowerOffEvent(&warning_event), "register the event") ||
      !Succeeded(KAVO_ROLU_VPM_SetPrePowerOffAlarm(1), "switch the warning on") ||
      !Succeeded(KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay(&delay), "read the delay")) {
    return 0;
  }
  printf("running; the delay of the power-off warning is %hu, in the MCU's units\n", delay);
  off = WaitForIgnitionOff(seconds);
  if (off == 0) printf("the ignition stayed on\n");
  if (off == 1) printf("the ignition is off: saving the work\n");
  return off != -1;
}

int main(int argc, char** argv) {
  const long seconds = argc > 1 ? strtol(argv[1], NULL, 10) : 60;
  int ok;

  setvbuf(stdout, NULL, _IOLBF, 0);
  if (!Succeeded(KAVO_ROLU_VPM_Initialize(0), "initialise")) return 1;
  ok = Run(seconds);
  /* The condition variable must live until here. */
  return Succeeded(KAVO_ROLU_VPM_Deinitialize(), "deinitialise") && ok ? 0 : 1;
}
