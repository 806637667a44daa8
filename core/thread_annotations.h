// Names for clang's thread-safety analysis; other compilers see nothing.
#ifndef CORE_THREAD_ANNOTATIONS_H
#define CORE_THREAD_ANNOTATIONS_H

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

#endif  // CORE_THREAD_ANNOTATIONS_H
