#include "simulator/program/options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "simulator/program/exit_status.h"

namespace rolu_sim {
namespace {

constexpr char kDescription[] =
    "Runs a program against a simulated board: the hardware that it opens is the board's.";

constexpr char kFooter[] =
    "Examples:\n"
    "  rolu-sim -- ./vehicle-app --verbose\n"
    "  rolu-sim --battery \"0s=12.6 2s=11.0 5s=12.8\" --print-wire -- ./vehicle-app\n"
    "\n"
    "Exit status: the program's own, or 128 and the number of the signal that ended it;\n"
    "2 wrong use, 125 the board cannot be set up, 126 the program cannot be run, 127 it is not found.\n"
    "\n"
    "Programs that are statically linked or set-user-ID, and raw system calls, do not see the board.";

class HelpText : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: rolu-sim [OPTIONS] [--] PROGRAM [ARGUMENT...]\n\n";
  }
};

std::string WhyNotACurve(const std::string& text) {
  try {
    VoltageCurve::Parse(text);
  } catch (const std::invalid_argument& problem) {
    return problem.what();
  }
  return {};
}

// The parser leaves a "--" before the program and takes an option it does not know for one.
std::vector<std::string> CommandIn(const CLI::App& app) {
  std::vector<std::string> rest = app.remaining();
  if (!rest.empty() && rest.front() == "--") {
    rest.erase(rest.begin());
  } else if (!rest.empty() && rest.front().substr(0, 1) == "-") {
    throw CLI::ExtrasError({rest.front()});
  }
  if (rest.empty()) throw CLI::RequiredError("PROGRAM");
  return rest;
}

}  // namespace

CommandLine ParseCommandLine(int argc, const char* const* argv) {
  Options options;
  int volts = 12;
  std::string curve;

  CLI::App app(kDescription, "rolu-sim");
  app.formatter(std::make_shared<HelpText>());
  app.footer(kFooter);
  app.prefix_command();
  app.set_version_flag("--version", "rolu-sim " ROLU_SIM_VERSION);
  app.add_option("--mode", volts, "Electrical system of the vehicle: 12 or 24 (volts)")
      ->check(CLI::IsMember({12, 24}))
      ->capture_default_str();
  app.add_option("--battery", curve,
                 "Voltage of the car battery over time, linear between the points: \"0s=12.6 2s=11.0\"")
      ->check(CLI::Validator(WhyNotACurve, "", "curve"));
  app.add_flag("--baud", options.paced, "Let bytes take the time of the 115200 bit/s line");
  app.add_flag("--print-wire", options.print_wire,
               "Print each line on the wire to standard error: seconds, > to the MCU or < from it, text");

  try {
    app.parse(argc, argv);
    options.command = CommandIn(app);
  } catch (const CLI::ParseError& stop) {
    if (stop.get_exit_code() == 0) return {std::nullopt, app.exit(stop)};
    std::cerr << "rolu-sim: " << stop.what() << "\nTry 'rolu-sim --help'.\n";
    return {std::nullopt, kWrongUse};
  }
  options.mode = volts == 24 ? BatteryMode::k24V : BatteryMode::k12V;
  if (!curve.empty()) options.battery = VoltageCurve::Parse(curve);
  return {std::move(options), 0};
}

}  // namespace rolu_sim
