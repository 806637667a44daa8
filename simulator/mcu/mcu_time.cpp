#include "simulator/mcu/mcu_time.h"

#include <cmath>

namespace rolu_sim {

using std::chrono::nanoseconds;

namespace {

// A time further away than this, some 30 years, never comes.
constexpr double kMostNanoseconds = 1e18;

}  // namespace

McuTimePoint McuTime::At(TimePoint now) const {
  const double passed = std::floor(static_cast<double>(nanoseconds(now - real_change_).count()) * speed_);
  if (passed > kMostNanoseconds) return McuTimePoint::max();
  return mcu_change_ + nanoseconds(static_cast<nanoseconds::rep>(passed));
}

TimePoint McuTime::RealTimeOf(McuTimePoint time) const {
  const double passed = std::ceil(static_cast<double>((time - mcu_change_).count()) / speed_);
  if (passed > kMostNanoseconds) return TimePoint::max();
  TimePoint real = real_change_ + nanoseconds(static_cast<nanoseconds::rep>(passed));
  while (At(real) < time) real += nanoseconds(1);  // the division was rounded
  return real;
}

void McuTime::SetSpeed(double speed, TimePoint now) {
  mcu_change_ = At(now);
  real_change_ = now;
  speed_ = speed;
}

}  // namespace rolu_sim
