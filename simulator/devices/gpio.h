#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/devices/device_server.h"

namespace rolu_sim {

// The path of an attribute of a line, one of kGpioAttributes.
std::string GpioPath(int line, std::string_view attribute);

// The board's GPIO lines as sysfs shows them. A line's direction and value are there
// once a program has exported it: a second export answers EBUSY, that of any other line EINVAL. A
// line starts as an input; the direction "out" or "low" drives it low, "high" high.
class Gpio {
 public:
  // Adds the export attribute to `server`, which must outlive all programs' calls.
  explicit Gpio(DeviceServer& server);

  // Any thread may call these; `line` is one of the board's, else std::out_of_range is thrown.
  bool IsExported(int line) const;
  bool IsOutput(int line) const;
  // The level that the line has: what a program drives, or what the world outside does.
  bool Level(int line) const;
  // What the world outside drives; an output does not see it.
  void SetInput(int line, bool high);

  struct Line;
  using Lines = std::map<int, std::shared_ptr<Line>>;

 private:
  Lines lines_;
};

}  // namespace rolu_sim
