#include "tools/watch_events.h"

#include <errno.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <system_error>
#include <utility>

#include "tools/wall_time.h"

namespace rolu {

const std::vector<EventName>& EventNames() {
  static const std::vector<EventName> names = {
      {EventKind::kIgnitionOn, "ignition-on", "ignition on"},
      {EventKind::kIgnitionOff, "ignition-off", "ignition off"},
      {EventKind::kVoltage, "voltage", "car battery"},
      {EventKind::kIgnitionWarning, "power-off-ignition", "power-off warning: the ignition is off"},
      {EventKind::kBatteryWarning, "power-off-battery", "power-off warning: the car battery is low"},
      {EventKind::kShock, "shock", "G-sensor alarm"},
      {EventKind::kMcuSilent, "mcu-silent", "the MCU does not answer"},
      {EventKind::kMcuBack, "mcu-back", "the MCU answers again"},
  };
  return names;
}

EventQueue::EventQueue() : ready_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)) {
  if (ready_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

EventQueue::~EventQueue() {
  close(ready_);
}

void EventQueue::Put(EventKind kind, Document values, std::string detail) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    events_.push_back({kind, std::move(values), std::move(detail), TimeStamp()});
  }
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(ready_, &one, sizeof one);
}

std::optional<Event> EventQueue::Take() {
  std::uint64_t one = 0;
  if (read(ready_, &one, sizeof one) != sizeof one) return std::nullopt;
  const std::lock_guard<std::mutex> lock(mutex_);
  Event event = std::move(events_.front());
  events_.pop_front();
  return event;
}

}  // namespace rolu
