#include "soak/disturbances.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "simulator/background_thread.h"
#include "soak/operations.h"

namespace rolu_soak {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

std::atomic<std::uint64_t> signals_handled{0};

void HandleSignal(int) {
  ++signals_handled;
}

}  // namespace

void InstallSignalHandler() {
  struct sigaction action {};
  action.sa_handler = HandleSignal;  // without SA_RESTART
  sigaction(SIGUSR1, &action, nullptr);
}

std::uint64_t Disturbances::SignalsHandled() {
  return signals_handled;
}

Disturbances::Disturbances(rolu_sim::McuSerial& serial, std::vector<pthread_t> victims, std::uint32_t seed)
    : serial_(serial), victims_(std::move(victims)), random_(seed) {
  const rolu_sim::BlockedSignals blocked;
  message_thread_ = std::thread([this] { SendMessages(); });
  signal_thread_ = std::thread([this, seed] { SendSignals(seed); });
}

Disturbances::~Disturbances() {
  ending_ = true;
  message_thread_.join();
  signal_thread_.join();
}

void Disturbances::SendMessages() {
  while (!ending_) {
    std::this_thread::sleep_for(milliseconds(1 + Draw(60)));
    const std::lock_guard<std::mutex> lock(sending_);
    // Now and then more samples than the library keeps.
    const std::uint32_t samples = Draw(200) == 0 ? 50 : Draw(3);
    std::string messages;
    for (std::uint32_t i = 0; i < samples; ++i) messages += AlarmMessage(++last_alarm_sent);
    switch (Draw(4)) {
      case 0:
        messages += "[0000]]\r\n";
        break;
      case 1:
        messages += "[0001]]\r\n";
        break;
      case 2:
        messages += fmt::format("[{:02X}{:02X}?]\r", Draw(256), Draw(256));
        break;
      default:
        break;
    }
    if (messages.empty()) continue;
    ++messages_;
    serial_.SendRaw(std::move(messages));
  }
}

void Disturbances::SendSignals(std::uint32_t seed) const {
  std::mt19937 random(seed + 1);
  while (!ending_) {
    std::this_thread::sleep_for(microseconds(200 + random() % 8000));
    ++signals_;
    if (random() % 8 == 0) {
      kill(getpid(), SIGUSR1);
    } else {
      pthread_kill(victims_.at(random() % victims_.size()), SIGUSR1);
    }
  }
}

}  // namespace rolu_soak
