#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/mcu/battery.h"
#include "simulator/mcu/voltage_curve.h"

namespace rolu_sim {

struct Options {
  bool paced = false;
  bool print_wire = false;
  BatteryMode mode = BatteryMode::k12V;
  std::optional<VoltageCurve> battery;
  std::vector<std::string> command;  // the program and its arguments; at least one
};

// What the command line asks for: a run, or only an exit status (help, version, wrong use) after
// its text has been printed.
struct CommandLine {
  std::optional<Options> options;
  int exit_status = 0;
};

CommandLine ParseCommandLine(int argc, const char* const* argv);

}  // namespace rolu_sim
