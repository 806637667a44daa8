#include "core/critical_section.h"

#include <cerrno>

#include "core/allocate.h"
#include "core/deadline.h"

// Without memory for the mutex Lock does nothing and TimeLock answers -2.
CCriticalSection::CCriticalSection() : mutex_(Allocate<pthread_mutex_t>()) {
  if (mutex_ == nullptr) return;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex_, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

CCriticalSection::~CCriticalSection() {
  if (mutex_ == nullptr) return;
  pthread_mutex_destroy(mutex_);
  free(mutex_);
  mutex_ = nullptr;
}

void CCriticalSection::Lock() NO_THREAD_SAFETY_ANALYSIS {
  if (mutex_ != nullptr) pthread_mutex_lock(mutex_);
}

void CCriticalSection::Unlock() NO_THREAD_SAFETY_ANALYSIS {
  if (mutex_ != nullptr) pthread_mutex_unlock(mutex_);
}

int CCriticalSection::TimeLock(unsigned long ms) NO_THREAD_SAFETY_ANALYSIS {
  if (mutex_ == nullptr) return -2;
  const timespec deadline = WallClockDeadline(ms);
  switch (pthread_mutex_timedlock(mutex_, &deadline)) {
    case 0:
      return 0;
    case ETIMEDOUT:
      return -1;
    default:
      return -2;
  }
}
