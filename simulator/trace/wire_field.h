#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rolu_sim {

// Takes one field from the front of `text` and says it in words; nothing when it is malformed.
using FieldReader = std::optional<std::string> (*)(std::string_view& text);

// The fields of a line, which must be all of it; nothing when a field is malformed or text is left.
std::optional<std::vector<std::string>> ReadFields(std::string_view text,
                                                   const std::vector<FieldReader>& readers);

// Numbers of a fixed width, said in decimal.
std::optional<std::string> ReadHex2(std::string_view& text);
std::optional<std::string> ReadHex4(std::string_view& text);
std::optional<std::string> ReadSigned16(std::string_view& text);

// The rest of the line.
std::optional<std::string> ReadHexNumber(std::string_view& text);
std::optional<std::string> ReadDecimalNumber(std::string_view& text);
std::optional<std::string> ReadText(std::string_view& text);

// One character.
std::optional<std::string> ReadCharacter(std::string_view& text);
std::optional<std::string> ReadSwitch(std::string_view& text);      // "on", "off"
std::optional<std::string> ReadProtection(std::string_view& text);  // "pre-boot", "low-battery"
std::optional<std::string> ReadSystem(std::string_view& text);      // "24 V", "12 V"
std::optional<std::string> ReadDelayType(std::string_view& text);

// Two digits for a battery system, as the battery mode has them.
std::optional<std::string> ReadSystemByte(std::string_view& text);

// The wake-up source and its switch, whose widths are not fixed.
std::optional<std::string> ReadWakeupSource(std::string_view& text);
std::optional<std::string> ReadWakeupCode(std::string_view& text);
std::optional<std::string> ReadSourceMask(std::string_view& text);
std::optional<std::string> ReadIgnition(std::string_view& text);

// 7 and 3 bytes of the clock and of the wake-up alarm.
std::optional<std::string> ReadClockTime(std::string_view& text);
std::optional<std::string> ReadAlarmTime(std::string_view& text);

std::optional<std::string> ReadMillivolts(std::string_view& text);
std::optional<std::string> ReadTenthsOfKelvin(std::string_view& text);
std::optional<std::string> ReadStatusBits(std::string_view& text);

}  // namespace rolu_sim
