#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace rolu {

// A digital pin of the board and the kernel's GPIO line behind it.
struct DigitalLine {
  std::string_view pin;
  std::string_view line;

  std::string ValueFile() const;
  // The level that the kernel tells, high or low; nothing while the line is not prepared.
  std::optional<bool> Level() const;

  bool operator==(const DigitalLine&) const = default;
};

inline constexpr std::array<DigitalLine, 2> kInputLines = {{{"in1", "gpio37"}, {"in2", "gpio36"}}};
inline constexpr std::array<DigitalLine, 2> kOutputLines = {{{"out1", "gpio35"}, {"out2", "gpio34"}}};
inline constexpr DigitalLine kGpsPowerLine = {"GPS power", "gpio45"};

// Whether the kernel has lines but none of them is prepared.
bool LinesAreUnprepared();
inline constexpr char kLinesAreUnprepared[] =
    "the lines are not prepared; 'rolu pins prepare' makes them available, with both outputs low";

}  // namespace rolu
