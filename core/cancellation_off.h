#ifndef CORE_CANCELLATION_OFF_H
#define CORE_CANCELLATION_OFF_H

#include <pthread.h>

// Keeps pthread_cancel from ending the calling thread for a scope: one that ended there would take the
// locks it holds with it, and every later call would wait for them for good. The request is honoured at the
// thread's next cancellation point behind the scope.
class CancellationOff {
 public:
  CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~CancellationOff() { pthread_setcancelstate(before_, nullptr); }
  CancellationOff(const CancellationOff&) = delete;
  CancellationOff& operator=(const CancellationOff&) = delete;

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

#endif  // CORE_CANCELLATION_OFF_H
