#include "soak/wire_code.h"

#include <fmt/format.h>

#include <algorithm>
#include <bitset>
#include <cstddef>

namespace rolu_soak {
namespace {

using Form = AnswerForm;

constexpr WireCode kCodes[] = {
    {"Hello", kAnyLane, Form::kOk, false},
    {"ATF0", kLaneDelays, Form::kFirmware},
    {"MCVU2", kLaneDelays, Form::kScale24V, false, false},
    {"MCVU3", kLaneDelays, Form::kScale12V, false, false},
    {"MCPR2", kLaneDelays, Form::kRange},
    {"MCPR3", kLaneDelays, Form::kRange},
    {"MCUG0", kLaneDelays, Form::kWord},
    {"MCUG1", kLaneDelays, Form::kWord},
    {"MCUG2", kLaneDelays, Form::kWord},
    {"MCUG3", kLaneDelays, Form::kWord},
    {"MCUG4", kLaneDelays, Form::kWord},
    {"MCUG6", kLaneModes, Form::kWord},
    {"MCUG7", kLaneModes, Form::kWord},
    {"MCUS0", kLaneDelays, Form::kOk},
    {"MCUS1", kLaneDelays, Form::kOk},
    {"MCUS2", kLaneDelays, Form::kOk},
    {"MCUS3", kLaneDelays, Form::kOk},
    {"MCUS4", kLaneDelays, Form::kOk},
    {"MCUS6", kLaneModes, Form::kOk},
    {"MCUS7", kLaneModes, Form::kOk},
    {"MSDG", kLaneModes, Form::kWord},
    {"MSDS", kLaneModes, Form::kOk},
    {"MSSG", kLaneModes, Form::kBit},
    {"MSSS", kLaneModes, Form::kOk},
    {"MPAG", kLaneModes, Form::kBit},
    {"MPAS", kLaneModes, Form::kOk},
    {"IGNG", kLaneModes, Form::kOnOrOff},
    {"IGMG", kLaneModes, Form::kOneOrTwo},
    {"IGMS", kLaneModes, Form::kOk},
    {"MCAG", kLaneModes, Form::kTwoDigits},
    {"MCAS", kLaneModes, Form::kOk},
    {"ATF1", kLaneModes, Form::kPlatform},
    {"ATPO", kLaneModes, Form::kOk},
    {"MCBG", kLaneBattery, Form::kBatteryMode},
    {"MCVG", kLaneBattery, Form::kWord},
    {"MCBS", kLaneBattery, Form::kOk},
    {"MCCG", kLaneBattery, Form::kTwoBits},
    {"MCCS", kLaneBattery, Form::kOk},
    {"MCPG20", kLaneBattery, Form::kWord},
    {"MCPG21", kLaneBattery, Form::kWord},
    {"MCPG30", kLaneBattery, Form::kWord},
    {"MCPG31", kLaneBattery, Form::kWord},
    {"MCPS", kLaneBattery, Form::kOk},
    {"B03", kLaneClock, Form::kWord},
    {"B04", kLaneClock, Form::kWord},
    {"B05", kLaneClock, Form::kSixteenBits},
    {"B08", kLaneClock, Form::kWord},
    {"B09", kLaneClock, Form::kWord},
    {"B11", kLaneClock, Form::kWord},
    {"B12", kLaneClock, Form::kWord},
    {"B22", kLaneClock, Form::kWord},
    {"RTCG", kLaneClock, Form::kClock},
    {"RTCS", kLaneClock, Form::kTwoOks},
    {"RTAG", kLaneClock, Form::kAlarm},
    {"RTAS", kLaneClock, Form::kOk},
    {"SDMG", kLaneClock, Form::kTwoBits},
    {"SDMS", kLaneClock, Form::kOk},
    {"WKMG", kLaneClock, Form::kElevenBits},
    {"WKMS", kLaneClock, Form::kOk},
    {"WKSG", kLaneClock, Form::kWakeupCode},
    {"EEDF", kLaneClock, Form::kOk},
    {"WDTE", kLaneWatchdog, Form::kOk},
    {"WDTD", kLaneWatchdog, Form::kOk},
    {"WDTR", kLaneWatchdog, Form::kOk},
    {"WDTG", kLaneWatchdog, Form::kWord},
    {"WDTS", kLaneWatchdog, Form::kOk},
    {"GSO", kLaneSensor, Form::kOk, false},
    {"GSF", kLaneSensor, Form::kOk},
    {"GSV", kLaneSensor, Form::kSample},
    {"GSRG", kLaneSensor, Form::kResolution},
    {"GSRS", kLaneSensor, Form::kOk},
    {"ARGI", kLaneSensor, Form::kOk},
    {"GSIG", kLaneThresholds, Form::kByte},
    {"GSIS", kLaneThresholds, Form::kOk},
    {"GSWG", kLaneThresholds, Form::kByte},
    {"GSWS", kLaneThresholds, Form::kOk},
    {"MCG", kLanePeripherals, Form::kBit},
    {"MCS", kLanePeripherals, Form::kOk},
};

// The steps of a generator whose numbers show no pattern in any of their bits.
std::uint64_t Scatter(std::uint64_t number) {
  number += 0x9E3779B97F4A7C15U;
  number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31U);
}

std::uint64_t RowOf(const WireCode& code) {
  std::uint64_t row = 0;
  for (const WireCode& other : kCodes) {
    if (other.code == code.code) break;
    if (other.form == Form::kWord) ++row;
  }
  return row;
}

// The MCU's alarm bytes are binary-coded decimals with the order of the bits reversed.
unsigned int AlarmByte(std::uint64_t value) {
  const auto decimal = static_cast<unsigned int>(value / 10 << 4U | value % 10);
  unsigned int reversed = 0;
  for (unsigned int bit = 0; bit < 8; ++bit) reversed |= (decimal >> bit & 1U) << (7 - bit);
  return reversed;
}

std::string Bits(std::uint64_t number, unsigned int count) {
  std::string text;
  for (unsigned int bit = 0; bit < count; ++bit) text += (number >> bit & 1U) != 0 ? '1' : '0';
  return text;
}

}  // namespace

