#include "mcu/error_reply.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kavo_rolu.h"

namespace {

TEST(ErrorReply, EachListedTextHasItsNumber) {
  const struct {
    const char* reply;
    int32_t number;
  } rows[] = {
      {"ERR-C01", 0x100},
      {"ERR-R01", 0x200},
      {"ERR-M01", 0x300},
      {"ERR-M02", 0x301},
      {"ERR-M03", 0x302},
      {"ERR-M04", 0x303},
      {"ERR-M06", 0x300},
      {"ERR-M08", 0x304},
      {"ERR-W01", 0x400},
      {"ERR-W02", 0x401},
      {"ERR-B01", 0x500},
      {"ERR-B02", 0x501},
      {"ERR-E01", 0x600},
      {"ERR-E02", 0x601},
      {"ERR-E03", 0x602},
      {"ERR-E04", 0x603},
      {"ERR-L01", 0x700},
      {"ERR-G01", 0x800},
      {"ERR-G02", 0x801},
      {"ERR-A01", 0x900},
      {"ERR-T01", 0xA00},
      {"ERR-Q01", 0xB00},
      {"ERR-Q02", 0xB01},
      // anywhere in the reply, and the table's order decides
      {"*ERR-W02*", 0x401},
      {"0123ERR-M08", 0x304},
      {"ERR-Q02 ERR-M08", 0x304},
      // no error replies
      {"ERR-M05", 0},
      {"ERR-M07", 0},
      {"err-M08", 0},
      {"ERR-M0", 0},
      {"ERR", 0},
      {"OK", 0},
      {"", 0},
      {nullptr, 0},
  };
  const std::unique_ptr<ErrorReplyEntry[], decltype(&free)> table(NewErrorTable(), free);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.reply == nullptr ? "null" : row.reply);
    EXPECT_EQ(FindErrorReply(table.get(), row.reply), row.number);
    EXPECT_EQ(StatusOfErrorNumber(row.number) == ROLU_STATUS_SUCCESS, row.number == 0);
  }
  EXPECT_EQ(StatusOfErrorNumber(0x304), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(StatusOfErrorNumber(0x303), ROLU_STATUS_VPM_ERROR_REPLY);
  EXPECT_EQ(FindErrorReply(nullptr, "ERR-M08"), 0) << "a manager that is down has no table";
}

}  // namespace
