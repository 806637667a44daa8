#include "mcu/link.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/select.h>
#include <unistd.h>

#include <cstring>
#include <new>

#include "core/allocate.h"
#include "core/deadline.h"
#include "core/device_file.h"
#include "kavo_rolu.h"
#include "mcu/link_state.h"
#include "mcu/serial_port.h"
#include "mcu/turn.h"
#include "mcu/unsolicited.h"

CCriticalSection* io_op_lock = nullptr;
int vpm_port = -1;
int vpm_ref_count = 0;
pthread_t vpm_io_thread_handle;
std::atomic<bool> io_thread_active{false};
int vpm_wake_event = -1;
char* vpm_tx_buffer = nullptr;
std::atomic<int> tx_index{0};
std::atomic<bool> tx_urgent{false};
char last_command_result[kLineCapacity];
bool last_command_valid = false;
pthread_cond_t* vpm_resp_event = nullptr;
int vpm_awaited_lines = 0;
pthread_cond_t vpm_resp_taken;

namespace {

constexpr unsigned long kOpenCloseLockMs = 2000;
constexpr unsigned long kPortSpeed = 115200;

void CreateTakenEvent() {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&vpm_resp_taken, &attributes);
  pthread_condattr_destroy(&attributes);
}

// Called only in a turn, so that only one thread creates the lock.
bool CreateIoLock() {
  if (IoOpLockExists()) return true;
  void* const memory = Allocate<CCriticalSection>();
  if (memory == nullptr) return false;
  auto* lock = new (memory) CCriticalSection;
  if (lock->mutex() == nullptr) {
    free(memory);
    return false;
  }
  CreateTakenEvent();
  __atomic_store_n(&io_op_lock, lock, __ATOMIC_RELEASE);
  return true;
}

bool OpenPort(const char* path, int flags) {
  vpm_port = AboveStandardStreams(Tovi_CreateFile(path, static_cast<unsigned long>(flags)));
  if (vpm_port == -1) return false;
  // A shell that the application or this library runs must not hold the MCU's port.
  SetCloseOnExec(vpm_port);
  // The I/O thread must never block: not in a read, when another process has taken the bytes first, and not
  // in a write that the line does not accept.
  fcntl(vpm_port, F_SETFL, flags | O_NONBLOCK);
  // select() writes beyond its set for a larger descriptor.
  if (vpm_port < FD_SETSIZE && Tovi_SetCommState(vpm_port, kPortSpeed) == 1) return true;
  close(vpm_port);
  vpm_port = -1;
  return false;
}

void OpenWakeEvent() {
  vpm_wake_event = AboveStandardStreams(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (vpm_wake_event >= FD_SETSIZE) {
    close(vpm_wake_event);
    vpm_wake_event = -1;
  }
}

bool CreateReplyEvent() REQUIRES(io_op_lock) {
  vpm_resp_event = Allocate<pthread_cond_t>();
  if (vpm_resp_event == nullptr) return false;
  pthread_cond_init(vpm_resp_event, nullptr);
  return true;
}

void ResetSharedState() REQUIRES(io_op_lock) {
  last_command_valid = false;
  vpm_awaited_lines = 0;
  tx_index = 0;
  tx_urgent = false;
  ResetUnsolicited();
  ResetPortReader();
}

// The application's signal handlers run on the application's threads, so the I/O thread starts with
// every signal blocked.
bool StartIoThread() REQUIRES(io_op_lock) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  io_thread_active = true;
  const bool started = pthread_create(&vpm_io_thread_handle, nullptr, VPMHandleThread, nullptr) == 0;
  if (!started) io_thread_active = false;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return started;
}

// Undoes an opening, complete or not.
void ReleaseLink() REQUIRES(io_op_lock) {
  if (vpm_resp_event != nullptr) {
    pthread_cond_destroy(vpm_resp_event);
    free(vpm_resp_event);
    vpm_resp_event = nullptr;
  }
  free(vpm_tx_buffer);
  vpm_tx_buffer = nullptr;
  tx_index = 0;
  if (vpm_wake_event != -1) {
    close(vpm_wake_event);
    vpm_wake_event = -1;
  }
  if (vpm_port != -1) {
    close(vpm_port);
    vpm_port = -1;
  }
}

