// What bracketed messages have to do: the samples that are handed out, and which registration is
// signalled.
#ifndef FUZZ_UNSOLICITED_MODEL_H
#define FUZZ_UNSOLICITED_MODEL_H

#include <pthread.h>

#include <cctype>
#include <deque>

#include "fuzz/input.h"
#include "mcu/unsolicited.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_fuzz {

enum class Registration { kNone, kAlarm, kIgnition, kBattery };

// What is registered, in their order.
inline pthread_cond_t registered_events[] = {PTHREAD_COND_INITIALIZER, PTHREAD_COND_INITIALIZER,
                                             PTHREAD_COND_INITIALIZER};

// Null for none.
inline pthread_cond_t* EventOf(Registration registration) {
  if (registration == Registration::kNone) return nullptr;
  return &registered_events[static_cast<size_t>(registration) - 1];
}

// Empties the ring, and registers all events.
inline void RegisterAnew() REQUIRES(io_op_lock) {
  ResetUnsolicited();
  set_gsensor_alarm_event(EventOf(Registration::kAlarm));
  set_ignition_poweroff_alarm_event(EventOf(Registration::kIgnition));
  set_lvp_poweroff_alarm_event(EventOf(Registration::kBattery));
}

class UnsolicitedModel {
 public:
  // Which registration the message signals.
  Registration Take(const std::string& line) {
    const std::string text = line.substr(0, line.find('\0'));
    if (text.size() > 1 && text[1] == 'G') return TakeSample(text);
    // The class, the kind, and something behind them.
    rolu_test::Pieces pieces(text);
    if (!pieces.Exactly("[")) return Registration::kNone;
    const std::optional<int> message_class = pieces.Number(16, 2);
    const std::optional<int> kind = pieces.Number(16, 2);
    if (!pieces.Word() || message_class != 0) return Registration::kNone;
    if (kind == 0) return Registration::kIgnition;
    return kind == 1 ? Registration::kBattery : Registration::kNone;
  }

  // Takes a sample from the library, and compares it.
  void ComparePop() {
    ROLU_GSENSOR_DATA sample = {1, 2, 3};
    const int result = pop_gsensor_alarm_data(&sample);
    if (ring_.empty()) {
      Require(result == -2 && sample.x == 1 && sample.y == 2 && sample.z == 3, "a sample too many");
      return;
    }
    Require(result == 0, "a sample is missing");
    const ROLU_GSENSOR_DATA& oldest = ring_.front();
    Require(sample.x == oldest.x && sample.y == oldest.y && sample.z == oldest.z, "another sample");
    ring_.pop_front();
  }

  void CompareAllPops() {
    for (size_t left = ring_.size() + 1; left > 0; --left) ComparePop();
  }

 private:
  Registration TakeSample(const std::string& text) {
    constexpr size_t kPrefix = 4;
    constexpr size_t kDigits = 12;
    if (text.compare(0, kPrefix, "[GI:") != 0 || text.size() < kPrefix + kDigits) return Registration::kNone;
    for (const char digit : text.substr(kPrefix, kDigits)) {
      if (isxdigit(static_cast<unsigned char>(digit)) == 0) return Registration::kNone;
    }
    const auto axis = [&text](size_t index) {
      const int value = rolu_test::NumberOf(text.substr(kPrefix + 4 * index, 4), 16);
      return value >= 0x8000 ? value - 0x10000 : value;
    };
    ring_.push_back({axis(0), axis(1), axis(2)});
    if (ring_.size() > 31) ring_.pop_front();
    return Registration::kAlarm;
  }

  std::deque<ROLU_GSENSOR_DATA> ring_;
};

}  // namespace rolu_fuzz

#endif  // FUZZ_UNSOLICITED_MODEL_H
