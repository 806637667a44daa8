#ifndef MCU_ERROR_REPLY_H
#define MCU_ERROR_REPLY_H

#include <cstdint>

// One error reply of the MCU. The number's high byte names the letter group, its low byte the code
// within the group; 0 ends a table.
struct ErrorReplyEntry {
  char text[12];
  int32_t number;
};

// A copy of the error reply table for one manager; give it back with free. Null when there is no memory.
ErrorReplyEntry* NewErrorTable();

// The number of the first entry whose text occurs anywhere in the reply; 0 for none, for a null reply and for
// a null table.
int32_t FindErrorReply(const ErrorReplyEntry* table, const char* reply);

// What a transaction returns for an error number.
uint32_t StatusOfErrorNumber(int32_t number);

#endif  // MCU_ERROR_REPLY_H
