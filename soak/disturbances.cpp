#include "soak/disturbances.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "simulator/system/background_thread.h"
#include "soak/dice.h"
#include "soak/operations.h"

namespace rolu_soak {

Disturbances::Disturbances(rolu_sim::McuSerial& serial, std::vector<pthread_t> victims, std::uint32_t seed)
    : serial_(serial), victims_(std::move(victims)) {
  struct sigaction action {};
  action.sa_handler = [](int) { ++signals_handled_; };  // without SA_RESTART
  sigaction(SIGUSR1, &action, nullptr);
  const rolu_sim::BlockedSignals blocked;
  message_thread_ = std::jthread([this, seed](const std::stop_token& stop) { SendMessages(stop, seed); });
  signal_thread_ = std::jthread([this, seed](const std::stop_token& stop) { SendSignals(stop, seed + 1); });
}

void Disturbances::SendMessages(const std::stop_token& stop, std::uint32_t seed) {
  Dice dice(seed);
  while (!stop.stop_requested()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1 + dice.Below(60)));
    const std::lock_guard<std::mutex> lock(sending_);
    // Now and then more samples than the library keeps.
    const std::uint32_t samples = dice.Below(200) == 0 ? 50 : dice.Below(3);
    std::string messages;
    for (std::uint32_t i = 0; i < samples; ++i) messages += AlarmMessage(++last_alarm_sent);
    switch (dice.Below(4)) {
      case 0:
        messages += "[0000]]\r\n";
        break;
      case 1:
        messages += "[0001]]\r\n";
        break;
      case 2:
        messages += fmt::format("[{:02X}{:02X}?]\r", dice.Below(256), dice.Below(256));
        break;
      default:
        break;
    }
    if (messages.empty()) continue;
    ++messages_;
    serial_.SendRaw(std::move(messages));
  }
}

void Disturbances::SendSignals(const std::stop_token& stop, std::uint32_t seed) {
  Dice dice(seed);
  while (!stop.stop_requested()) {
    std::this_thread::sleep_for(std::chrono::microseconds(200 + dice.Below(8000)));
    ++signals_;
    if (dice.Below(8) == 0) {
      kill(getpid(), SIGUSR1);
    } else {
      pthread_kill(victims_.at(dice.Below(victims_.size())), SIGUSR1);
    }
  }
}

}  // namespace rolu_soak
