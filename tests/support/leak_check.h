// Looking for memory that nobody points to any more.
#ifndef TESTS_SUPPORT_LEAK_CHECK_H
#define TESTS_SUPPORT_LEAK_CHECK_H

#if defined(__has_feature)
#define ROLU_HAS_LEAK_CHECK __has_feature(address_sanitizer)
#elif defined(__SANITIZE_ADDRESS__)
#define ROLU_HAS_LEAK_CHECK 1
#else
#define ROLU_HAS_LEAK_CHECK 0
#endif

#if ROLU_HAS_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

namespace rolu_test {

// Whether this process has leaked; what and where goes to stderr. Only the address sanitizer knows: in
// other builds nothing is found. For a process that ends by _exit, which the sanitizer does not notice.
inline bool HasLeaked() {
#if ROLU_HAS_LEAK_CHECK
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_LEAK_CHECK_H
