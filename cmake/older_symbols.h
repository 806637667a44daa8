// Included before every source of the library. The C library gave these functions new versions when it took
// them over from libpthread (2.34, pthread_sigmask 2.32), and fcntl one for large files (2.28, on ARM). What
// they do is the same, so the library asks for the first version and starts on the C library of an older
// image too.
#ifndef CMAKE_OLDER_SYMBOLS_H
#define CMAKE_OLDER_SYMBOLS_H

#if defined(__x86_64__)
__asm__(".symver pthread_condattr_setclock, pthread_condattr_setclock@GLIBC_2.3.3");
__asm__(".symver pthread_create, pthread_create@GLIBC_2.2.5");
__asm__(".symver pthread_join, pthread_join@GLIBC_2.2.5");
__asm__(".symver pthread_mutex_timedlock, pthread_mutex_timedlock@GLIBC_2.2.5");
__asm__(".symver pthread_mutex_trylock, pthread_mutex_trylock@GLIBC_2.2.5");
__asm__(".symver pthread_mutexattr_destroy, pthread_mutexattr_destroy@GLIBC_2.2.5");
__asm__(".symver pthread_mutexattr_init, pthread_mutexattr_init@GLIBC_2.2.5");
__asm__(".symver pthread_mutexattr_settype, pthread_mutexattr_settype@GLIBC_2.2.5");
__asm__(".symver pthread_sigmask, pthread_sigmask@GLIBC_2.2.5");
#elif defined(__arm__)
__asm__(".symver fcntl, fcntl@GLIBC_2.4");
__asm__(".symver pthread_condattr_setclock, pthread_condattr_setclock@GLIBC_2.4");
__asm__(".symver pthread_create, pthread_create@GLIBC_2.4");
__asm__(".symver pthread_join, pthread_join@GLIBC_2.4");
__asm__(".symver pthread_mutex_timedlock, pthread_mutex_timedlock@GLIBC_2.4");
__asm__(".symver pthread_mutex_trylock, pthread_mutex_trylock@GLIBC_2.4");
__asm__(".symver pthread_mutexattr_destroy, pthread_mutexattr_destroy@GLIBC_2.4");
__asm__(".symver pthread_mutexattr_init, pthread_mutexattr_init@GLIBC_2.4");
__asm__(".symver pthread_mutexattr_settype, pthread_mutexattr_settype@GLIBC_2.4");
__asm__(".symver pthread_sigmask, pthread_sigmask@GLIBC_2.4");
#endif

#endif  // CMAKE_OLDER_SYMBOLS_H
