// Calls of the link and its transactions, for tests.
#ifndef TESTS_MCU_LINK_CALLS_H
#define TESTS_MCU_LINK_CALLS_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>

#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/transaction.h"
#include "simulator/line/mcu_serial.h"
#include "tests/support/link_state.h"
#include "tests/support/process_state.h"

inline bool OpenLink(const std::string& path) {
  return VPMOpen(path.c_str(), O_RDWR) == 0;
}

// Asks the MCU. Returns the reply, or the status of a transaction that failed.
inline std::string Ask(const std::string& question, int post_delay_ms = 0) {
  const std::string command = question + '\r';
  char reply[kLineCapacity] = {};
  const uint32_t status = RunTransaction(nullptr, command.c_str(), static_cast<int>(command.size()), reply,
                                         sizeof reply, post_delay_ms);
  return status == ROLU_STATUS_SUCCESS ? reply : "status " + std::to_string(status);
}

// The two halves of a transaction.
inline bool Queue(const std::string& bytes, int awaited_lines = 0) {
  const int result = send_vpm_command(bytes.data(), static_cast<int>(bytes.size()), awaited_lines);
  EXPECT_TRUE(result == 0 || result == -2) << result;
  return result == 0;
}
inline std::string TakeReply(unsigned long wait_ms) {
  char reply[kLineCapacity] = {};
  const int result = read_vpm_response(reply, wait_ms);
  EXPECT_TRUE(result == 0 || result == -1) << result;
  return result == 0 ? reply : "none";
}

// An MCU and an open link to it.
class LinkTest : public testing::Test {
 protected:
  LinkTest() { EXPECT_TRUE(OpenLink(mcu.DevicePath())); }
  ~LinkTest() override { EXPECT_EQ(VPMClose(), 0); }
  rolu_sim::McuSerial mcu;
};

// Cancels a thread during its call, when `wait_for_moment` has returned. The thread ends after the call.
inline void CancelDuring(std::function<void()> call, const std::function<void()>& wait_for_moment) {
  const auto body = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    // The call may be over before the request comes.
    WaitUntil([] {
      pthread_testcancel();
      return false;
    });
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, nullptr, body, &call), 0);
  wait_for_moment();
  EXPECT_EQ(pthread_cancel(thread), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED) << "the request is forgotten";
}

#endif  // TESTS_MCU_LINK_CALLS_H
