// A model of bracketed messages: the samples that are handed out, and which registration is signalled.
#ifndef FUZZ_UNSOLICITED_MODEL_H
#define FUZZ_UNSOLICITED_MODEL_H

#include <pthread.h>

#include <cctype>
#include <deque>

#include "fuzz/input.h"
#include "mcu/unsolicited.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_fuzz {

// What is registered.
inline pthread_cond_t alarm_event = PTHREAD_COND_INITIALIZER;
inline pthread_cond_t ignition_event = PTHREAD_COND_INITIALIZER;
inline pthread_cond_t battery_event = PTHREAD_COND_INITIALIZER;

// Empties the ring, and registers all events.
inline void RegisterAnew() REQUIRES(io_op_lock) {
  ResetUnsolicited();
  set_gsensor_alarm_event(&alarm_event);
  set_ignition_poweroff_alarm_event(&ignition_event);
  set_lvp_poweroff_alarm_event(&battery_event);
}

class UnsolicitedModel {
 public:
  // What the message signals; null for nothing.
  pthread_cond_t* Take(const std::string& line) {
    const std::string text = line.substr(0, line.find('\0'));
    if (text.size() > 1 && text[1] == 'G') return TakeSample(text);
    // The class, the kind, and something behind them.
    rolu_test::Pieces pieces(text);
    if (!pieces.Exactly("[")) return nullptr;
    const std::optional<int> message_class = pieces.Number(16, 2);
    const std::optional<int> kind = pieces.Number(16, 2);
    if (!pieces.Word() || message_class != 0) return nullptr;
    if (kind == 0) return &ignition_event;
    return kind == 1 ? &battery_event : nullptr;
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
  pthread_cond_t* TakeSample(const std::string& text) {
    constexpr size_t kPrefix = 4;
    constexpr size_t kDigits = 12;
    if (text.compare(0, kPrefix, "[GI:") != 0 || text.size() < kPrefix + kDigits) return nullptr;
    for (const char digit : text.substr(kPrefix, kDigits)) {
      if (isxdigit(static_cast<unsigned char>(digit)) == 0) return nullptr;
    }
    const auto axis = [&text](size_t index) {
      const int value = rolu_test::NumberOf(text.substr(kPrefix + 4 * index, 4), 16);
      return value >= 0x8000 ? value - 0x10000 : value;
    };
    ring_.push_back({axis(0), axis(1), axis(2)});
    if (ring_.size() > 31) ring_.pop_front();
    return &alarm_event;
  }

  std::deque<ROLU_GSENSOR_DATA> ring_;
};

}  // namespace rolu_fuzz

#endif  // FUZZ_UNSOLICITED_MODEL_H
