// The kinds of answer that most questions have.
#ifndef MCU_QUERIES_H
#define MCU_QUERIES_H

#include "kavo_rolu.h"
#include "mcu/reply_fields.h"
#include "mcu/transaction.h"

// Asks for a hexadecimal number. `number` is untouched unless the status is success.
inline uint32_t QueryNumber(const ErrorReplyEntry* table, const Command& command, int32_t& number) {
  Reply reply;
  const uint32_t status = Query(table, command, reply);
  if (status == ROLU_STATUS_SUCCESS) number = ReadHexadecimal(reply.text);
  return status;
}

// Asks for a line of switches and takes the one at `position`: 1 for '1', 0 for '0'. Any other
// character, or a line that does not reach there, is an invalid reply.
inline uint32_t QuerySwitch(const ErrorReplyEntry* table, const Command& command, int32_t position,
                            char* state) {
  Reply reply;
  const uint32_t status = Query(table, command, reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const char character = CharacterAt(reply.text, position);
  if (character != '0' && character != '1') return ROLU_STATUS_VPM_INVALID_REPLY;
  *state = character == '1' ? 1 : 0;
  return ROLU_STATUS_SUCCESS;
}

// Asks for a flag, the reply's character at `position`: 1 for '1', 0 for anything else.
inline uint32_t QueryFlag(const ErrorReplyEntry* table, const Command& command, int32_t position,
                          char* flag) {
  Reply reply;
  const uint32_t status = Query(table, command, reply);
  if (status == ROLU_STATUS_SUCCESS) *flag = CharacterAt(reply.text, position) == '1' ? 1 : 0;
  return status;
}

#endif  // MCU_QUERIES_H
