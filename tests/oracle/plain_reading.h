// Reads what the MCU sends, its lines and their fields, in the plainest code. Tests compare the library with
// it.
#ifndef TESTS_ORACLE_PLAIN_READING_H
#define TESTS_ORACLE_PLAIN_READING_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kavo_rolu.h"

namespace rolu_test {

// The MCU's error replies.
inline constexpr std::array<std::string_view, 23> kErrorReplies = {
    "ERR-C01", "ERR-R01", "ERR-M01", "ERR-M02", "ERR-M03", "ERR-M04", "ERR-M06", "ERR-M08",
    "ERR-W01", "ERR-W02", "ERR-B01", "ERR-B02", "ERR-E01", "ERR-E02", "ERR-E03", "ERR-E04",
    "ERR-L01", "ERR-G01", "ERR-G02", "ERR-A01", "ERR-T01", "ERR-Q01", "ERR-Q02"};

// The complete lines in the bytes: each ends with CR or LF, none is empty, none is longer than 63 characters.
std::vector<std::string> WholeLines(std::string_view bytes);

// Whether the line is a message of the MCU, not a reply.
bool IsBracketed(std::string_view line);

// The lines that answer commands.
std::vector<std::string> ReplyLines(std::string_view bytes);

// The status of a command whose answer is this line.
ROLU_STATUS StatusOfReply(std::string_view line);

// Works as strtol does when long has 32 bits.
int32_t NumberOf(const std::string& text, int base);

// A part of the text; empty when it begins after the end.
std::string FieldOf(const std::string& text, size_t position, size_t width);

// A field of the wake-up alarm's time: the sum of the weights of the byte's bits.
int AlarmFieldOf(unsigned int byte);

// A G-sensor's axis in its unit: times 1000/256, plus a half, then without the decimals.
inline int32_t ScaledAxis(int16_t axis) {
  return (axis * 125 + 16) / 32;
}

// The plain decimal number at the start of the text; empty if there is none.
std::string DecimalOf(const std::string& text);

// Reads a text piece by piece, as the C library's patterns do: after a missing piece all further pieces are
// missing.
class Pieces {
 public:
  explicit Pieces(std::string text) : text_(std::move(text)) {}

  // These exact characters.
  bool Exactly(const std::string& wanted);
  // Any one character.
  bool Character();
  // Blanks, then a number of at most `width` characters. A sign counts as a character, and so does "0x",
  // which the C library reads as 0 if no digit follows.
  std::optional<int> Number(int base, size_t width);
  // Blanks, then at least one other character.
  bool Word();

 private:
  bool Has(bool piece) {
    missing_ = missing_ || !piece;
    return !missing_;
  }
  void SkipBlanks();

  std::string text_;
  size_t at_ = 0;
  bool missing_ = false;
};

}  // namespace rolu_test

#endif  // TESTS_ORACLE_PLAIN_READING_H
