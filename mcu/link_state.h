// What the link's two halves share: opening, queuing and waiting on the application's threads
// (link.cpp), reading and writing the port on the I/O thread (link_io_thread.cpp).
#ifndef MCU_LINK_STATE_H
#define MCU_LINK_STATE_H

#include <pthread.h>

#include <atomic>

#include "core/critical_section.h"
#include "mcu/line_assembler.h"

// Size of the transmit queue; one byte of it stays free.
inline constexpr int kTxCapacity = 512;

// Guards all of the link's shared state; its mutex is that of the reply wait. Created by the first
// open and never destroyed, so that a late caller finds a lock and a closed link, not freed memory.
extern CCriticalSection* io_op_lock;

extern int vpm_port;
extern int vpm_ref_count GUARDED_BY(io_op_lock);
extern pthread_t vpm_io_thread_handle;

// The I/O thread runs while it is set. Written under io_op_lock, read by the thread without it.
extern std::atomic<bool> io_thread_active;

// The eventfd that ends a poll of a quiet line early; -1 when none could be had.
extern int vpm_wake_event;

// Commands waiting to be written, back to back. Null while the link is closed. tx_index is written
// under io_op_lock; the I/O thread peeks at it without the lock on every empty poll.
extern char* vpm_tx_buffer PT_GUARDED_BY(io_op_lock);
extern std::atomic<int> tx_index;

// The latest reply line, and whether nobody has taken it yet.
extern char last_command_result[kLineCapacity] GUARDED_BY(io_op_lock);
extern bool last_command_valid GUARDED_BY(io_op_lock);

// Signalled when a reply line was stored; null while the link is closed.
extern pthread_cond_t* vpm_resp_event GUARDED_BY(io_op_lock);

// How many callers wait for a reply line (0 or 1), and the signal that one was taken.
extern int vpm_resp_waiters GUARDED_BY(io_op_lock);
extern pthread_cond_t vpm_resp_taken;

// Ends the I/O thread's current poll if the line is quiet.
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

#endif  // MCU_LINK_STATE_H
