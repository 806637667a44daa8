// The rules of the wire, in the plainest code. Tests compare the library with it.
#ifndef TESTS_ORACLE_WIRE_MODEL_H
#define TESTS_ORACLE_WIRE_MODEL_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "kavo_rolu.h"

namespace rolu_test {

// The error replies that the MCU gives.
inline constexpr std::array<std::string_view, 23> kErrorReplies = {
    "ERR-C01", "ERR-R01", "ERR-M01", "ERR-M02", "ERR-M03", "ERR-M04", "ERR-M06", "ERR-M08",
    "ERR-W01", "ERR-W02", "ERR-B01", "ERR-B02", "ERR-E01", "ERR-E02", "ERR-E03", "ERR-E04",
    "ERR-L01", "ERR-G01", "ERR-G02", "ERR-A01", "ERR-T01", "ERR-Q01", "ERR-Q02"};

// The whole lines of the bytes: each ended by CR or LF, none empty, none longer than 63 characters.
std::vector<std::string> WholeLines(std::string_view bytes);

// The MCU's own message, no reply.
bool IsBracketed(std::string_view line);

// The lines that answer commands.
std::vector<std::string> ReplyLines(std::string_view bytes);

// The status of a command that was answered with this line.
ROLU_STATUS StatusOfReply(std::string_view line);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_WIRE_MODEL_H
