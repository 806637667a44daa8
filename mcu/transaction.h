// One question to the MCU: a command queued, one reply line awaited, an error reply turned into a
// status.
#ifndef MCU_TRANSACTION_H
#define MCU_TRANSACTION_H

#include <cstdint>

#include "mcu/error_reply.h"
#include "mcu/line_assembler.h"

// A command's text, its carriage return included, formatted as by printf. The longest one carries a
// whole reply line back to the MCU.
class Command {
 public:
  explicit Command(const char* format, ...) __attribute__((format(printf, 2, 3)));
  char text[kLineCapacity + 8];
  int length;
};

// A zeroed buffer for any reply line.
struct Reply {
  char text[kLineCapacity] = {};
};

// The longest time that a transaction waits for a reply line.
inline constexpr unsigned long kReplyWaitMs = 3000;

// Runs one transaction and holds every other one off until `post_delay_ms` milliseconds after its
// reply. The reply line, cut to reply_size - 1 characters, stays in `reply` whatever the status. If the
// answer has several lines, it waits for each of them, and the last one is the reply.
uint32_t RunTransaction(const ErrorReplyEntry* table, const char* command, int command_length, char* reply,
                        int reply_size, int post_delay_ms, int reply_lines = 1);

// A question: the reply is the answer.
uint32_t Query(const ErrorReplyEntry* table, const Command& command, Reply& reply);

// An order: the reply only shows whether the MCU answered with an error. Most orders give the MCU 50 ms to
// store what it was told.
uint32_t Order(const ErrorReplyEntry* table, const Command& command, int post_delay_ms = 50);

#endif  // MCU_TRANSACTION_H
