#include "soak/drawn_answer.h"

#include <fmt/format.h>

#include <bitset>

#include "protocol/values.h"

namespace rolu_soak {
namespace {

using rolu_protocol::Field;

// The steps of a generator whose numbers show no pattern in any of their bits.
std::uint64_t Scatter(std::uint64_t number) {
  number += 0x9E3779B97F4A7C15U;
  number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31U);
}

std::size_t Below(std::size_t limit, std::uint64_t any) {
  return static_cast<std::size_t>(any % limit);
}

std::string DrawnField(Field field, std::uint64_t running, std::uint64_t any) {
  switch (field) {
    case rolu_protocol::kDone:
      return "OK";
    case rolu_protocol::kWord:
    case rolu_protocol::kNumber:
    case rolu_protocol::kMillivolts:
    case rolu_protocol::kTenthsOfKelvin:
      return fmt::format("{:04X}", running & 0xFFFFU);
    case rolu_protocol::kSigned:
      return fmt::format("{:04X}", any & 0xFFFFU);
    case rolu_protocol::kByte:
      return fmt::format("{:02X}", any & 0xFFU);
    case rolu_protocol::kCharacter:
      return fmt::format("{}", any % 10);
    case rolu_protocol::kSwitch:
      return fmt::format("{}", any % 2);
    case rolu_protocol::kSystemByte:
      return fmt::format("{:02X}", rolu_protocol::kBatterySystems.at(Below(2, any)).number);
    case rolu_protocol::kSwitches:
      return std::bitset<rolu_protocol::kWakeupSources>(any).to_string();
    case rolu_protocol::kStatusBits:
      return std::bitset<16>(any).to_string();
    case rolu_protocol::kWakeupCode:
      return fmt::format("{:02X}",
                         rolu_protocol::kWakeupCodes.at(Below(rolu_protocol::kWakeupCodes.size(), any)).code);
    case rolu_protocol::kIgnition:
      return any % 2 == 0 ? "ON" : "OFF";
    case rolu_protocol::kClock:
      return fmt::format("{:014X}", any & 0xFFFFFFFFFFFFFFU);
    case rolu_protocol::kAlarm:
      return fmt::format("{:06X}", any & 0xFFFFFFU);
    default:
      return {};
  }
}

}  // namespace

std::string DrawnAnswer(const rolu_protocol::Command& command, std::uint64_t running) {
  if (command.code == "ATF1") return fmt::format("*PLT:{:012X}*", running);
  std::string line;
  std::uint64_t any = running;
  for (const Field field : command.answer_fields) line += DrawnField(field, running, any = Scatter(any));
  return line;
}

}  // namespace rolu_soak
