#include "mcu/error_reply.h"

#include <cstring>

#include "core/allocate.h"
#include "kavo_rolu.h"

namespace {

constexpr int32_t kParameterRefused = 0x304;

constexpr ErrorReplyEntry kErrorReplies[] = {
    {"ERR-C01", 0x100}, {"ERR-R01", 0x200}, {"ERR-M01", 0x300}, {"ERR-M02", 0x301},
    {"ERR-M03", 0x302}, {"ERR-M04", 0x303}, {"ERR-M06", 0x300}, {"ERR-M08", kParameterRefused},
    {"ERR-W01", 0x400}, {"ERR-W02", 0x401}, {"ERR-B01", 0x500}, {"ERR-B02", 0x501},
    {"ERR-E01", 0x600}, {"ERR-E02", 0x601}, {"ERR-E03", 0x602}, {"ERR-E04", 0x603},
    {"ERR-L01", 0x700}, {"ERR-G01", 0x800}, {"ERR-G02", 0x801}, {"ERR-A01", 0x900},
    {"ERR-T01", 0xA00}, {"ERR-Q01", 0xB00}, {"ERR-Q02", 0xB01}, {"", 0},
};

constexpr size_t kEntries = sizeof kErrorReplies / sizeof kErrorReplies[0];

}  // namespace

ErrorReplyEntry* NewErrorTable() {
  auto* table = Allocate<ErrorReplyEntry>(kEntries);
  if (table != nullptr) memcpy(table, kErrorReplies, sizeof kErrorReplies);
  return table;
}

int32_t FindErrorReply(const ErrorReplyEntry* table, const char* reply) {
  if (table == nullptr || reply == nullptr) return 0;
  for (; table->number != 0; ++table) {
    if (strstr(reply, table->text) != nullptr) return table->number;
  }
  return 0;
}

uint32_t StatusOfErrorNumber(int32_t number) {
  if (number == 0) return ROLU_STATUS_SUCCESS;
  return number == kParameterRefused ? ROLU_STATUS_INVALID_PARAMETER : ROLU_STATUS_VPM_ERROR_REPLY;
}
