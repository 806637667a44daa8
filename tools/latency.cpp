#include "tools/latency.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "kavo_rolu.h"
#include "tools/interrupt.h"

namespace rolu {
namespace {

constexpr std::size_t kLossesToGiveUp = 2;

class ProgressBar {
 public:
  explicit ProgressBar(unsigned total) : total_(total), visible_(isatty(STDERR_FILENO) == 1) {}
  ~ProgressBar() {
    if (visible_) fmt::print(stderr, "\r\033[K");
  }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(unsigned done) const {
    constexpr unsigned kWidth = 40;
    if (!visible_) return;
    const unsigned filled = kWidth * done / total_;
    fmt::print(stderr, "\rasking the MCU [{:#>{}}{:.>{}}] {}/{}", "", filled, "", kWidth - filled, done,
               total_);
    std::fflush(stderr);
  }

 private:
  unsigned total_;
  bool visible_;
};

}  // namespace

std::chrono::microseconds Latency::Percentile(unsigned percent) const {
  std::vector<std::chrono::microseconds> sorted = times_;
  std::sort(sorted.begin(), sorted.end());
  const std::size_t rank = (sorted.size() * percent + 99) / 100;
  return sorted[std::max<std::size_t>(rank, 1) - 1];
}

Latency MeasureLatency(unsigned questions) {
  using Clock = std::chrono::steady_clock;
  const ProgressBar progress(questions);
  Latency latency;
  std::size_t lost_in_a_row = 0;
  for (unsigned asked = 0; asked < questions && lost_in_a_row < kLossesToGiveUp; ++asked) {
    interrupt::ThrowIfRequested();
    progress.Show(asked);
    std::array<char, 16> name{};
    const Clock::time_point start = Clock::now();
    const ROLU_STATUS status = KAVO_ROLU_VPM_GetPlatformName(name.data());
    if (status == ROLU_STATUS_SUCCESS) {
      latency.AddAnswer(std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start));
      lost_in_a_row = 0;
    } else {
      latency.AddLoss();
      ++lost_in_a_row;
    }
  }
  return latency;
}

}  // namespace rolu
