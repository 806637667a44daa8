#include "mcu/link.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "core/deadline.h"
#include "core/device_file.h"
#include "core/process_locks.h"
#include "kavo_rolu.h"
#include "mcu/link_state.h"
#include "mcu/serial_port.h"
#include "mcu/unsolicited.h"

CCriticalSection* io_op_lock = nullptr;
int vpm_port = -1;
int vpm_ref_count = 0;
pthread_t vpm_io_thread_handle;
std::atomic<bool> io_thread_active{false};
int vpm_wake_event = -1;
char* vpm_tx_buffer = nullptr;
std::atomic<int> tx_index{0};
char last_command_result[kLineCapacity];
bool last_command_valid = false;
pthread_cond_t* vpm_resp_event = nullptr;
int vpm_resp_waiters = 0;
pthread_cond_t vpm_resp_taken = PTHREAD_COND_INITIALIZER;

namespace {

constexpr unsigned long kOpenCloseLockMs = 2000;
constexpr unsigned long kPortSpeed = 115200;

bool CreateIoLock() {
  if (io_op_lock != nullptr) return true;
  auto* lock = new (std::nothrow) CCriticalSection;
  if (lock != nullptr && lock->mutex() == nullptr) {
    delete lock;
    lock = nullptr;
  }
  io_op_lock = lock;
  return lock != nullptr;
}

bool OpenPort(const char* path, int flags) {
  vpm_port = Tovi_CreateFile(path, static_cast<unsigned long>(flags));
  if (vpm_port == -1) return false;
  // A shell that the application or this library runs must not hold the MCU's port.
  SetCloseOnExec(vpm_port);
  errno = 0;
  // select() writes beyond its set for a larger descriptor.
  if (vpm_port < FD_SETSIZE && Tovi_SetCommState(vpm_port, kPortSpeed) == 1) return true;
  close(vpm_port);
  vpm_port = -1;
  return false;
}

void OpenWakeEvent() {
  vpm_wake_event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (vpm_wake_event >= FD_SETSIZE) {
    close(vpm_wake_event);
    vpm_wake_event = -1;
  }
}

bool CreateReplyEvent() REQUIRES(io_op_lock) {
  vpm_resp_event = new (std::nothrow) pthread_cond_t;
  if (vpm_resp_event == nullptr) return false;
  pthread_cond_init(vpm_resp_event, nullptr);
  return true;
}

void ResetSharedState() REQUIRES(io_op_lock) {
  last_command_valid = false;
  tx_index = 0;
  ResetUnsolicited();
  ResetPortReader();
}

// The application's signal handlers run on the application's threads, so the I/O thread starts with
// every signal blocked.
bool StartIoThread() {
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

// Undoes an opening, whole or half done.
void ReleaseLink() REQUIRES(io_op_lock) {
  if (vpm_resp_event != nullptr) {
    pthread_cond_destroy(vpm_resp_event);
    delete vpm_resp_event;
    vpm_resp_event = nullptr;
  }
  delete[] vpm_tx_buffer;
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
  vpm_tx_buffer = new (std::nothrow) char[kTxCapacity];
  if (CreateReplyEvent() && vpm_tx_buffer != nullptr && StartIoThread()) return true;
  ReleaseLink();
  return false;
}

// Releases io_op_lock while it waits, since the thread takes that lock to handle its last line.
void StopIoThread() REQUIRES(io_op_lock) {
  io_thread_active = false;
  pthread_cond_signal(vpm_resp_event);
  WakeIoThread();
  io_op_lock->Unlock();
  pthread_join(vpm_io_thread_handle, nullptr);
  io_op_lock->Lock();
}

bool LinkIsOpen() REQUIRES(io_op_lock) {
  return vpm_tx_buffer != nullptr;
}

}  // namespace

int VPMOpen(const char* path, int flags) {
  if (CriSectCtx.TimeLock(kOpenCloseLockMs) != 0) return -1;
  bool open = false;
  if (CreateIoLock()) {
    ScopedLock lock(*io_op_lock);
    open = vpm_ref_count > 0 || OpenLink(path, flags);
    if (open) ++vpm_ref_count;
  }
  CriSectCtx.Unlock();
  return open ? 0 : -1;
}

int VPMClose() {
  if (CriSectCtx.TimeLock(kOpenCloseLockMs) != 0) return ROLU_STATUS_VPM_NO_REPLY;
  if (io_op_lock != nullptr) {
    ScopedLock lock(*io_op_lock);
    if (vpm_ref_count == 1) {
      StopIoThread();
      ReleaseLink();
    }
    if (vpm_ref_count > 0) --vpm_ref_count;
  }
  CriSectCtx.Unlock();
  return 0;
}

int send_vpm_command(const char* bytes, int length) {
  if (io_op_lock == nullptr) return -2;
  ScopedLock lock(*io_op_lock);
  if (!LinkIsOpen() || length < 0 || length > kTxCapacity - 1 - tx_index) return -2;
  memcpy(vpm_tx_buffer + tx_index, bytes, static_cast<size_t>(length));
  tx_index += length;
  last_command_valid = false;
  return 0;
}

void cancel_queued_commands() {
  if (io_op_lock == nullptr) return;
  ScopedLock lock(*io_op_lock);
  tx_index = 0;
}

int read_vpm_response(char* buffer, unsigned long wait_ms) {
  const timespec deadline = WallClockDeadline(wait_ms);
  if (io_op_lock == nullptr) return -1;
  ScopedLock lock(*io_op_lock);
  if (!LinkIsOpen()) return -1;
  // Queuing alone hurries nothing, so that commands queued together leave together; the wait for
  // the answer does.
  if (tx_index > 0) WakeIoThread();
  ++vpm_resp_waiters;
  while (!last_command_valid && !HasPassed(deadline)) {
    pthread_cond_timedwait(vpm_resp_event, io_op_lock->mutex(), &deadline);
  }
  --vpm_resp_waiters;
  if (!last_command_valid) return -1;
  memcpy(buffer, last_command_result, kLineCapacity);
  last_command_valid = false;
  pthread_cond_signal(&vpm_resp_taken);
  return 0;
}
