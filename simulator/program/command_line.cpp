#include "simulator/program/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "simulator/program/control_words.h"
#include "simulator/program/help_text.h"

namespace rolu_sim {
namespace {

constexpr char kDescription[] =
    "Runs programs against a simulated board: the hardware that they open is the board's.";

constexpr char kExamples[] =
    "Examples:\n"
    "  rolu-sim -- ./vehicle-app --verbose            the short form of rolu-sim run\n"
    "  rolu-sim --battery \"0s=12.6 2s=11.0\" -- ./vehicle-app\n"
    "  rolu-sim run --scenario cranking-dip --trace - -- ./vehicle-app\n"
    "  rolu-sim serve /tmp/desk                       a board for several programs and terminals\n"
    "  rolu-sim ctl --board /tmp/desk ignition off\n"
    "\n"
    "Programs that are statically linked or set-user-ID, and raw system calls, do not see the board.\n"
    "\n";

// A check that refuses with what `parse` throws.
template <typename Parse>
CLI::Validator CheckedBy(Parse parse, std::string name) {
  return CLI::Validator(
      [parse](std::string& text) {
        try {
          parse(text);
          return std::string();
        } catch (const std::exception& problem) {
          return std::string(problem.what());
        }
      },
      "", std::move(name));
}

// A time that a board can wait for.
void AddDuration(CLI::App& app, const std::string& name, std::chrono::milliseconds& value,
                 const std::string& help) {
  rolu::AddDurationOption(app, name, value, help, std::chrono::milliseconds(0), kLongestTime);
}

void AddBoardSettings(CLI::App& app, BoardSettings& settings) {
  app.add_option("--scenario", settings.scenario, "Play a scenario: a file, or the name of a ready-made one")
      ->type_name("FILE");
  app.add_option("--replay", settings.replay, "Answer as the MCU did in a recorded trace")->type_name("FILE");
  app.add_option("--fault", settings.faults,
                 "A fault from the start, as silence:MCVG or delay:any:200ms:times=3; ctl --help lists them "
                 "(without fault-)")
      ->type_name("FAULT")
      ->take_all()
      ->allow_extra_args(false)
      ->check(CheckedBy(ParseFault, "fault"));
  app.add_option("--seed", settings.seed, "Seed of the random faults; without it each run has another")
      ->type_name("NUMBER")
      ->check(CLI::Range(std::uint32_t{0}, std::numeric_limits<std::uint32_t>::max()));
  app.add_option("--battery", settings.battery,
                 "Voltage of the car battery over time, linear between the points: \"0s=12.6 2s=11.0\"")
      ->type_name("CURVE")
      ->check(CheckedBy(VoltageCurve::Parse, "curve"));
  app.add_option("--mode", settings.system_volts, "Electrical system of the vehicle: 12 or 24 (volts)")
      ->check(CLI::IsMember({12, 24}))
      ->type_name("VOLTS")
      ->capture_default_str();
  app.add_flag("--baud", settings.paced, "Let bytes take the time of the 115200 bit/s line");
  app.add_option("--trace", settings.trace, "Write each line on the wire to a file, or - for standard error")
      ->type_name("FILE");
  app.add_option("--trace-format", settings.trace_format,
                 "json (the default for a file) or text (the default for -)")
      ->check(CLI::IsMember({"json", "text"}))
      ->type_name("FORMAT");
  app.add_flag("--fail-on-bite", settings.fail_on_bite, "Exit with status 6 if the watchdog bit");
}

void AddBoardChoice(CLI::App& app, BoardChoice& board) {
  app.add_option("--board", board.directory,
                 "The board's directory; else the board that this program runs on")
      ->type_name("DIR");
  AddDuration(app, "--wait", board.patience, "Wait this long for the board to come up");
}

// The options of ctl may stand behind its words too, where the parser leaves what begins with a hyphen
// alone: it may be a negative number.
void BringOptionsForward(std::vector<std::string>& words) {
  auto front = words.begin() + 1;
  for (auto word = front; word != words.end();) {
    const bool takes_next = *word == "--board" || *word == "--wait";
    const bool is_option =
        takes_next || *word == "--json" || word->rfind("--board=", 0) == 0 || word->rfind("--wait=", 0) == 0;
    const auto end = word + (takes_next && word + 1 != words.end() ? 2 : 1);
    if (is_option) front = std::rotate(front, word, end);
    word = end;
  }
}

}  // namespace

CommandLine::CommandLine() : app_(kDescription, "rolu-sim") {
  app_.formatter(
      std::make_shared<HelpText>("rolu-sim [SUBCOMMAND] [OPTIONS] [--] [PROGRAM [ARGUMENT...]]", kExamples));
  app_.set_version_flag("--version", "rolu-sim " ROLU_SIM_VERSION);
  app_.require_subcommand(1);
  DefineRun();
  DefineServe();
  DefineJoin();
  DefineCtl();
  DefineTrace();
  DefineScenarios();
  AddSubcommand("man", "Prints the man page", "rolu-sim man", [this](CLI::App&) {
    std::cout << SimulatorManPage(app_);
    return 0;
  })->group("");
  AddSubcommand("completion", "Prints the completion for bash", "rolu-sim completion", [this](CLI::App&) {
    std::cout << SimulatorCompletion(app_);
    return 0;
  })->group("");
}

int CommandLine::Execute(std::vector<std::string> words) {
  const bool is_about_all =
      !words.empty() && (words[0] == "--help" || words[0] == "-h" || words[0] == "--version");
  short_form_ = !is_about_all && (words.empty() || FindSubcommand(words[0]) == nullptr);
  if (short_form_) words.insert(words.begin(), "run");
  TakeMarkedWords(words);
  if (words[0] == "ctl") BringOptionsForward(words);
  try {
    app_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    for (const auto& [subcommand, work] : works_) {
      if (subcommand->parsed()) return work(*subcommand);
    }
    return 0;
  } catch (const CLI::ParseError& stop) {
    return rolu::Conclude(app_, stop);
  }
}

// What stands behind the first "--" of a subcommand that runs a program is not for the parser.
void CommandLine::TakeMarkedWords(std::vector<std::string>& words) {
  const CLI::App* const subcommand = FindSubcommand(words[0]);
  const auto mark = std::find(words.begin(), words.end(), "--");
  if (subcommand == nullptr || !subcommand->get_prefix_command() || mark == words.end()) return;
  marked_words_.assign(mark, words.end());
  words.erase(mark, words.end());
}

// The words that are not options. The parser takes an option that it does not know for one of them.
std::vector<std::string> CommandLine::WordsFor(const CLI::App& app, const char* what) const {
  std::vector<std::string> rest = app.remaining();
  if (!rest.empty() && rest.front().substr(0, 1) == "-") throw CLI::ExtrasError({rest.front()});
  const bool begins_with_mark = rest.empty() && !marked_words_.empty();
  rest.insert(rest.end(), marked_words_.begin() + (begins_with_mark ? 1 : 0), marked_words_.end());
  if (rest.empty()) throw CLI::RequiredError(what);
  return rest;
}

CLI::App* CommandLine::AddSubcommand(const char* name, const char* description, const char* usage,
                                     std::function<int(CLI::App&)> work) {
  CLI::App* const subcommand = app_.add_subcommand(name, description);
  subcommand->formatter(std::make_shared<HelpText>(usage));
  works_.emplace_back(subcommand, std::move(work));
  return subcommand;
}

// Null when there is none of this name.
const CLI::App* CommandLine::FindSubcommand(const std::string& name) const {
  const auto found = std::find_if(works_.begin(), works_.end(),
                                  [&](const auto& entry) { return entry.first->get_name() == name; });
  return found == works_.end() ? nullptr : found->first;
}

void CommandLine::DefineRun() {
  CLI::App* const run =
      AddSubcommand("run", "Runs one program on a board of its own",
                    "rolu-sim run [OPTIONS] [--] PROGRAM [ARGUMENT...]", [this](CLI::App& app) {
                      run_.command = WordsFor(app, "PROGRAM");
                      const int status = rolu_sim::Run(run_);
                      if (status == rolu::kNotFound && short_form_) SuggestSubcommand(run_.command.front());
                      return status;
                    });
  run->prefix_command();
  AddBoardSettings(*run, run_.board);
}

// A program that is not there may have been meant as a subcommand.
void CommandLine::SuggestSubcommand(const std::string& word) const {
  std::vector<std::string> names;
  for (const auto& [subcommand, work] : works_) names.push_back(subcommand->get_name());
  const std::string suggestion = rolu::Suggestion(word, names);
  if (!suggestion.empty()) rolu::Say("it is not a subcommand either" + suggestion);
}

void CommandLine::DefineServe() {
  CLI::App* const serve =
      AddSubcommand("serve", "Keeps a board up for several programs and terminals, until Ctrl-C",
                    "rolu-sim serve [OPTIONS] DIR", [this](CLI::App&) { return rolu_sim::Serve(serve_); });
  serve
      ->add_option("DIR", serve_.directory,
                   "Where the board is to be: a directory that is empty, or not there yet")
      ->required();
  AddBoardSettings(*serve, serve_.board);
}

void CommandLine::DefineJoin() {
  CLI::App* const join =
      AddSubcommand("join", "Runs a program on a board that is up",
                    "rolu-sim join DIR [--wait DURATION] [--] PROGRAM [ARGUMENT...]", [this](CLI::App& app) {
                      join_.command = WordsFor(app, "PROGRAM");
                      return rolu_sim::Join(join_);
                    });
  join->prefix_command();
  join->add_option("DIR", join_.board.directory, "The board's directory")->required();
  AddDuration(*join, "--wait", join_.board.patience, "Wait this long for the board to come up");
}

void CommandLine::DefineCtl() {
  CLI::App* const ctl = AddSubcommand("ctl", "Steers and reads a board that is up",
                                      "rolu-sim ctl [OPTIONS] WORD [VALUE...]", [this](CLI::App& app) {
                                        ctl_.words = WordsFor(app, "WORD");
                                        return rolu_sim::Ctl(ctl_);
                                      });
  ctl->prefix_command();
  ctl->add_flag("--json", ctl_.json, "Print answers as JSON");
  AddBoardChoice(*ctl, ctl_.board);
  ctl->formatter(std::make_shared<HelpText>(
      "rolu-sim ctl [OPTIONS] WORD [VALUE...]",
      "Values go in their order, or as name=value. rolu-sim ctl WORD --help says more.\n\n" + ControlHelp() +
          '\n'));
}

void CommandLine::DefineTrace() {
  CLI::App* const trace =
      AddSubcommand("trace", "Shows each line on the wire of a board that is up, in plain words",
                    "rolu-sim trace [OPTIONS]", [this](CLI::App&) { return ShowTrace(trace_); });
  trace->add_flag("--json", trace_.json, "Print lines of JSON, as run --replay reads them");
  trace->add_flag("--follow", trace_.follow, "Go on as the lines come, until the board goes down");
  AddDuration(*trace, "--for", trace_.length, "End after this time");
  AddBoardChoice(*trace, trace_.board);
}

void CommandLine::DefineScenarios() {
  CLI::App* const scenarios = AddSubcommand(
      "scenarios", "Lists the ready-made scenarios, or checks one of yours", "rolu-sim scenarios [OPTIONS]",
      [this](CLI::App&) { return rolu_sim::Scenarios(scenarios_); });
  scenarios->add_option("--show", scenarios_.shown, "Print the text of a scenario, to start your own from")
      ->type_name("NAME");
  scenarios->add_option("--check", scenarios_.checked, "Check scenarios without playing them")
      ->type_name("FILE...");
}

}  // namespace rolu_sim
