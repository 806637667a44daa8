#ifndef MCU_TURN_H
#define MCU_TURN_H

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

// A turn at the MCU: the transaction lock for a scope. Turns are the only way to that lock, so that what
// is owed to the link is settled in one place: before anything else in a turn, and when one has ended.
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

// For a family that went down and got no turn to close the link in time: whoever ends or begins a turn next
// closes it in its stead.
void OweClose();

#endif  // MCU_TURN_H
