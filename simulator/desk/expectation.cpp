#include "simulator/desk/expectation.h"

#include <fmt/format.h>
#include <signal.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/exit_status.h"
#include "cli/nearest_name.h"
#include "protocol/commands.h"
#include "protocol/values.h"
#include "simulator/desk/desk.h"

namespace rolu_sim {
namespace {

Parameter McuCommand(std::string name, std::string help) {
  Parameter parameter = Text(std::move(name), std::move(help));
  parameter.range = "the beginning of a command of the MCU, such as WDTR or MCUS3";
  parameter.parse = [](const Json& given) -> std::optional<Argument> {
    if (!given.is_string()) return std::nullopt;
    const auto text = given.get<std::string>();
    if (rolu_protocol::FindCommand(text) == nullptr) {
      throw std::invalid_argument(
          fmt::format("the MCU has no command \"{}\"{}", text, rolu::Suggestion(text, CommandCodes())));
    }
    return Argument{text, text};
  };
  return parameter;
}

Parameter Pin() {
  std::vector<std::string> lines;
  lines.reserve(rolu_protocol::kGpioLines.size());
  for (const int line : rolu_protocol::kGpioLines) lines.push_back(std::to_string(line));
  return OneOf("pin", lines, "the GPIO line");
}

// What cuts the power or switches the computer on.
Parameter EventCause() {
  std::vector<std::string> causes = {"ignition", "low-battery", "forced-shutdown",
                                     "suspend",  "ordered",     "alarm"};
  for (unsigned source = 0; source < rolu_protocol::kWakeupSources; ++source) {
    const bool is_of_its_own = rolu_protocol::IsWakeupSource(source) && source != rolu_protocol::kAlarmSource;
    if (is_of_its_own) causes.push_back(fmt::format("source-{}", source));
  }
  return OneOf("cause", causes, "only with this cause");
}

Parameter ProgramStatus(std::string help) {
  return Optional(Integer("status", 0, 255, std::move(help)));
}

bool EndsWith(const Arguments& wanted, const Occurrence& end) {
  return !wanted.Has("status") || wanted.Integer<int>("status") == end.status;
}

Verdict JudgeCommand(const Arguments& wanted, const Occurrence& occurrence) {
  const bool is_it = occurrence.kind == Occurrence::Kind::kCommand &&
                     occurrence.text.starts_with(wanted.Get<std::string>("command"));
  return is_it ? Verdict::kMet : Verdict::kPending;
}

Verdict JudgeEvent(const Arguments& wanted, const Occurrence& occurrence) {
  const bool is_it = occurrence.kind == Occurrence::Kind::kEvent &&
                     occurrence.text == wanted.Get<std::string>("event") &&
                     (!wanted.Has("cause") || occurrence.cause == wanted.Get<std::string>("cause"));
  return is_it ? Verdict::kMet : Verdict::kPending;
}

Verdict JudgeEnd(const Arguments& wanted, const Occurrence& occurrence) {
  if (occurrence.kind != Occurrence::Kind::kProgramEnd) return Verdict::kPending;
  return EndsWith(wanted, occurrence) ? Verdict::kMet : Verdict::kFailed;
}

// A program that a signal ended did not shut down by itself.
Verdict JudgeShutdown(const Arguments& wanted, const Occurrence& occurrence) {
  if (occurrence.kind == Occurrence::Kind::kEvent && occurrence.text == NameOf(McuEventKind::kPowerCut))
    return Verdict::kFailed;
  if (occurrence.kind != Occurrence::Kind::kProgramEnd) return Verdict::kPending;
  const bool by_itself =
      occurrence.status < rolu::kSignalBase || occurrence.status > rolu::kSignalBase + SIGRTMAX;
  return by_itself && EndsWith(wanted, occurrence) ? Verdict::kMet : Verdict::kFailed;
}

Verdict JudgeRunning(const Arguments& /*wanted*/, const Occurrence& occurrence) {
  return occurrence.kind == Occurrence::Kind::kProgramEnd ? Verdict::kFailed : Verdict::kPending;
}

int LineOf(const Arguments& wanted) {
  return std::stoi(wanted.Get<std::string>("pin"));
}

int LevelOf(Desk& desk, int line) {
  return desk.board().gpio().Level(line) ? 1 : 0;
}

std::string StillRuns(Desk& /*desk*/, const Arguments& /*wanted*/) {
  return "the program still runs";
}

}  // namespace

const std::vector<ExpectationKind>& ExpectationKinds() {
  static const std::vector<ExpectationKind> kinds = {
      {.verb = {.name = "command",
                .help = "The program sends a command to the MCU",
                .parameters = {McuCommand("command", "the command, or its beginning"),
                               Optional(Integer("times", 1, 1000000, "how often"), 1)}},
       .judge = JudgeCommand},
      {.verb = {.name = "event",
                .help = "An event of the board comes",
                .parameters = {OneOf("event", BoardEventNames(), "the event"), Optional(EventCause())}},
       .judge = JudgeEvent},
      {.verb = {.name = "pin",
                .help = "A GPIO line has a level, or gets it",
                .parameters = {Pin(), Integer("level", 0, 1, "the level")}},
       .holds =
           [](Desk& desk, const Arguments& wanted) {
             return LevelOf(desk, LineOf(wanted)) == wanted.Integer<int>("level");
           },
       .instead =
           [](Desk& desk, const Arguments& wanted) {
             const int line = LineOf(wanted);
             return fmt::format("pin {} is {}", line, LevelOf(desk, line));
           }},
      {.verb = {.name = "backlight",
                .help = "The display's backlight has a level, or gets it",
                .parameters = {Integer("level", 0, Backlight::kHighestLevel, "the level")}},
       .holds =
           [](Desk& desk, const Arguments& wanted) {
             return desk.board().backlight().level() == wanted.Integer<int>("level");
           },
       .instead =
           [](Desk& desk, const Arguments& /*wanted*/) {
             return fmt::format("its level is {}", desk.board().backlight().level());
           }},
      {.verb = {.name = "end",
                .help = "The program ends",
                .parameters = {ProgramStatus(
                    "only with this exit status: 128 and the signal's number if one ended it")}},
       .judge = JudgeEnd,
       .instead = StillRuns,
       .is_of_program = true},
      {.verb = {.name = "shutdown",
                .help = "The program ends by itself before the power is cut",
                .parameters = {ProgramStatus("only with this exit status")}},
       .judge = JudgeShutdown,
       .instead = StillRuns,
       .is_of_program = true},
      {.verb = {.name = "running", .help = "The program still runs at the end of the time"},
       .judge = JudgeRunning,
       .is_of_program = true,
       .is_met_by_time = true},
  };
  return kinds;
}

const std::vector<Verb>& ExpectationVerbs() {
  static const std::vector<Verb> verbs = [] {
    std::vector<Verb> all;
    for (const ExpectationKind& kind : ExpectationKinds()) all.push_back(kind.verb);
    return all;
  }();
  return verbs;
}

long Expectation::Times() const {
  return arguments.Has("times") ? arguments.Integer<long>("times") : 1;
}

std::string Describe(const Expectation& expectation) {
  std::string text = expectation.kind->verb.name;
  for (const auto& [name, argument] : expectation.arguments.all()) {
    const bool is_the_thing_itself = name == expectation.kind->verb.name;
    if (name == "times" && expectation.Times() == 1) continue;
    text += is_the_thing_itself ? ' ' + argument.text : fmt::format(", {} {}", name, argument.text);
  }
  return text;
}

const std::vector<std::string>& BoardEventNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    all.reserve(kMcuEventNames.size());
    for (const McuEventName& event : kMcuEventNames) all.emplace_back(event.name);
    return all;
  }();
  return names;
}

const std::vector<std::string>& CommandCodes() {
  static const std::vector<std::string> codes = [] {
    std::vector<std::string> all;
    for (const rolu_protocol::Command& command : rolu_protocol::kCommands) all.emplace_back(command.code);
    return all;
  }();
  return codes;
}

}  // namespace rolu_sim
