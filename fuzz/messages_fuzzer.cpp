// Sends any bracketed messages, many at a time, and takes samples from the ring at any time. Checks the
// samples that are handed out, and which registrations are signalled.
#include <pthread.h>

#include <map>

#include "fuzz/input.h"
#include "fuzz/unsolicited_model.h"
#include "mcu/unsolicited.h"
#include "tests/oracle/plain_reading.h"

namespace {

using rolu_fuzz::Input;
using rolu_fuzz::Require;

std::map<pthread_cond_t*, int> signals;

void CompareSignals(pthread_cond_t* expected) {
  std::map<pthread_cond_t*, int> expected_signals;
  if (expected != nullptr) expected_signals[expected] = 1;
  Require(signals == expected_signals, "another registration was signalled");
  signals.clear();
}

}  // namespace

// Stands in for the C library's function, to count the signals.
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
  rolu_fuzz::UnsolicitedModel model;
  const ScopedLock lock(*io_op_lock);
  rolu_fuzz::RegisterAnew();
  while (!input.empty()) {
    const size_t times = input.Below(40);
    for (size_t pops = input.Below(40); pops > 0; --pops) model.ComparePop();
    // The target `lines` checks which lines the library takes for messages.
    const std::vector<std::string> lines = rolu_test::WholeLines(input.Text(1 + input.Below(63)) + '\n');
    if (lines.empty() || !rolu_test::IsBracketed(lines.front())) continue;
    for (size_t i = 0; i < times; ++i) {
      HandleBracketedMessage(lines.front().c_str());
      CompareSignals(model.Take(lines.front()));
    }
  }
  model.CompareAllPops();
  return 0;
}