bool OpenLink(const char* path, int flags) REQUIRES(io_op_lock) {
  if (!OpenPort(path, flags)) return false;
  OpenWakeEvent();
  ResetSharedState();
  vpm_tx_buffer = Allocate<char>(kTxCapacity);
  if (CreateReplyEvent() && vpm_tx_buffer != nullptr && StartIoThread()) return true;
  ReleaseLink();
  return false;
}

// Releases io_op_lock while it waits, since the thread takes that lock to handle its last line.
void StopIoThread() REQUIRES(io_op_lock) {
  const pthread_t thread = vpm_io_thread_handle;
  io_thread_active = false;
  WakeIoThread();
  io_op_lock->Unlock();
  pthread_join(thread, nullptr);
  io_op_lock->Lock();
}

bool LinkIsOpen() REQUIRES(io_op_lock) {
  return vpm_tx_buffer != nullptr;
}

}  // namespace

int VPMOpen(const char* path, int flags) {
  const Turn turn(kOpenCloseLockMs);
  if (!turn.held() || !CreateIoLock()) return -1;
  const ScopedLock lock(*io_op_lock);
  if (vpm_ref_count == 0 && !OpenLink(path, flags)) return -1;
  ++vpm_ref_count;
  return 0;
}

int VPMClose() {
  const Turn turn(kOpenCloseLockMs);
  if (!turn.held()) return ROLU_STATUS_VPM_NO_REPLY;
  RemoveLinkUser();
  return 0;
}

void RemoveLinkUser() {
  if (!IoOpLockExists()) return;
  const ScopedLock lock(*io_op_lock);
  if (vpm_ref_count == 0) return;
  if (vpm_ref_count == 1) {
    StopIoThread();
    ReleaseLink();
  }
  --vpm_ref_count;
}

int send_vpm_command(const char* bytes, int length, int awaited_lines) {
  if (!IoOpLockExists()) return -2;
  const ScopedLock lock(*io_op_lock);
  if (!LinkIsOpen() || length < 0 || length > kTxCapacity - 1 - tx_index) return -2;
  memcpy(vpm_tx_buffer + tx_index, bytes, static_cast<size_t>(length));
  const bool first = tx_index == 0;
  tx_index += length;
  last_command_valid = false;
  vpm_awaited_lines = awaited_lines;
  // Wakes an I/O thread that waits without a time-out: it would sleep on while a command is queued. A caller
  // that awaits an answer wakes it anyway.
  if (first && awaited_lines == 0) WakeIoThread();
  return 0;
}

void cancel_queued_commands() {
  if (!IoOpLockExists()) return;
  const ScopedLock lock(*io_op_lock);
  tx_index = 0;
  tx_urgent = false;
}

int read_vpm_response(char* buffer, unsigned long wait_ms) {
  const timespec deadline = WallClockDeadline(wait_ms);
  if (!IoOpLockExists()) return -1;
  const ScopedLock lock(*io_op_lock);
  if (!LinkIsOpen()) return -1;
  // Commands become urgent here, not when they are queued: so commands queued together leave together.
  if (tx_index > 0) {
    tx_urgent = true;
    WakeIoThread();
  }
  if (vpm_awaited_lines == 0) vpm_awaited_lines = 1;
  while (!last_command_valid && !HasPassed(deadline)) {
    pthread_cond_timedwait(vpm_resp_event, io_op_lock->mutex(), &deadline);
  }
  const bool taken = last_command_valid;
  vpm_awaited_lines = taken ? vpm_awaited_lines - 1 : 0;
  if (!taken) return -1;
  memcpy(buffer, last_command_result, kLineCapacity);
  last_command_valid = false;
  pthread_cond_signal(&vpm_resp_taken);
  return 0;
}
