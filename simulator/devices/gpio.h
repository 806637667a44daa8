#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/devices/device_server.h"

namespace rolu_sim {

// The path of an attribute of a line, one of kGpioAttributes.
std::string GpioPath(int line, std::string_view attribute);

// The board's GPIO lines as sysfs shows them. The direction and value files of a line appear when a program
// exports the line. A second export fails with EBUSY; an export of any other number fails with EINVAL. A line
// starts as an input; the direction "out" or "low" drives it low, "high" drives it high.
class Gpio {
 public:
  // Adds the export attribute to `server`, which must outlive this object and all calls of programs.
  explicit Gpio(DeviceServer& server);

  // Any thread may call these. They throw std::out_of_range if `line` is not a line of the board.
  bool IsExported(int line) const;
  bool IsOutput(int line) const;
  // The level of the line: a program drives an output, the world outside drives an input.
  bool Level(int line) const;
  // Sets the level that the world outside drives. It does not change the level of an output.
  void SetInput(int line, bool high);

  // The kernel starts: all lines are inputs again, and none is exported.
  void Restart();

  struct Line;
  using Lines = std::map<int, std::shared_ptr<Line>>;

 private:
  DeviceServer& server_;
  Lines lines_;
};

}  // namespace rolu_sim
