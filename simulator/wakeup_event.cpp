#include "simulator/wakeup_event.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "simulator/system_error.h"

namespace rolu_sim {

WakeupEvent::WakeupEvent() : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!event_) ThrowErrno("eventfd");
}

// A full counter and an empty one both mean that the wake-up is on its way already.
void WakeupEvent::Signal() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(event_.get(), &one, sizeof one);
}

void WakeupEvent::Take() const {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t taken = read(event_.get(), &count, sizeof count);
}

}  // namespace rolu_sim
