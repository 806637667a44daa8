// An open link whose I/O thread is stopped. The test makes the thread's polls itself, one by one, and plays
// the MCU at the other end of the line. Only the test acts on the line.
#ifndef TESTS_MCU_PAUSED_LINK_H
#define TESTS_MCU_PAUSED_LINK_H

#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "simulator/line/pseudo_terminal.h"
#include "tests/mcu/link_calls.h"
#include "tests/support/process_state.h"

inline constexpr int kGenerousMs = static_cast<int>(std::chrono::milliseconds(kGenerous).count());

inline bool IsReadable(int descriptor, int wait_ms) {
  pollfd source{descriptor, POLLIN, 0};
  return poll(&source, 1, wait_ms) == 1 && (source.revents & POLLIN) != 0;
}

// The characters that have arrived at the MCU's end of a line. Waits for `size` of them.
inline std::string ReceiveAt(int line, size_t size) {
  std::string received;
  while (IsReadable(line, received.size() < size ? kGenerousMs : 0)) {
    char bytes[1024];
    const ssize_t length = read(line, bytes, sizeof bytes);
    if (length <= 0) break;
    received.append(bytes, static_cast<size_t>(length));
  }
  return received;
}

// Makes the I/O thread's next poll.
inline int PollPort(std::chrono::milliseconds wait) {
  unsigned char byte = 0;
  return recvbyte_vpm(&byte, static_cast<unsigned int>(wait.count()));
}

class PausedLink {
 public:
  PausedLink() {
    EXPECT_TRUE(OpenLink(line_.device_path()));
    io_thread_active = false;
    WakeIoThread();
    pthread_join(vpm_io_thread_handle, nullptr);
    io_thread_active = true;
    ResetPortReader();
  }
  ~PausedLink() {
    if (!resumed_) Resume();
    EXPECT_EQ(VPMClose(), 0);
  }
  PausedLink(const PausedLink&) = delete;
  PausedLink& operator=(const PausedLink&) = delete;

  // Starts the I/O thread again, for good.
  void Resume() {
    resumed_ = true;
    ASSERT_EQ(pthread_create(&vpm_io_thread_handle, nullptr, VPMHandleThread, nullptr), 0);
  }

  // Sends bytes. When this returns on a paused link, the port can read them.
  void Send(std::string_view bytes) const {
    ASSERT_EQ(write(line_.master(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    if (!resumed_) {
      ASSERT_TRUE(IsReadable(vpm_port, kGenerousMs));
    }
  }

  bool HasReceived(int wait_ms) const { return IsReadable(line_.master(), wait_ms); }

  std::string Receive(size_t size) const { return ReceiveAt(line_.master(), size); }

  // Breaks the line: reads of its port find the end of the file, and writes fail.
  void HangUp() { line_.Close(); }

 private:
  rolu_sim::PseudoTerminal line_;
  bool resumed_ = false;
};

#endif  // TESTS_MCU_PAUSED_LINK_H
