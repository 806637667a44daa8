#include <sys/prctl.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/deadline.h"
#include "mcu/link_state.h"
#include "mcu/unsolicited.h"

namespace {

// The poll of the port. A queued command leaves only when the line has been quiet for one poll, so that it
// does not meet what the MCU is still sending.
constexpr unsigned int kPollMs = 5;

// After so many empty polls a line that has not ended is forgotten.
constexpr int kIdleLimit = 100;

constexpr unsigned long kLineLockMs = 1000;

// How long a reply line waits until the signalled caller has taken the line before it. A caller that runs at
// all needs far less.
constexpr unsigned long kReplyTakenMs = 1000;

constexpr size_t kReadAhead = 36;
unsigned char recv_buffer_vpm[kReadAhead];
unsigned int recv_index_vpm = 0;
unsigned int recv_size_vpm = 0;

LineAssembler line_assembler;

// When the last bytes were read: the quiet time counts from then, not from the end of their handling.
long long last_bytes_us = 0;

void ClearWakeEvent() {
  if (vpm_wake_event == -1) return;
  uint64_t count;
  [[maybe_unused]] const ssize_t taken = read(vpm_wake_event, &count, sizeof count);
}

enum class PollResult { kReadable, kWoken, kTimedOut, kFailed };

// Waits for the wake-up event if it may end a poll, and for the port unless `port` is -1. Without a limit if
// `time_out` is null.
PollResult Poll(int port, timeval* time_out) {
  fd_set readable;
  FD_ZERO(&readable);
  if (port != -1) FD_SET(port, &readable);
  const bool may_wake = line_is_quiet && vpm_wake_event != -1;
  if (may_wake) FD_SET(vpm_wake_event, &readable);
  const int highest = may_wake && vpm_wake_event > port ? vpm_wake_event : port;
  const int ready = select(highest + 1, &readable, nullptr, nullptr, time_out);
  if (ready == 0) return PollResult::kTimedOut;
  if (ready < 0) return PollResult::kFailed;
  // Bytes come first: with bytes at the port the line is not quiet.
  if (port != -1 && FD_ISSET(port, &readable)) return PollResult::kReadable;
  return may_wake && FD_ISSET(vpm_wake_event, &readable) ? PollResult::kWoken : PollResult::kFailed;
}

timeval TimeLeft(long long end_us, long long now_us) {
  const long long left_us = std::max(end_us - now_us, 0LL);
  timeval left;
  left.tv_sec = static_cast<time_t>(left_us / 1000000);
  left.tv_usec = static_cast<suseconds_t>(left_us % 1000000);
  return left;
}

// A port that fails or has hung up is always ready. The poll waits for the rest of its 5 ms all the same:
// polls without a pause would keep a processor busy.
int FinishFailedPoll(int result, long long poll_end_us) {
  timeval left = TimeLeft(poll_end_us, MonotonicUs());
  const bool woken = Poll(-1, &left) == PollResult::kWoken;
  line_is_quiet = true;
  if (!woken) return result;
  ClearWakeEvent();
  return kWoken;
}

// True when only bytes and a wake-up are left to wait for.
bool MaySleep() {
  return line_is_quiet && vpm_wake_event != -1 && !line_assembler.HoldsPart() && tx_index == 0;
}

void WriteQueue() {
  const ScopedLock lock(*io_op_lock);
  VPMWrite(vpm_tx_buffer, tx_index);
  tx_index = 0;
  tx_urgent = false;
}

void AwaitReplyTaken() REQUIRES(io_op_lock) {
  const timespec deadline = MonotonicDeadline(kReplyTakenMs);
  while (last_command_valid && vpm_awaited_lines > 0 && !HasPassedMonotonic(deadline)) {
    pthread_cond_timedwait(&vpm_resp_taken, io_op_lock->mutex(), &deadline);
  }
}

// Returns the event to signal, null if the line was not stored.
pthread_cond_t* StoreReply(const char* line, size_t length) REQUIRES(io_op_lock) {
  AwaitReplyTaken();
  // The MCU has not seen a command that is still queued, so this line answers an earlier one. The caller that
  // took the previous reply may have queued that command just now.
  if (tx_index > 0) return nullptr;
  memcpy(last_command_result, line, length + 1);
  last_command_valid = true;
  return vpm_resp_event;
}

void HandleLine(const char* line, size_t length) {
  if (io_op_lock->TimeLock(kLineLockMs) != 0) return;
  pthread_cond_t* stored = nullptr;
  if (line[0] == '[' || line[length - 1] == ']') {
    HandleBracketedMessage(line);
  } else {
    stored = StoreReply(line, length);
  }
  io_op_lock->Unlock();
  // If this thread still held the lock, the caller would wake up only to wait for it. The event outlives this
  // thread.
  if (stored != nullptr) pthread_cond_signal(stored);
}

}  // namespace

