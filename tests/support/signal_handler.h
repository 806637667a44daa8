#ifndef TESTS_SUPPORT_SIGNAL_HANDLER_H
#define TESTS_SUPPORT_SIGNAL_HANDLER_H

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>

inline std::atomic<int> signals_handled{0};

// Handles a signal for a scope, without SA_RESTART; by default it is counted.
class SignalHandler {
 public:
  explicit SignalHandler(
      int number, void (*handler)(int) = [](int) { ++signals_handled; })
      : number_(number) {
    struct sigaction action {};
    action.sa_handler = handler;
    signals_handled = 0;
    EXPECT_EQ(sigaction(number_, &action, &before_), 0);
  }
  ~SignalHandler() { sigaction(number_, &before_, nullptr); }
  SignalHandler(const SignalHandler&) = delete;
  SignalHandler& operator=(const SignalHandler&) = delete;

 private:
  const int number_;
  struct sigaction before_ {};
};

#endif  // TESTS_SUPPORT_SIGNAL_HANDLER_H
