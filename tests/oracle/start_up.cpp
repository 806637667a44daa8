#include "tests/oracle/start_up.h"

#include <cstdio>

#include "tests/oracle/plain_reading.h"

namespace rolu_test {
namespace {

std::string TextOf(const std::optional<std::string>& reply) {
  return reply->substr(0, reply->find('\0'));
}

bool IsError(const std::string& text) {
  return StatusOfReply(text) != ROLU_STATUS_SUCCESS;
}

std::string PrintedFor(const std::string& firmware) {
  Pieces pieces(firmware);
  pieces.Exactly("*VER:");
  const int major = pieces.Number(10, 3).value_or(0);
  pieces.Exactly(".");
  const int minor = pieces.Number(10, 3).value_or(0);
  char line[100];
  snprintf(line, sizeof line, "[VPM] your version is %3d.%3d. It's must great then . 10\n", major, minor);
  return line;
}

void LearnScale(const std::string& text, float in_want, float& scale) {
  if (IsError(text)) {
    scale = in_want;
  } else if (text.find_first_of("eExXnN") != text.npos) {
    // Only the C library reads exponents, hexadecimal floats, infinities and the like.
    sscanf(text.c_str(), "%f", &scale);
  } else if (const std::string decimal = DecimalOf(text); !decimal.empty()) {
    scale = strtof(decimal.c_str(), nullptr);
  }
}

bool LearnRange(const std::string& text, float scale, BATTERY_INFO& range) {
  if (IsError(text)) return false;
  const auto volts = [&](size_t position) {
    return static_cast<float>(NumberOf(FieldOf(text, position, 4), 16)) * scale;
  };
  range.range_start = volts(0);
  range.range_mid = volts(4);
  range.range_mid_copy = volts(4);
  range.range_end = volts(8);
  return true;
}

}  // namespace

std::string StartUp::FaultOfLibrary(bool is_up) const {
  BATTERY_INFO ranges[2] = {};
  VPM_FIRMWARE_INFO name = {};
  if (KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE_12V, &ranges[0]) != ROLU_STATUS_SUCCESS ||
      KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE_24V, &ranges[1]) != ROLU_STATUS_SUCCESS)
    return "a range is not told";
  if (KAVO_ROLU_VPM_GetFWVersion(&name) != (is_up ? ROLU_STATUS_SUCCESS : ROLU_STATUS_NOT_INITIALIZED))
    return "the firmware is told while the family is down, or not while it is up";
  if (Written(ranges) != Written(range_12v, range_24v)) return "another range";
  return is_up && Written(name) != Characters(firmware, sizeof name) ? "another firmware" : "";
}

void StartUp::Learn(const Replies& replies) {
  const std::string text = TextOf(replies[1]).substr(0, 31);
  printed.clear();
  if (IsError(text)) return;
  firmware = text;
  printed = PrintedFor(text);
  LearnScale(TextOf(replies[2]), 0.01582F, scale_24v);
  LearnScale(TextOf(replies[3]), 0.015385F, scale_12v);
  if (LearnRange(TextOf(replies[4]), scale_12v, range_12v))
    LearnRange(TextOf(replies[5]), scale_24v, range_24v);
}

}  // namespace rolu_test
