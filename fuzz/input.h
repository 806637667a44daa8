// Reads a fuzzer's bytes as numbers and texts, from the front; behind their end everything is zero.
#ifndef FUZZ_INPUT_H
#define FUZZ_INPUT_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace rolu_fuzz {

class Input {
 public:
  Input(const uint8_t* bytes, size_t size) : bytes_(bytes), left_(size) {}

  bool empty() const { return left_ == 0; }

  uint8_t Byte() {
    if (left_ == 0) return 0;
    --left_;
    return *bytes_++;
  }
  size_t Below(size_t limit) { return Byte() % limit; }

  std::string Text(size_t length) {
    std::string text;
    for (length = std::min(length, left_); length > 0; --length) text += static_cast<char>(Byte());
    return text;
  }

  template <typename Number>
  Number Raw() {
    Number number{};
    auto* bytes = reinterpret_cast<uint8_t*>(&number);
    for (size_t i = 0; i < sizeof number; ++i) bytes[i] = Byte();
    return number;
  }

 private:
  const uint8_t* bytes_;
  size_t left_;
};

// Prints what is wrong and aborts the process, so that the fuzzer notices it.
[[noreturn]] inline void Fail(const std::string& wrong) {
  fprintf(stderr, "WRONG: %s\n", wrong.c_str());
  abort();
}

// The same with the place; does nothing if `wrong` is empty.
inline void FailIf(const std::string& where, const std::string& wrong) {
  if (!wrong.empty()) Fail(where + ": " + wrong);
}

inline void Require(bool holds, const char* what) {
  if (!holds) Fail(what);
}

}  // namespace rolu_fuzz

#endif  // FUZZ_INPUT_H
