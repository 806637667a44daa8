#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/desk/scenario_run.h"

namespace rolu_sim {

// The options of a command that brings up a board.
struct BoardSettings {
  std::string scenario;  // a file or a name; empty: none
  std::string replay;    // a file; empty: none
  bool strict_replay = false;
  bool lenient_replay = false;
  std::vector<Action> mcu;  // its speed, its unit and its settings
  std::vector<Action> faults;
  std::optional<std::uint32_t> seed;
  bool paced = false;
  int system_volts = 12;
  std::optional<VoltageCurve> battery;  // nothing: a good battery of the chosen system
  std::string trace;                    // a file, or -; empty: none
  std::string trace_format;
  bool survive_power_cut = false;
  bool survive_bite = false;
  bool fail_on_bite = false;
};
void AddBoardSettings(CLI::App& command, BoardSettings& settings);

// A board's settings, which are read and checked before the board comes up. Throws UsageError; throws
// std::system_error when the trace cannot be written.
class PreparedBoard {
 public:
  explicit PreparedBoard(const BoardSettings& settings);

  // The options for the desk. Call it once. `root_directory` may be empty.
  DeskOptions TakeDeskOptions(const std::string& root_directory);

  // Brings a board that has just come up into its first state, and gives the scenario to play.
  Scenario Start(Desk& desk);

  // Writes the messages for the end of a board. Gives the exit status, which may differ from the program's
  // `status` because of what the scenario, the replay and the board have shown.
  int Conclude(Desk& desk, int status, const ScenarioOutcome& outcome) const;

 private:
  const BoardSettings& settings_;
  Scenario scenario_;
  std::unique_ptr<Replay> replay_;
  std::unique_ptr<TraceWriter> writer_;
};

}  // namespace rolu_sim
