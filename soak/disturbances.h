#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "simulator/line/mcu_serial.h"

namespace rolu_soak {

// What goes on around the calls, at random: the MCU's own messages, and signals to the process and its
// threads, whose handler interrupts the system call in which a thread waits.
class Disturbances {
 public:
  Disturbances(rolu_sim::McuSerial& serial, std::vector<pthread_t> victims, std::uint32_t seed);

  // While the returned lock is held, no message is sent, and none is on its way.
  std::unique_lock<std::mutex> Pause() { return std::unique_lock<std::mutex>(sending_); }

  std::uint64_t messages() const { return messages_; }
  std::uint64_t signals_sent() const { return signals_; }
  static std::uint64_t signals_handled() { return signals_handled_; }

 private:
  void SendMessages(const std::stop_token& stop, std::uint32_t seed);
  void SendSignals(const std::stop_token& stop, std::uint32_t seed);

  static inline std::atomic<std::uint64_t> signals_handled_{0};
  rolu_sim::McuSerial& serial_;
  const std::vector<pthread_t> victims_;
  std::mutex sending_;
  std::atomic<std::uint64_t> messages_{0};
  std::atomic<std::uint64_t> signals_{0};
  // The threads end with this object.
  std::jthread message_thread_;
  std::jthread signal_thread_;
};

}  // namespace rolu_soak
