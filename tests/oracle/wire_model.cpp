#include "tests/oracle/wire_model.h"

namespace rolu_test {

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
  // A reply is a C string for all that follows.
  const std::string_view text = line.substr(0, line.find('\0'));
  for (const std::string_view error : kErrorReplies) {
    if (text.find(error) == text.npos) continue;
    return error == "ERR-M08" ? ROLU_STATUS_INVALID_PARAMETER : ROLU_STATUS_VPM_ERROR_REPLY;
  }
  return ROLU_STATUS_SUCCESS;
}

}  // namespace rolu_test
