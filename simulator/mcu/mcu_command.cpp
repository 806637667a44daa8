#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

AnswerLines AnswerOk() {
  return {"OK"};
}

AnswerLines RefuseParameter() {
  return {std::string(kRefusedParameterReply)};
}

std::string FormatHex(std::uint16_t value, std::size_t digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text(digits, '0');
  unsigned rest = value;
  for (std::size_t position = digits; position > 0; --position, rest >>= 4U) {
    text[position - 1] = kDigits[rest & 0xFU];
  }
  return text;
}

std::optional<std::uint16_t> ParseHex(std::string_view field) {
  if (field.empty() || field.size() > 4) return std::nullopt;
  unsigned value = 0;
  for (const char digit : field) {
    if (digit >= '0' && digit <= '9') {
      value = value * 16U + static_cast<unsigned>(digit - '0');
    } else if (digit >= 'A' && digit <= 'F') {
      value = value * 16U + static_cast<unsigned>(digit - 'A') + 10U;
    } else {
      return std::nullopt;
    }
  }
  return static_cast<std::uint16_t>(value);
}

std::optional<bool> ParseFlag(char field) {
  if (field != '0' && field != '1') return std::nullopt;
  return field == '1';
}

std::string FormatFlag(bool flag) {
  return flag ? "1" : "0";
}

AnswerLines SetFlag(bool& flag, char field) {
  const std::optional<bool> value = ParseFlag(field);
  if (!value) return RefuseParameter();
  flag = *value;
  return AnswerOk();
}

}  // namespace rolu_sim
