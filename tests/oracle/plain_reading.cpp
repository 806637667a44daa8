#include "tests/oracle/plain_reading.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace rolu_test {
namespace {

constexpr char kBlanks[] = " \t\n\v\f\r";

int DigitOf(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  const int lower = tolower(static_cast<unsigned char>(character));
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 99;
}

}  // namespace

std::vector<std::string> WholeLines(std::string_view bytes) {
  constexpr size_t kLongestLine = 63;
  std::vector<std::string> lines;
  for (size_t end = bytes.find_first_of("\r\n"); end != bytes.npos; end = bytes.find_first_of("\r\n")) {
    if (end > 0 && end <= kLongestLine) lines.emplace_back(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
  }
  return lines;
}

bool IsBracketed(std::string_view line) {
  return line.front() == '[' || line.back() == ']';
}

std::vector<std::string> ReplyLines(std::string_view bytes) {
  std::vector<std::string> replies;
  for (std::string& line : WholeLines(bytes)) {
    if (!IsBracketed(line)) replies.push_back(std::move(line));
  }
  return replies;
}

ROLU_STATUS StatusOfReply(std::string_view line) {
  // All further steps treat a reply as a C string.
  const std::string_view text = line.substr(0, line.find('\0'));
  for (const std::string_view error : kErrorReplies) {
    if (text.find(error) == text.npos) continue;
    return error == "ERR-M08" ? ROLU_STATUS_INVALID_PARAMETER : ROLU_STATUS_VPM_ERROR_REPLY;
  }
  return ROLU_STATUS_SUCCESS;
}

int32_t NumberOf(const std::string& text, int base) {
  size_t at = text.find_first_not_of(kBlanks);
  if (at == text.npos) return 0;
  const bool negative = text[at] == '-';
  if (negative || text[at] == '+') ++at;
  const auto digit_at = [&](size_t place) { return place < text.size() ? DigitOf(text[place]) : 99; };
  if (base == 16 && digit_at(at) == 0 && at + 1 < text.size() && tolower(text[at + 1]) == 'x' &&
      digit_at(at + 2) < base) {
    at += 2;
  }
  double value = 0;  // exact as far as it matters; it cannot overflow
  for (; digit_at(at) < base; ++at) value = value * base + digit_at(at);
  if (negative) value = -value;
  if (value > 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (value < -2147483648.0) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(value);
}

std::string FieldOf(const std::string& text, size_t position, size_t width) {
  return position < text.size() ? text.substr(position, width) : "";
}

int AlarmFieldOf(unsigned int byte) {
  constexpr int kWeights[] = {0, 40, 20, 10, 8, 4, 2, 1};
  int sum = 0;
  for (unsigned int bit = 0; bit < 8; ++bit) sum += (byte >> bit) % 2 == 1 ? kWeights[bit] : 0;
  return sum;
}

std::string DecimalOf(const std::string& text) {
  const auto digits_from = [&text](size_t at) {
    size_t end = at;
    while (end < text.size() && isdigit(static_cast<unsigned char>(text[end])) != 0) ++end;
    return end;
  };
  const size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
  const size_t sign = start < text.size() && (text[start] == '-' || text[start] == '+') ? 1 : 0;
  const size_t whole_end = digits_from(start + sign);
  size_t end = whole_end;
  size_t digits = whole_end - (start + sign);
  if (end < text.size() && text[end] == '.') {
    const size_t fraction_end = digits_from(end + 1);
    digits += fraction_end - (end + 1);
    end = fraction_end;
  }
  return digits > 0 ? text.substr(start, end - start) : "";
}

bool Pieces::Exactly(const std::string& wanted) {
  if (!Has(text_.compare(at_, wanted.size(), wanted) == 0)) return false;
  at_ += wanted.size();
  return true;
}

bool Pieces::Character() {
  if (!Has(at_ < text_.size())) return false;
  ++at_;
  return true;
}

std::optional<int> Pieces::Number(int base, size_t width) {
  SkipBlanks();
  const std::string piece = text_.substr(at_, width);
  size_t end = !piece.empty() && (piece[0] == '-' || piece[0] == '+') ? 1 : 0;
  int value = 0;
  bool is_number = false;
  if (base == 16 && (piece.compare(end, 2, "0x") == 0 || piece.compare(end, 2, "0X") == 0)) {
    end += 2;
    is_number = true;
  }
  for (; end < piece.size() && DigitOf(piece[end]) < base; ++end) {
    value = value * base + DigitOf(piece[end]);
    is_number = true;
  }
  if (!Has(is_number)) return std::nullopt;
  at_ += end;
  return piece[0] == '-' ? -value : value;
}

bool Pieces::Word() {
  SkipBlanks();
  return Has(at_ < text_.size());
}

void Pieces::SkipBlanks() {
  at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
}

}  // namespace rolu_test
