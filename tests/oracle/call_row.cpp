#include "tests/oracle/call_row.h"

namespace rolu_test {
namespace {

// A sanitizer would report that the function is declared otherwise.
__attribute__((no_sanitize("undefined"))) ROLU_STATUS CallWithByte(ROLU_STATUS (*set)(bool),
                                                                   unsigned int byte) {
  return reinterpret_cast<ROLU_STATUS (*)(unsigned int)>(reinterpret_cast<void (*)()>(set))(byte);
}

}  // namespace

CallRow Orders(std::string name, Call call, std::vector<Answer> answers, std::string wire,
               int post_delay_ms) {
  return {std::move(name), std::move(call), std::move(answers), ROLU_STATUS_SUCCESS, {},
          std::move(wire), post_delay_ms};
}

CallRow Gives(std::string name, Call call, std::vector<Answer> answers, Bytes output, std::string wire) {
  return {std::move(name),     std::move(call),   std::move(answers),
          ROLU_STATUS_SUCCESS, std::move(output), std::move(wire)};
}

CallRow Fails(std::string name, Call call, std::vector<Answer> answers, ROLU_STATUS status,
              std::string wire) {
  return {std::move(name), std::move(call), std::move(answers), status, {}, std::move(wire)};
}

CallRow Reads(CallRow row, std::vector<Reading> readings, ROLU_STATUS unreadable) {
  row.readings = std::move(readings);
  row.unreadable = unreadable;
  return row;
}

Call WithByte(ROLU_STATUS (*set)(bool), unsigned int byte) {
  return [set, byte](void*) { return CallWithByte(set, byte); };
}

Bytes Characters(std::string_view text, size_t size) {
  Bytes bytes(text.begin(), text.end());
  bytes.resize(size);
  return bytes;
}

std::vector<std::string> CommandsOf(const std::string& wire) {
  std::vector<std::string> commands;
  for (size_t start = 0; start < wire.size();) {
    const size_t end = wire.find('\r', start) + 1;
    commands.push_back(wire.substr(start, end - start));
    start = end;
  }
  return commands;
}

}  // namespace rolu_test
