#include "tools/watch_events.h"

#include <errno.h>
#include <sys/socket.h>
#include <unistd.h>

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

// Messages keep their bounds, so that those of several threads do not mix.
EventPipe::EventPipe() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    throw std::system_error(errno, std::generic_category(), "socketpair");
  }
  reader_ = ends[0];
  writer_ = ends[1];
}

EventPipe::~EventPipe() {
  BeWriter();
  BeReader();
}

void EventPipe::BeWriter() {
  if (reader_ >= 0) close(std::exchange(reader_, -1));
}

void EventPipe::BeReader() {
  if (writer_ >= 0) close(std::exchange(writer_, -1));
}

void EventPipe::Put(EventKind kind, Document values, const std::string& detail) const {
  const Document event = {{"kind", static_cast<int>(kind)},
                          {"values", std::move(values)},
                          {"detail", detail},
                          {"time", TimeStamp()}};
  const std::string message = event.dump();
  // Where the reader is gone the watching is about to end.
  while (send(writer_, message.data(), message.size(), MSG_NOSIGNAL) < 0 && errno == EINTR) continue;
}

std::optional<Event> EventPipe::Take() {
  char message[1024];
  const ssize_t length = recv(reader_, message, sizeof message, MSG_DONTWAIT);
  if (length <= 0) {
    at_end_ = length == 0 || (errno != EAGAIN && errno != EINTR);
    return std::nullopt;
  }
  const Document event = Document::parse(message, message + length);
  return Event{static_cast<EventKind>(event["kind"].get<int>()), event["values"], event["detail"],
               event["time"]};
}

}  // namespace rolu
