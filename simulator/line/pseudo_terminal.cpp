#include "simulator/line/pseudo_terminal.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/epoll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

UniqueFd OpenTerminal(const char* path) {
  return UniqueFd(open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
}

}  // namespace

PseudoTerminal::PseudoTerminal() : changes_(epoll_create1(EPOLL_CLOEXEC)) {
  if (!changes_) ThrowErrno("watching the serial port");
  Reopen();
}

void PseudoTerminal::Reopen() {
  UniqueFd master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!master) ThrowErrno("opening a pseudo-terminal");
  std::array<char, 64> path{};
  if (grantpt(master.get()) != 0 || unlockpt(master.get()) != 0 ||
      ptsname_r(master.get(), path.data(), path.size()) != 0) {
    ThrowErrno("preparing a pseudo-terminal");
  }
  {
    const UniqueFd device = OpenTerminal(path.data());
    termios attributes{};
    if (tcgetattr(device.get(), &attributes) != 0) ThrowErrno(fmt::format("opening {}", path.data()));
    cfmakeraw(&attributes);
    if (tcsetattr(device.get(), TCSANOW, &attributes) != 0)
      ThrowErrno(fmt::format("setting up {}", path.data()));
  }
  master_ = std::move(master);
  device_path_ = path.data();
  room_wanted_ = false;
  WatchMaster(EPOLL_CTL_ADD);
}

void PseudoTerminal::WatchMaster(int operation) const {
  epoll_event event{};
  event.events = EPOLLIN | EPOLLET | (room_wanted_ ? EPOLLOUT : 0U);
  if (epoll_ctl(changes(), operation, master(), &event) != 0) ThrowErrno("watching the serial port");
}

void PseudoTerminal::TakeChanges() const {
  epoll_event event{};
  epoll_wait(changes(), &event, 1, 0);
}

void PseudoTerminal::WantRoom(bool wanted) {
  if (wanted == room_wanted_ || !master_) return;
  room_wanted_ = wanted;
  WatchMaster(EPOLL_CTL_MOD);
}

bool PseudoTerminal::IsOpenByHost() const {
  pollfd hang_up{master(), 0, 0};
  return master_ && poll(&hang_up, 1, 0) == 0;
}

// If the process has no free descriptor, the bytes stay.
void PseudoTerminal::DiscardUnreadBytes() {
  tcflush(OpenTerminal(device_path_.c_str()).get(), TCIFLUSH);
}

}  // namespace rolu_sim
