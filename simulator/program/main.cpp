// rolu-sim: the simulated board on a desk.

#include <algorithm>
#include <exception>
#include <iostream>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "simulator/desk/control_client.h"
#include "simulator/program/command.h"

namespace {

using namespace rolu_sim;

constexpr char kExamples[] =
    "Examples:\n"
    "  rolu-sim -- ./vehicle-app --verbose            the short form of rolu-sim run\n"
    "  rolu-sim --battery \"0s=12.6 2s=11.0\" -- ./vehicle-app\n"
    "  rolu-sim run --scenario cranking-dip --trace - -- ./vehicle-app\n"
    "  rolu-sim serve /tmp/desk                       a board for several programs and terminals\n"
    "  rolu-sim ctl --board /tmp/desk ignition off\n"
    "\n"
    "Programs that are statically linked or set-user-ID, and raw system calls, do not see the board; the "
    "man\n"
    "page says more under LIMITS.\n"
    "\n";

// Hidden commands whose output the build installs.
void AddGenerator(CLI::App& app, Invocation& invocation, const char* name, const char* description,
                  std::string (*generate)(const CLI::App&)) {
  CLI::App* const command = NewCommand(app, name, description, std::string("rolu-sim ") + name);
  command->group("");
  OnRun(command, invocation, [&app, generate] {
    std::cout << generate(app);
    return 0;
  });
}

void BuildCommandLine(CLI::App& app, Invocation& invocation) {
  app.name("rolu-sim");
  app.description("Runs programs against a simulated board: the hardware that they open is the board's.");
  app.formatter(
      std::make_shared<HelpText>("rolu-sim [SUBCOMMAND] [OPTIONS] [--] [PROGRAM [ARGUMENT...]]", kExamples));
  app.set_version_flag("--version", "rolu-sim " ROLU_SIM_VERSION);
  app.require_subcommand(1);
  for (const auto add : {AddRunCommand, AddServeCommand, AddJoinCommand, AddCtlCommand, AddTraceCommand,
                         AddScenariosCommand}) {
    add(app, invocation);
  }
  AddGenerator(app, invocation, "man", "Prints the man page", SimulatorManPage);
  AddGenerator(app, invocation, "completion", "Prints the completion for bash", SimulatorCompletion);
}

// Null when there is no subcommand of this name.
const CLI::App* FindSubcommand(const CLI::App& app, const std::string& name) {
  const auto found =
      app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

// Prepares the words for the parser. When a subcommand runs a program, the words behind the first "--" belong
// to that program.
void Prepare(std::vector<std::string>& words, const CLI::App& app, Invocation& invocation) {
  const bool is_about_all =
      !words.empty() && (words[0] == "--help" || words[0] == "-h" || words[0] == "--version");
  if (is_about_all) return;
  invocation.is_short_form = words.empty() || FindSubcommand(app, words[0]) == nullptr;
  if (invocation.is_short_form) words.insert(words.begin(), "run");
  const auto mark = std::ranges::find(words, "--");
  if (FindSubcommand(app, words[0])->get_prefix_command() && mark != words.end()) {
    invocation.marked_words.assign(mark, words.end());
    words.erase(mark, words.end());
  }
  if (words[0] == "ctl") BringCtlOptionsForward(words);
}

int Execute(std::vector<std::string> words) {
  CLI::App app;
  Invocation invocation;
  BuildCommandLine(app, invocation);
  Prepare(words, app, invocation);
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    return invocation.action();
  } catch (const CLI::ParseError& stop) {
    return rolu::Conclude(app, stop);
  }
}

int Report(const std::exception& problem, int status) {
  rolu::SayProblem(problem.what());
  return status;
}

int Run(int argc, char** argv) {
  try {
    return Execute(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const UsageError& problem) {
    return Report(problem, rolu::kWrongUse);
  } catch (const NoBoardError& problem) {
    return Report(problem, rolu::kNoAnswer);
  } catch (const CommandError& problem) {
    return Report(problem, problem.status());
  } catch (const std::exception& problem) {
    return Report(problem, rolu::kBoardFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int status = Run(argc, argv);
  std::cout.flush();
  if (std::cout || status != 0) return status;
  rolu::SayProblem("standard output cannot be written");
  return rolu::kPartlyDone;
}
