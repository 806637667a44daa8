#include "simulator/program/board_settings.h"

#include <algorithm>
#include <random>
#include <utility>

#include "simulator/scenario/scenario_files.h"

namespace rolu_sim {
namespace {

// A file is for programs to read, the terminal for people.
TraceFormat FormatOf(const BoardSettings& settings) {
  if (settings.trace_format == "json") return TraceFormat::kJson;
  if (settings.trace_format == "text") return TraceFormat::kText;
  return settings.trace == "-" ? TraceFormat::kText : TraceFormat::kJson;
}

Scenario ReadScenario(const std::string& file_or_name) {
  const ScenarioFile file = ReadScenarioFile(file_or_name);
  return ParseScenario(file.text, file.name);
}

// A file that cannot be played back is the user's mistake, as any other word of the command line.
Replay ReadReplay(const std::string& path) {
  try {
    return Replay::FromFile(path);
  } catch (const std::runtime_error& problem) {
    throw UsageError(problem.what());
  }
}

Scenario::Event SendingOf(const Replay::EarlyLine& early) {
  return {std::chrono::duration_cast<std::chrono::milliseconds>(early.time),
          {FindVerb("send"), Arguments(Json{{"text", early.line}})}};
}

}  // namespace

PreparedBoard::PreparedBoard(const BoardSettings& settings) : settings_(settings) {
  if (!settings.scenario.empty()) scenario_ = ReadScenario(settings.scenario);
  if (!settings.replay.empty()) {
    replay_ = ReadReplay(settings.replay);
    for (const Replay::EarlyLine& early : replay_->early_lines())
      scenario_.events.push_back(SendingOf(early));
    std::stable_sort(
        scenario_.events.begin(), scenario_.events.end(),
        [](const Scenario::Event& one, const Scenario::Event& other) { return one.at < other.at; });
  }
  for (const std::string& fault : settings.faults) faults_.push_back(ParseFault(fault));
  if (!settings.battery.empty()) battery_ = VoltageCurve::Parse(settings.battery);
  if (!settings.trace.empty()) writer_ = std::make_unique<TraceWriter>(settings.trace, FormatOf(settings));
}

DeskOptions PreparedBoard::TakeDeskOptions(const std::string& root_directory) {
  DeskOptions options;
  options.root_directory = root_directory;
  options.paced = settings_.paced;
  options.seed = settings_.seed ? *settings_.seed : std::random_device{}();
  options.replay = std::move(replay_);
  if (writer_) options.listener = [this](const TraceRecord& record) { writer_->Write(record); };
  return options;
}

Scenario PreparedBoard::Start(Desk& desk) {
  desk.board().mcu().WithModel([&](McuModel& mcu) {
    mcu.SetVehicle(settings_.system_volts == 24 ? BatteryMode::k24V : BatteryMode::k12V);
    if (battery_) mcu.SetBatteryCurve(*battery_, std::chrono::steady_clock::now());
  });
  for (const Action& fault : faults_) desk.Apply(fault);
  return std::move(scenario_);
}

}  // namespace rolu_sim
