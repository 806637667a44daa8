// What the MCU reports on its own, in bracketed messages: G-sensor alarm samples, which wait in a
// ring, and warnings of a coming power-off. Each can wake an application thread through a condition variable
// that the application registered and owns; null means no registration.
#ifndef MCU_UNSOLICITED_H
#define MCU_UNSOLICITED_H

#include "kavo_rolu.h"
#include "mcu/link_state.h"

// Takes one bracketed message; a malformed or unknown one is ignored. On the I/O thread.
void HandleBracketedMessage(const char* line) REQUIRES(io_op_lock);

// Queues the sample of a G-sensor message; a full ring drops its oldest one. On the I/O thread.
void push_gsensor_alarm_data(const char* line) REQUIRES(io_op_lock);

// Takes the oldest sample, as the MCU sent it. 0: taken; -1: null pointer, or the link was never
// opened; -2: none is queued; -3: the lock was not free within 1000 ms.
int pop_gsensor_alarm_data(ROLU_GSENSOR_DATA* sample);

// Each does nothing while the link was never opened.
void set_gsensor_alarm_event(void* event);
void set_ignition_poweroff_alarm_event(void* event);
void set_lvp_poweroff_alarm_event(void* event);

// Empties the ring and forgets the registrations. Called when the closed link is opened.
void ResetUnsolicited() REQUIRES(io_op_lock);

#endif  // MCU_UNSOLICITED_H
