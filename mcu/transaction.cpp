#include "mcu/transaction.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "core/deadline.h"
#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/turn.h"

namespace {

void CopyCut(char* destination, int capacity, const char* text) {
  if (capacity <= 0) return;
  const size_t length = strnlen(text, static_cast<size_t>(capacity) - 1);
  memcpy(destination, text, length);
  destination[length] = '\0';
}

}  // namespace

Command::Command(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  length = vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
}

uint32_t RunTransaction(const ErrorReplyEntry* table, const char* command, int command_length, char* reply,
                        int reply_size, int post_delay_ms, int reply_lines) {
  if (command == nullptr || reply == nullptr) return ROLU_STATUS_VPM_SEND_FAILED;
  {
    const Turn turn;
    if (send_vpm_command(command, command_length, reply_lines) != 0) return ROLU_STATUS_VPM_SEND_FAILED;
    char line[kLineCapacity];
    for (int i = 0; i < reply_lines; ++i) {
      if (read_vpm_response(line, kReplyWaitMs) != 0) {
        cancel_queued_commands();
        return ROLU_STATUS_VPM_NO_REPLY;
      }
    }
    CopyCut(reply, reply_size, line);
    SleepForMs(post_delay_ms);
  }
  return StatusOfErrorNumber(FindErrorReply(table, reply));
}

uint32_t Query(const ErrorReplyEntry* table, const Command& command, Reply& reply) {
  return RunTransaction(table, command.text, command.length, reply.text, sizeof reply.text, 0);
}

uint32_t Order(const ErrorReplyEntry* table, const Command& command, int post_delay_ms) {
  Reply reply;
  return RunTransaction(table, command.text, command.length, reply.text, sizeof reply.text, post_delay_ms);
}