std::atomic<bool> line_is_quiet{false};

// While the line is not quiet, the thread does not watch the event. Once the line is quiet, the thread checks
// for itself.
void WakeIoThread() {
  const uint64_t one = 1;
  if (vpm_wake_event == -1 || !line_is_quiet) return;
  [[maybe_unused]] const ssize_t written = write(vpm_wake_event, &one, sizeof one);
}

void ResetPortReader() {
  recv_index_vpm = 0;
  recv_size_vpm = 0;
  line_assembler.Reset();
  line_is_quiet = false;
  last_bytes_us = MonotonicUs();
}

int recvbyte_vpm(unsigned char* byte, unsigned int wait_ms) {
  if (recv_index_vpm == recv_size_vpm) {
    const long long now_us = MonotonicUs();
    const bool has_time_out = wait_ms != kNoTimeOut;
    const long long poll_us = (has_time_out ? wait_ms : kPollMs) * 1000LL;
    const long long poll_end_us = (line_is_quiet ? now_us : last_bytes_us) + poll_us;
    timeval left = TimeLeft(poll_end_us, now_us);
    switch (Poll(vpm_port, has_time_out ? &left : nullptr)) {
      case PollResult::kReadable:
        break;
      case PollResult::kWoken:
        ClearWakeEvent();
        return kWoken;
      case PollResult::kTimedOut:
        line_is_quiet = true;
        return -2;
      case PollResult::kFailed:
        return FinishFailedPoll(-1, poll_end_us);
    }
    const ssize_t count = read(vpm_port, recv_buffer_vpm, sizeof recv_buffer_vpm);
    if (count <= 0) return FinishFailedPoll(count == 0 ? -2 : -1, poll_end_us);
    line_is_quiet = false;
    last_bytes_us = MonotonicUs();
    recv_index_vpm = 0;
    recv_size_vpm = static_cast<unsigned int>(count);
  }
  *byte = recv_buffer_vpm[recv_index_vpm++];
  return 0;
}

bool VPMRead(char* line, unsigned long* length, int idle_limit) {
  int idle_count = 0;
  while (io_thread_active && idle_count < idle_limit) {
    unsigned char byte;
    const int result = recvbyte_vpm(&byte, MaySleep() ? kNoTimeOut : kPollMs);
    if (result == 0) {
      if (!line_assembler.Take(byte)) continue;
      memcpy(line, line_assembler.text(), line_assembler.length() + 1);
      *length = line_assembler.length();
      return true;
    }
    // A command whose answer nobody awaits ends a wait without a time-out, but leaves only after one poll.
    const bool poll_ended = result != kWoken;
    if (tx_index > 0 && (poll_ended || tx_urgent)) WriteQueue();
    if (poll_ended) ++idle_count;
  }
  line_assembler.Reset();
  return false;
}

bool VPMWrite(const char* bytes, int length) {
  while (length > 0) {
    const ssize_t written = write(vpm_port, bytes, static_cast<size_t>(length));
    if (written <= 0) return false;
    bytes += written;
    length -= static_cast<int>(written);
  }
  return true;
}

void* VPMHandleThread(void*) {
  // By default a thread's timers may end 50 us late. Each command on a busy line would lose that time.
  prctl(PR_SET_TIMERSLACK, 1UL);
  char line[kLineCapacity];
  unsigned long length = 0;
  while (io_thread_active) {
    if (VPMRead(line, &length, kIdleLimit)) HandleLine(line, length);
  }
  return nullptr;
}
