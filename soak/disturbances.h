#ifndef SOAK_DISTURBANCES_H
#define SOAK_DISTURBANCES_H

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "simulator/line/mcu_serial.h"

namespace rolu_soak {

// What goes on around the calls, at random: the MCU's own messages, and signals to the process and its
// threads, whose handler interrupts what a thread waits in.
class Disturbances {
 public:
  Disturbances(rolu_sim::McuSerial& serial, std::vector<pthread_t> victims, std::uint32_t seed);
  ~Disturbances();
  Disturbances(const Disturbances&) = delete;
  Disturbances& operator=(const Disturbances&) = delete;

  // As long as one lives no message is sent, and none is on its way.
  class Pause {
   public:
    explicit Pause(Disturbances& disturbances) : lock_(disturbances.sending_) {}

   private:
    std::lock_guard<std::mutex> lock_;
  };

  std::uint64_t messages() const { return messages_; }
  std::uint64_t signals_sent() const { return signals_; }
  static std::uint64_t SignalsHandled();

 private:
  void SendMessages();
  void SendSignals(std::uint32_t seed) const;
  std::uint32_t Draw(std::uint32_t below) { return static_cast<std::uint32_t>(random_()) % below; }

  rolu_sim::McuSerial& serial_;
  const std::vector<pthread_t> victims_;
  std::mt19937 random_;
  std::mutex sending_;
  std::atomic<bool> ending_{false};
  std::atomic<std::uint64_t> messages_{0};
  mutable std::atomic<std::uint64_t> signals_{0};
  std::thread message_thread_;
  std::thread signal_thread_;
};

// Once, before any thread runs.
void InstallSignalHandler();

}  // namespace rolu_soak

#endif  // SOAK_DISTURBANCES_H
