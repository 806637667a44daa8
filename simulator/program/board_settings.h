#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/control/desk.h"
#include "simulator/scenario/scenario.h"
#include "simulator/trace/trace_record.h"

namespace rolu_sim {

// What a command line says about a board that it brings up.
struct BoardSettings {
  std::string scenario;  // a file or a name; empty: none
  std::string replay;    // a file; empty: none
  std::vector<std::string> faults;
  std::optional<std::uint32_t> seed;
  bool paced = false;
  int system_volts = 12;
  std::string battery;  // a curve; empty: a good battery
  std::string trace;    // a file, or -; empty: none
  std::string trace_format;
  bool fail_on_bite = false;
};

// A board's settings, read and checked before it comes up. Throws UsageError or ScenarioError, or
// std::system_error when the trace cannot be written.
class PreparedBoard {
 public:
  explicit PreparedBoard(const BoardSettings& settings);

  // `root_directory` may be empty. Once.
  DeskOptions TakeDeskOptions(const std::string& root_directory);

  // Brings a board that has just come up into its first state, and gives what is to happen to it.
  Scenario Start(Desk& desk);

 private:
  const BoardSettings settings_;
  Scenario scenario_;
  std::optional<Replay> replay_;
  std::vector<Action> faults_;
  std::optional<VoltageCurve> battery_;
  std::unique_ptr<TraceWriter> writer_;
};

}  // namespace rolu_sim
