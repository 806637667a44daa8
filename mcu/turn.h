#ifndef MCU_TURN_H
#define MCU_TURN_H

#include <pthread.h>

// Keeps pthread_cancel from ending the calling thread for a scope: a thread that ended there would never
// release its locks, and every later call would wait for them for good. The cancellation takes effect at the
// thread's next cancellation point after the scope.
class CancellationOff {
 public:
  CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~CancellationOff() { pthread_setcancelstate(before_, nullptr); }
  CancellationOff(const CancellationOff&) = delete;
  CancellationOff& operator=(const CancellationOff&) = delete;

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

// A turn at the MCU: the transaction lock for a scope. Only turns take that lock, so owed closes of the link
// are settled in one place: first thing in a turn, and after its end.
class Turn {
 public:
  // Waits for its turn as long as it takes.
  Turn();
  // Waits at most `limit_ms` milliseconds, until a time of the wall clock.
  explicit Turn(unsigned long limit_ms);
  ~Turn();
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  // False when the time ran out.
  bool held() const { return held_; }

 private:
  CancellationOff cancellation_off_;
  bool held_;
};

// A family that went down but got no turn in time to close the link calls this: the thread that ends or
// begins a turn next closes the link instead.
void OweClose();

#endif  // MCU_TURN_H
