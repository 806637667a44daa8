// What the link's two halves share: opening, queuing and waiting on the application's threads
// (link.cpp), reading and writing the port on the I/O thread (link_io_thread.cpp).
#ifndef MCU_LINK_STATE_H
#define MCU_LINK_STATE_H

#include <pthread.h>

#include <atomic>
#include <climits>

#include "core/critical_section.h"
#include "mcu/line_assembler.h"

// Size of the transmit queue; one byte of it stays free.
inline constexpr int kTxCapacity = 512;

// Guards all of the link's shared state; the wait for a reply uses its mutex. Created by the first
// open and never destroyed, so that a late caller finds a lock and a closed link, not freed memory.
extern CCriticalSection* io_op_lock;

// False until the first open. Code that may run before the first open must check this before it uses
// io_op_lock.
inline bool IoOpLockExists() {
  return __atomic_load_n(&io_op_lock, __ATOMIC_ACQUIRE) != nullptr;
}

// The port, and the eventfd that ends a wait on a quiet line. Both are -1 while the link is closed; the
// eventfd is also -1 when it could not be created. Both are set before the I/O thread starts and outlive it.
extern int vpm_port;
extern int vpm_wake_event;

extern int vpm_ref_count GUARDED_BY(io_op_lock);
extern pthread_t vpm_io_thread_handle GUARDED_BY(io_op_lock);

// The I/O thread runs while this is set. Written under io_op_lock, read by the thread without it.
extern std::atomic<bool> io_thread_active;

// Commands waiting to be written, back to back. Null while the link is closed. tx_index is written
// under io_op_lock; the I/O thread peeks at it without the lock on every empty poll.
extern char* vpm_tx_buffer PT_GUARDED_BY(io_op_lock);
extern std::atomic<int> tx_index;

// Set when the caller of a queued command waits for its reply: the command leaves at once if the line is
// quiet. Written under io_op_lock, read by the I/O thread without it.
extern std::atomic<bool> tx_urgent;

// The latest reply line, and whether nobody has taken it yet.
extern char last_command_result[kLineCapacity] GUARDED_BY(io_op_lock);
extern bool last_command_valid GUARDED_BY(io_op_lock);

// Signalled when a reply line was stored; null while the link is closed.
extern pthread_cond_t* vpm_resp_event GUARDED_BY(io_op_lock);

// How many reply lines a caller still waits for; none of these is overwritten. The condition variable signals
// that one was taken; waits on it use the monotonic clock.
extern int vpm_awaited_lines GUARDED_BY(io_op_lock);
extern pthread_cond_t vpm_resp_taken;

// Takes one user of the link away; with the last one it ends the I/O thread and closes the port. Call it in a
// turn.
void RemoveLinkUser();

// True when the last poll ended empty and nothing has arrived since. Then the wake-up event may end a wait,
// and a wait needs no time-out. The I/O thread writes it; after setting it, that thread looks at tx_index and
// io_thread_active. A thread that changes one of those two looks at line_is_quiet afterwards.
extern std::atomic<bool> line_is_quiet;

// Ends the I/O thread's current wait if the line is quiet.
void WakeIoThread();

// Forgets what the port's reader holds of an earlier opening.
void ResetPortReader();

// The I/O thread's body; its argument is not used.
void* VPMHandleThread(void* unused);

// Assembles one line: true when `line` holds one. Writes the queue whenever the line is idle. False
// after `idle_limit` polls without a byte, or when the thread has to end.
bool VPMRead(char* line, unsigned long* length, int idle_limit);

// Writes all the bytes. False as soon as the port does not take any.
bool VPMWrite(const char* bytes, int length);

// One byte from the port. 0: delivered; -1: error; -2: nothing within `wait_ms`; kWoken.
int recvbyte_vpm(unsigned char* byte, unsigned int wait_ms);
inline constexpr int kWoken = 1;
// As `wait_ms`: waits until something happens. Use it only with a wake-up event and on a quiet line.
inline constexpr unsigned int kNoTimeOut = UINT_MAX;

#endif  // MCU_LINK_STATE_H
