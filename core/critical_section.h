#ifndef CORE_CRITICAL_SECTION_H
#define CORE_CRITICAL_SECTION_H

#include <pthread.h>

// Names for clang's thread-safety analysis; other compilers see nothing.
#if defined(__clang__)
#define ROLU_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ROLU_THREAD_ANNOTATION(x)
#endif

#define CAPABILITY(name) ROLU_THREAD_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY ROLU_THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(lock) ROLU_THREAD_ANNOTATION(guarded_by(lock))
#define PT_GUARDED_BY(lock) ROLU_THREAD_ANNOTATION(pt_guarded_by(lock))
#define ACQUIRE(...) ROLU_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) ROLU_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) ROLU_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define REQUIRES(...) ROLU_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS ROLU_THREAD_ANNOTATION(no_thread_safety_analysis)

// The library's only kind of lock: a recursive mutex. TimeLock gives up after a time.
class CAPABILITY("mutex") CCriticalSection {
 public:
  CCriticalSection();
  ~CCriticalSection();
  CCriticalSection(const CCriticalSection&) = delete;
  CCriticalSection& operator=(const CCriticalSection&) = delete;

  void Lock() ACQUIRE();
  void Unlock() RELEASE();

  // Waits at most `ms` milliseconds, until a time of the wall clock. 0: now held; -1: the wait ran out; -2:
  // any other failure. Unlock only after 0.
  int TimeLock(unsigned long ms) TRY_ACQUIRE(false);

  // For waits on a condition variable, with this lock held exactly once.
  pthread_mutex_t* mutex() const { return mutex_; }

 private:
  pthread_mutex_t* mutex_;
};

// Holds a critical section for a scope.
class SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(CCriticalSection& section) ACQUIRE(section) : section_(section) { section_.Lock(); }
  ~ScopedLock() RELEASE() { section_.Unlock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  CCriticalSection& section_;
};

#endif  // CORE_CRITICAL_SECTION_H