const WireCode* FindWireCode(std::string_view command) {
  const WireCode* found = nullptr;
  for (const WireCode& row : kCodes) {
    if (command.substr(0, row.code.size()) != row.code) continue;
    if (found == nullptr || row.code.size() > found->code.size()) found = &row;
  }
  return found;
}

std::uint64_t DrawNumber(const WireCode& code, std::uint64_t running) {
  const std::uint64_t any = Scatter(running);
  switch (code.form) {
    case Form::kWord: {
      constexpr unsigned int kRunningBits = 11;
      return RowOf(code) << kRunningBits | (running & ((1U << kRunningBits) - 1));
    }
    case Form::kByte:
      return any & 0xFFU;
    case Form::kResolution:
      return any & 3U;
    case Form::kBit:
    case Form::kOneOrTwo:
    case Form::kOnOrOff:
    case Form::kBatteryMode:
      return any & 1U;
    case Form::kTwoBits:
      return any & 3U;
    case Form::kElevenBits:
      return any & 0x7FFU;
    case Form::kSixteenBits:
      return any & 0xFFFFU;
    case Form::kTwoDigits:
      return any % 100;
    case Form::kWakeupCode:
      return any % kWakeupCodes.size();
    case Form::kClock:
      return any & 0xFFFFFFFFFFFFFFU;
    case Form::kAlarm:
      return any % 60 | (any >> 8U) % 24 << 8U | (any >> 16U) % 7 << 16U;
    case Form::kSample:
    case Form::kPlatform:
      return any & 0xFFFFFFFFFFFFU;
    default:
      return 0;
  }
}

std::string AnswerText(AnswerForm form, std::uint64_t number) {
  switch (form) {
    case Form::kWord:
      return fmt::format("{:04X}", number);
    case Form::kByte:
    case Form::kResolution:
      return fmt::format("{:02X}", number);
    case Form::kBit:
      return Bits(number, 1);
    case Form::kTwoBits:
      return Bits(number, 2);
    case Form::kElevenBits:
      return Bits(number, 11);
    case Form::kSixteenBits:
      return std::bitset<16>(number).to_string();
    case Form::kTwoDigits:
      return fmt::format("{:02}", number);
    case Form::kOneOrTwo:
      return number == 0 ? "1" : "2";
    case Form::kOnOrOff:
      return number == 0 ? "OFF" : "ON";
    case Form::kBatteryMode:
      return number == 0 ? "02" : "03";
    case Form::kWakeupCode:
      return std::string(kWakeupCodes.at(static_cast<std::size_t>(number)));
    case Form::kClock:
      return fmt::format("{:014X}", number);
    case Form::kAlarm:
      return fmt::format("{:02X}{:02X}{:02X}", AlarmByte(number >> 16U), AlarmByte(number >> 8U & 0xFFU),
                         AlarmByte(number & 0xFFU));
    case Form::kSample:
      return fmt::format("V{:012X}", number);
    case Form::kPlatform:
      return fmt::format("*PLT:{:012X}*", number);
    case Form::kFirmware:
      return "*VER:  1. 26*";
    case Form::kScale24V:
      return "0.01582";
    case Form::kScale12V:
      return "0.015385";
    case Form::kRange:
      return "02AA02EB030C";
    case Form::kOk:
    case Form::kTwoOks:
      break;
  }
  return "OK";
}

}  // namespace rolu_soak
