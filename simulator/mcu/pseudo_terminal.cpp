#include "simulator/mcu/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

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
  watch_ = UniqueFd(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  if (!watch_)
    ThrowErrno("watching the serial port (a user has fs.inotify.max_user_instances boards at most)");
  if (!WatchDevice()) ThrowErrno("watching " + device_path_);
}

UniqueFd PseudoTerminal::OpenDevice() const {
  return UniqueFd(open(device_path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

bool PseudoTerminal::WatchDevice() {
  watched_ = inotify_add_watch(watch(), device_path_.c_str(), IN_OPEN | IN_CLOSE);
  return watched_ >= 0;
}

bool PseudoTerminal::IsOpenByHost() const {
  pollfd hang_up{master(), 0, 0};
  return master_ && poll(&hang_up, 1, 0) == 0;
}

// The kernel merges equal events that follow one another, so the count of openers can fall short
// of the truth; the hang-up state sets it right again.
bool PseudoTerminal::TakeHostClose() {
  bool closed = false;
  alignas(inotify_event) std::array<char, 4096> buffer{};
  ssize_t length = 0;
  while ((length = read(watch(), buffer.data(), buffer.size())) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      at += sizeof event + event.len;
      if (event.wd != watched_) continue;
      if ((event.mask & IN_OPEN) != 0) ++openers_;
      if ((event.mask & IN_CLOSE) != 0) {
        openers_ = std::max(openers_ - 1, 0);
        closed = closed || openers_ == 0;
      }
    }
  }
  if (IsOpenByHost()) {
    openers_ = std::max(openers_, 1);
  } else {
    closed = closed || openers_ > 0;
    openers_ = 0;
  }
  return closed;
}

// The watch is lifted meanwhile: it must not take this open for a program's. A process that has no
// descriptor to spare keeps the bytes.
void PseudoTerminal::DiscardUnreadBytes() {
  inotify_rm_watch(watch(), watched_);
  tcflush(OpenDevice().get(), TCIFLUSH);
  WatchDevice();
}

void PseudoTerminal::Close() {
  master_.Reset();
  watch_.Reset();
  openers_ = 0;
}

}  // namespace rolu_sim
