#include "simulator/program/board_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <random>
#include <utility>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "simulator/desk/mcu_settings.h"
#include "simulator/program/board_programs.h"
#include "simulator/program/child_process.h"
#include "simulator/program/installed_files.h"

namespace rolu_sim {
namespace {

// Turns what `read` throws into an error of the option's value.
template <typename Read>
void ReadValueOf(const std::string& option, Read read) {
  try {
    read();
  } catch (const std::exception& problem) {
    throw CLI::ValidationError(option, problem.what());
  }
}

// Programs read a file, people read the terminal.
TraceFormat FormatOf(const BoardSettings& settings) {
  if (settings.trace_format.empty()) return settings.trace == "-" ? TraceFormat::kText : TraceFormat::kJson;
  return settings.trace_format == "json" ? TraceFormat::kJson : TraceFormat::kText;
}

ReplayRule RuleOf(const BoardSettings& settings) {
  if (settings.strict_replay) return ReplayRule::kStrict;
  return settings.lenient_replay ? ReplayRule::kLenient : ReplayRule::kReported;
}

Action ParseMcuSetting(const std::string& text) {
  const auto [name, value] = SplitMcuSetting(text);
  McuSettingOrder(name, value);  // refuses an impossible value
  const Verb* const set = FindVerb("set");
  return {set, CheckArguments(*set, {{"setting", name}, {"value", value}})};
}

// An option that runs a verb at the start.
void AddVerbOption(CLI::App& command, const std::string& option, const std::string& verb_name,
                   std::vector<Action>& actions, const std::string& type, const std::string& help) {
  const auto add = [option, verb_name, &actions](const std::string& value) {
    ReadValueOf(option, [&] {
      const Verb* const verb = FindVerb(verb_name);
      actions.push_back({verb, CheckArguments(*verb, MembersFromWords(*verb, {value}))});
    });
  };
  command.add_option_function<std::string>(option, add, help)->type_name(type);
}

// An option that may be repeated; `parse` makes a verb for the start of each value.
void AddActionOption(CLI::App& command, const std::string& option, Action (*parse)(const std::string& text),
                     std::vector<Action>& actions, const std::string& type, const std::string& help) {
  const auto add = [option, parse, &actions](const std::vector<std::string>& texts) {
    ReadValueOf(option, [&] { std::ranges::transform(texts, std::back_inserter(actions), parse); });
  };
  command.add_option_function<std::vector<std::string>>(option, add, help)
      ->type_name(type)
      ->take_all()
      ->allow_extra_args(false);
}

void AddMcuSettings(CLI::App& command, BoardSettings& settings) {
  AddVerbOption(command, "--mcu-speed", "mcu-speed", settings.mcu, "NUMBER",
                "Let the MCU's own time run this many times as fast: its delays, watchdog, clock and alarm");
  AddVerbOption(command, "--mcu-unit", "mcu-unit", settings.mcu, "DURATION",
                "Length of the MCU's unit, in which delays and the watchdog's time are (else 1s)");
  AddActionOption(command, "--set", ParseMcuSetting, settings.mcu, "NAME=VALUE",
                  "A setting of the MCU from the start, as rolu list names it: ignition.hard-off-delay=3");
}

}  // namespace

void AddBoardSettings(CLI::App& command, BoardSettings& settings) {
  command
      .add_option("--scenario", settings.scenario, "Play a scenario: a file, or the name of a ready-made one")
      ->type_name("FILE");
  CLI::Option* const replay =
      command.add_option("--replay", settings.replay, "Answer as the MCU did in a recorded trace")
          ->type_name("FILE");
  CLI::Option* const strict =
      command
          .add_flag("--strict", settings.strict_replay,
                    "With --replay: end at the first command that the recording does not have")
          ->needs(replay);
  command
      .add_flag("--lenient", settings.lenient_replay,
                "With --replay: another dialogue than the recorded one is no failure")
      ->needs(replay)
      ->excludes(strict);
  AddActionOption(command, "--fault", ParseFault, settings.faults, "FAULT",
                  "A fault from the start, as silence:MCVG or delay:any:200ms:times=3; ctl --help lists them "
                  "(without fault-)");
  command.add_option("--seed", settings.seed, "Seed of the random faults; without it each run has another")
      ->type_name("NUMBER")
      ->check(CLI::Range(std::uint32_t{0}, std::numeric_limits<std::uint32_t>::max()));
  command
      .add_option_function<std::string>(
          "--battery",
          [&](const std::string& curve) {
            ReadValueOf("--battery", [&] { settings.battery = VoltageCurve::Parse(curve); });
          },
          "Voltage of the car battery over time, linear between the points: \"0s=12.6 2s=11.0\"")
      ->type_name("CURVE");
  command.add_option("--mode", settings.system_volts, "Electrical system of the vehicle: 12 or 24 (volts)")
      ->check(CLI::IsMember({12, 24}))
      ->type_name("VOLTS")
      ->capture_default_str();
  AddMcuSettings(command, settings);
  command.add_flag("--baud", settings.paced, "Let bytes take the time of the 115200 bit/s line");
  command
      .add_option("--trace", settings.trace, "Write each line on the wire to a file, or - for standard error")
      ->type_name("FILE");
  command
      .add_option("--trace-format", settings.trace_format,
                  "json (the default for a file) or text (the default for -)")
      ->check(CLI::IsMember({"json", "text"}))
      ->type_name("FORMAT");
  command.add_flag("--survive-power-cut", settings.survive_power_cut,
                   "Report power cuts and resets by programs only: the programs go on");
  command.add_flag("--survive-bite", settings.survive_bite,
                   "Report bites of the watchdog only: the programs go on");
  command.add_flag("--fail-on-bite", settings.fail_on_bite, "Exit with status 6 if the watchdog bit");
}

PreparedBoard::PreparedBoard(const BoardSettings& settings) : settings_(settings) {
  if (!settings.scenario.empty()) {
    const ScenarioFile file = ReadScenarioFile(settings.scenario);
    scenario_ = ParseScenario(file.text, file.name);
  }
  if (!settings.replay.empty()) {
    const Verb* const send = FindVerb("send");
    replay_ = std::make_unique<Replay>(settings.replay, RuleOf(settings));
    for (const Replay::EarlyLine& early : replay_->early_lines()) {
      Scenario::Step step;
      step.delay = std::chrono::duration_cast<std::chrono::milliseconds>(early.time);
      step.action = {send, CheckArguments(*send, {{"text", early.line}})};
      step.place = settings.replay;
      scenario_.steps.push_back(std::move(step));
    }
  }
  if (!settings.trace.empty()) writer_ = std::make_unique<TraceWriter>(settings.trace, FormatOf(settings));
}

DeskOptions PreparedBoard::TakeDeskOptions(const std::string& root_directory) {
  DeskOptions options;
  options.root_directory = root_directory;
  options.paced = settings_.paced;
  options.survive_power_cut = settings_.survive_power_cut;
  options.survive_bite = settings_.survive_bite;
  options.seed = settings_.seed ? *settings_.seed : std::random_device{}();
  options.replay = std::move(replay_);
  options.on_divergence = EndProgram;
  if (writer_) options.listener = [this](const TraceRecord& record) { writer_->Write(record); };
  return options;
}

Scenario PreparedBoard::Start(Desk& desk) {
  desk.board().mcu().WithModel([&](McuModel& mcu) {
    mcu.SetVehicle(settings_.system_volts == 24 ? BatteryMode::k24V : BatteryMode::k12V);
    if (settings_.battery) mcu.SetBatteryCurve(*settings_.battery, std::chrono::steady_clock::now());
  });
  desk.OnEvent(
      [directory = desk.board().root().path()](const McuEvent& event) { FollowComputer(event, directory); });
  for (const Action& order : settings_.mcu) desk.Apply(order);
  for (const Action& fault : settings_.faults) desk.Apply(fault);
  return std::move(scenario_);
}

int PreparedBoard::Conclude(Desk& desk, int status, const ScenarioOutcome& outcome) const {
  const Replay* const replay = desk.replay();
  if (replay != nullptr) rolu::Say(replay->Summary());
  if (status == rolu::kNotFound || status == rolu::kNotExecutable) return status;
  if (outcome.failed) return rolu::kUnexpected;
  if (replay != nullptr && replay->rule() == ReplayRule::kStrict && replay->LacksCommands()) {
    return rolu::kDiverged;
  }
  if (outcome.settled_early || outcome.is_status_expected) status = rolu::kDone;
  const bool is_bite_expected =
      outcome.expected_events.contains(std::string(NameOf(McuEventKind::kWatchdogBite)));
  if (settings_.fail_on_bite && desk.BiteCount() > 0 && !is_bite_expected) {
    rolu::SayProblem(fmt::format("failed: the watchdog bit (--fail-on-bite); bites: {}", desk.BiteCount()));
    return rolu::kBitten;
  }
  const bool has_diverged =
      replay != nullptr && replay->rule() != ReplayRule::kLenient && replay->HasDiverged();
  if (!has_diverged || status != rolu::kDone) return status;
  rolu::SayProblem("failed: the replay diverged from its recording (--lenient lets that pass)");
  return rolu::kDiverged;
}

}  // namespace rolu_sim
