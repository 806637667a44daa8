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

// Guards all of the link's shared state; its mutex is that of the reply wait. Created by the first
// open and never destroyed, so that a late caller finds a lock and a closed link, not freed memory.
extern CCriticalSection* io_op_lock;

// False until the first open. Who does not know that there has been one asks before io_op_lock is used.
inline bool IoOpLockExists() {
  return __atomic_load_n(&io_op_lock, __ATOMIC_ACQUIRE) != nullptr;
}

// The port and the eventfd that ends a wait on a quiet line; -1 while the link is closed, the second also
// when it could not be had. Both are set before the I/O thread starts and outlive it.
extern int vpm_port;
extern int vpm_wake_event;

extern int vpm_ref_count GUARDED_BY(io_op_lock);
extern pthread_t vpm_io_thread_handle GUARDED_BY(io_op_lock);

// The I/O thread runs while it is set. Written under io_op_lock, read by the thread without it.
extern std::atomic<bool> io_thread_active;

// Commands waiting to be written, back to back. Null while the link is closed. tx_index is written
// under io_op_lock; the I/O thread peeks at it without the lock on every empty poll.
extern char* vpm_tx_buffer PT_GUARDED_BY(io_op_lock);
extern std::atomic<int> tx_index;

// The caller of a queued command waits for its reply: it leaves at once if the line is quiet. Written under
// io_op_lock, read by the I/O thread without it.
extern std::atomic<bool> tx_urgent;

// The latest reply line, and whether nobody has taken it yet.
extern char last_command_result[kLineCapacity] GUARDED_BY(io_op_lock);
extern bool last_command_valid GUARDED_BY(io_op_lock);

// Signalled when a reply line was stored; null while the link is closed.
extern pthread_cond_t* vpm_resp_event GUARDED_BY(io_op_lock);

// How many reply lines a caller still waits for, none of which is overwritten, and the signal that one was
// taken (its waits are on the monotonic clock).
extern int vpm_awaited_lines GUARDED_BY(io_op_lock);
extern pthread_cond_t vpm_resp_taken;

// Takes one user of the link away, the last one with the port and the I/O thread. Call it in a turn.
void RemoveLinkUser();

// The last poll ended empty and nothing has arrived since: there is nothing left to wait for, so the
// wake-up event may end a wait, and a wait needs no time-out. Written by the I/O thread, which looks at
// tx_index and io_thread_active each time after it was set; whoever changes those looks at it afterwards.
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
// As `wait_ms`: until something happens. Only with a wake-up event, and on a line that is quiet.
inline constexpr unsigned int kNoTimeOut = UINT_MAX;

#endif  // MCU_LINK_STATE_H
