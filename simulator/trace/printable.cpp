#include "simulator/trace/printable.h"

#include <fmt/format.h>

#include <algorithm>

namespace rolu_sim {
namespace {

bool IsPrintableByte(char byte) {
  return byte >= ' ' && byte <= '~';
}

unsigned ValueOf(char byte) {
  return static_cast<unsigned char>(byte);
}

}  // namespace

bool IsPrintable(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), IsPrintableByte);
}

std::string Printable(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (IsPrintableByte(byte)) {
      text += byte;
    } else {
      text += fmt::format("\\x{:02X}", ValueOf(byte));
    }
  }
  return text;
}

std::string ToHex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) text += fmt::format("{:02X}", ValueOf(byte));
  return text;
}

}  // namespace rolu_sim
