#include "simulator/mcu/mcu_time.h"

#include <cmath>

namespace rolu_sim {

using std::chrono::nanoseconds;

McuTimePoint McuTime::At(TimePoint now) const {
  const auto passed = static_cast<double>(nanoseconds(now - real_change_).count());
  return mcu_change_ + nanoseconds(static_cast<nanoseconds::rep>(std::floor(passed * speed_)));
}

TimePoint McuTime::RealTimeOf(McuTimePoint time) const {
  const auto passed = static_cast<double>((time - mcu_change_).count());
  TimePoint real = real_change_ + nanoseconds(static_cast<nanoseconds::rep>(std::ceil(passed / speed_)));
  while (At(real) < time) real += nanoseconds(1);  // the division was rounded
  return real;
}

void McuTime::SetSpeed(double speed, TimePoint now) {
  mcu_change_ = At(now);
  real_change_ = now;
  speed_ = speed;
}

}  // namespace rolu_sim
