#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/desk/scenario.h"

namespace rolu_sim {

// What a command line says about a board that it brings up.
struct BoardSettings {
  std::string scenario;  // a file or a name; empty: none
  std::string replay;    // a file; empty: none
  std::vector<Action> faults;
  std::optional<std::uint32_t> seed;
  bool paced = false;
  int system_volts = 12;
  std::optional<VoltageCurve> battery;  // nothing: a good battery
  std::string trace;                    // a file, or -; empty: none
  std::string trace_format;
  bool fail_on_bite = false;
};
void AddBoardSettings(CLI::App& command, BoardSettings& settings);

// A board's settings, read and checked before it comes up. Throws UsageError, or std::system_error when the
// trace cannot be written.
class PreparedBoard {
 public:
  explicit PreparedBoard(const BoardSettings& settings);

  // `root_directory` may be empty. Once.
  DeskOptions TakeDeskOptions(const std::string& root_directory);

  // Brings a board that has just come up into its first state, and gives what is to happen to it.
  Scenario Start(Desk& desk);

  // Says what is to be said of a board at its end, and gives the exit status that it makes of the program's.
  int Conclude(Desk& desk, int status) const;

 private:
  const BoardSettings& settings_;
  Scenario scenario_;
  std::unique_ptr<Replay> replay_;
  std::unique_ptr<TraceWriter> writer_;
};

}  // namespace rolu_sim
