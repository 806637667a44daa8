// Any bracketed messages, and the samples taken from the ring at any time: the samples that are handed
// out, and which registrations are signalled.
#include <pthread.h>

#include <cctype>
#include <deque>
#include <map>

#include "fuzz/input.h"
#include "mcu/unsolicited.h"
#include "tests/support/wire_model.h"

namespace {

using rolu_fuzz::Input;
using rolu_fuzz::Require;

std::map<pthread_cond_t*, int> signals;

pthread_cond_t alarm_event = PTHREAD_COND_INITIALIZER;
pthread_cond_t ignition_event = PTHREAD_COND_INITIALIZER;
pthread_cond_t battery_event = PTHREAD_COND_INITIALIZER;

bool AreHexadecimal(const std::string& text, size_t start, size_t count) {
  if (text.size() < start + count) return false;
  for (size_t i = start; i < start + count; ++i) {
    if (isxdigit(static_cast<unsigned char>(text[i])) == 0) return false;
  }
  return true;
}

int32_t Axis(const std::string& text, size_t start) {
  int value = 0;
  for (size_t i = start; i < start + 4; ++i) {
    const int character = tolower(static_cast<unsigned char>(text[i]));
    value = value * 16 + (character <= '9' ? character - '0' : character - 'a' + 10);
  }
  return value >= 0x8000 ? value - 0x10000 : value;
}

class Model {
 public:
  void Take(const std::string& line) {
    const std::string text = line.substr(0, line.find('\0'));
    if (text.size() > 1 && text[1] == 'G') {
      if (text.compare(0, 4, "[GI:") != 0 || !AreHexadecimal(text, 4, 12)) return;
      ring_.push_back({Axis(text, 4), Axis(text, 8), Axis(text, 12)});
      if (ring_.size() > 31) ring_.pop_front();
      ++expected_[&alarm_event];
      return;
    }
    // Four digits and something that is not blank behind them. What comes close to it but is not (a
    // blank, a sign, a single digit) is left open.
    if (text.empty() || text[0] != '[') return;
    is_open_ = !AreHexadecimal(text, 1, 4) && text.find_first_of("0123456789abcdefABCDEF", 1) != text.npos;
    if (!AreHexadecimal(text, 1, 4)) return;
    if (text.find_first_not_of(" \t\v\f", 5) == text.npos) return;
    if (text.compare(1, 4, "0000") == 0) ++expected_[&ignition_event];
    if (text.compare(1, 4, "0001") == 0) ++expected_[&battery_event];
  }

  void CompareSignals() {
    if (!is_open_) Require(signals == expected_, "another registration was signalled");
    is_open_ = false;
    signals.clear();
    expected_.clear();
  }

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
  size_t Queued() const { return ring_.size(); }

 private:
  std::deque<ROLU_GSENSOR_DATA> ring_;
  std::map<pthread_cond_t*, int> expected_;
  bool is_open_ = false;
};

}  // namespace

// Stands in for the C library's, which nobody could count.
extern "C" int pthread_cond_signal(pthread_cond_t* event) noexcept {
  ++signals[event];
  return 0;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  if (io_op_lock == nullptr) io_op_lock = new CCriticalSection;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Model model;
  const ScopedLock lock(*io_op_lock);
  ResetUnsolicited();
  set_gsensor_alarm_event(&alarm_event);
  set_ignition_poweroff_alarm_event(&ignition_event);
  set_lvp_poweroff_alarm_event(&battery_event);
  while (!input.empty()) {
    const size_t times = input.Below(40);
    for (size_t pops = input.Below(40); pops > 0; --pops) model.ComparePop();
    const std::vector<std::string> lines = rolu_test::WholeLines(input.Text(1 + input.Below(63)) + '\n');
    if (lines.empty() || !rolu_test::IsBracketed(lines.front())) continue;
    for (size_t i = 0; i < times; ++i) {
      HandleBracketedMessage(lines.front().c_str());
      model.Take(lines.front());
      model.CompareSignals();
    }
  }
  for (size_t left = model.Queued() + 1; left > 0; --left) model.ComparePop();
  return 0;
}
