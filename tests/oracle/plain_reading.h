// Reading text, in the plainest code. Tests compare the library with it.
#ifndef TESTS_ORACLE_PLAIN_READING_H
#define TESTS_ORACLE_PLAIN_READING_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace rolu_test {

// strtol where long has 32 bits.
int32_t NumberOf(const std::string& text, int base);

// A part of the text; empty behind its end.
std::string FieldOf(const std::string& text, size_t position, size_t width);

// A field of the wake-up alarm's time: the sum of the weights of the byte's bits.
int AlarmFieldOf(unsigned int byte);

// A G-sensor's axis in its unit: 1000/256, a half added, and what is behind the point cut off.
inline int32_t ScaledAxis(int16_t axis) {
  return (axis * 125 + 16) / 32;
}

// The plain decimal form at the start of the text; empty if there is none.
std::string DecimalOf(const std::string& text);

// Reads a text piece by piece, as the C library's patterns do: once a piece is missing, so are all
// behind it.
class Pieces {
 public:
  explicit Pieces(std::string text) : text_(std::move(text)) {}

  // These characters.
  bool Exactly(const std::string& wanted);
  // Any character.
  bool Character();
  // Blanks, and a number of at most `width` characters; a sign counts, and so does "0x", which the C
  // library takes for 0 where no digit follows.
  std::optional<int> Number(int base, size_t width);
  // Blanks, and something else.
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
