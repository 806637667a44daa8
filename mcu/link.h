// The one serial link to the MCU, shared by all managers: opened by the first, closed by the last.
// One I/O thread owns the port; application threads queue a command and wait for the reply line.
#ifndef MCU_LINK_H
#define MCU_LINK_H

// Opens the link, or counts one more user of the open one (path and flags are then not used).
// 0: open; -1: not. Waits at most 2000 ms for its turn.
int VPMOpen(const char* path, int flags);

// Takes one user away; with the last one it stops the I/O thread, waits for its end and closes the port. 0,
// or ROLU_STATUS_VPM_NO_REPLY when its turn did not come within 2000 ms; then nothing has changed.
int VPMClose();

// Queues a whole command, its carriage return included. 0: queued; -2: no room, or the link is
// closed. A reply that nobody took belongs to an earlier command and is discarded. The caller waits for
// `awaited_lines` lines of the answer: none of them is overwritten before it is taken. Call it in a turn that
// lasts until the last of them has been read.
int send_vpm_command(const char* bytes, int length, int awaited_lines = 0);

// Drops the queued commands that have not left yet. A caller that gives up calls it, in the same turn: a
// command that left later would be carried out unasked, and its answer would be taken for the next command's.
void cancel_queued_commands();

// Waits for the next reply line, at most `wait_ms` milliseconds, and copies it with its NUL into
// `buffer` (kLineCapacity bytes). 0: copied; -1: none came, or the link is closed; then no line is
// awaited any more.
int read_vpm_response(char* buffer, unsigned long wait_ms);

#endif  // MCU_LINK_H
