#include "simulator/mcu/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/epoll.h>
#include <termios.h>
#include <unistd.h>

#include <array>

#include "simulator/system_error.h"

namespace rolu_sim {

PseudoTerminal::PseudoTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
  if (!master_) ThrowErrno("opening a pseudo-terminal");
  std::array<char, 64> path{};
  if (grantpt(master()) != 0 || unlockpt(master()) != 0 ||
      ptsname_r(master(), path.data(), path.size()) != 0) {
    ThrowErrno("preparing a pseudo-terminal");
  }
  device_path_ = path.data();
  {
    const UniqueFd device = OpenDevice();
    termios attributes{};
    if (tcgetattr(device.get(), &attributes) != 0) ThrowErrno("opening " + device_path_);
    cfmakeraw(&attributes);
    if (tcsetattr(device.get(), TCSANOW, &attributes) != 0) ThrowErrno("setting up " + device_path_);
  }
  changes_ = UniqueFd(epoll_create1(EPOLL_CLOEXEC));
  if (!changes_) ThrowErrno("watching the serial port");
  WatchMaster(EPOLL_CTL_ADD);
}

UniqueFd PseudoTerminal::OpenDevice() const {
  return UniqueFd(open(device_path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
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

// A process that has no descriptor to spare keeps the bytes.
void PseudoTerminal::DiscardUnreadBytes() {
  tcflush(OpenDevice().get(), TCIFLUSH);
}

void PseudoTerminal::Close() {
  master_.Reset();
  changes_.Reset();
}

}  // namespace rolu_sim
