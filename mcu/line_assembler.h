#ifndef MCU_LINE_ASSEMBLER_H
#define MCU_LINE_ASSEMBLER_H

#include <cstddef>

// A line of the MCU's output holds at most 63 characters; every buffer for one is this long.
inline constexpr size_t kLineCapacity = 64;

// Cuts the MCU's byte stream into lines. A carriage return or a line feed ends a line and is not part of it;
// empty lines are skipped. A line longer than 63 characters is discarded whole, up to its end: a number cut
// short would read as a wrong number.
class LineAssembler {
 public:
  // True when `byte` ended a line; text() and length() then hold until the next Take.
  bool Take(unsigned char byte) {
    if (complete_) Clear();
    if (byte != '\r' && byte != '\n') {
      Append(static_cast<char>(byte));
      return false;
    }
    complete_ = length_ > 0 && !too_long_;
    if (!complete_) Clear();
    return complete_;
  }

  // Forgets what it holds of a line that has not ended.
  void Reset() { Clear(); }

  // True when a line has begun and not ended, even when it is too long and its characters are discarded.
  bool HoldsPart() const { return too_long_ || (length_ > 0 && !complete_); }

  // The line as a C string; a NUL byte received within it ends the string early.
  const char* text() const { return text_; }
  size_t length() const { return length_; }

 private:
  void Append(char character) {
    if (too_long_ || length_ == kLineCapacity - 1) {
      too_long_ = true;
      return;
    }
    text_[length_++] = character;
    text_[length_] = '\0';
  }

  void Clear() {
    length_ = 0;
    text_[0] = '\0';
    too_long_ = false;
    complete_ = false;
  }

  char text_[kLineCapacity] = {};
  size_t length_ = 0;
  bool too_long_ = false;
  bool complete_ = false;
};

#endif  // MCU_LINE_ASSEMBLER_H
