#pragma once

#include <string>
#include <string_view>

namespace rolu_sim {

// The bytes of a line as a text: those that are not printable as \xNN.
std::string Printable(std::string_view bytes);
bool IsPrintable(std::string_view bytes);

std::string ToHex(std::string_view bytes);

}  // namespace rolu_sim
