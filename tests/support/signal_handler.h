#ifndef TESTS_SUPPORT_SIGNAL_HANDLER_H
#define TESTS_SUPPORT_SIGNAL_HANDLER_H

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>

inline std::atomic<int> signals_handled{0};

// Installs a handler without SA_RESTART. The default handler counts the signals.
inline void HandleSignal(
    int number, void (*handler)(int) = [](int) { ++signals_handled; }) {
  struct sigaction action {};
  action.sa_handler = handler;
  signals_handled = 0;
  ASSERT_EQ(sigaction(number, &action, nullptr), 0);
}

#endif  // TESTS_SUPPORT_SIGNAL_HANDLER_H
