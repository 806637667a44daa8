// rolu: the board from a shell.

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <exception>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "tools/command.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/status_words.h"
#include "tools/terminal.h"

namespace {

using namespace rolu;

// If the program starts with descriptors 0, 1 or 2 closed, the MCU's port must not get one of these numbers.
void OpenStandardDescriptors() {
  int file = 0;
  do {
    file = open("/dev/null", O_RDWR);
  } while (file >= 0 && file <= STDERR_FILENO);
  if (file > STDERR_FILENO) close(file);
}

constexpr std::chrono::milliseconds kShortestTimeout{1};
constexpr std::chrono::milliseconds kLongestTimeout = std::chrono::hours(24);

// Hidden options whose output the build installs.
void AddGenerator(CLI::App& app, const char* option, std::string (*generate)(const CLI::App&)) {
  app.add_flag_callback(option, [&app, generate] { throw CLI::CallForVersion(generate(app), 0); })->group("");
}

void AddCommands(CLI::App& app, Invocation& invocation) {
  for (const auto add :
       {AddStatusCommand,        AddGetCommand,      AddSetCommand,   AddListCommand,     AddSaveCommand,
        AddLoadCommand,          AddVerifyCommand,   AddWatchCommand, AddDoctorCommand,   AddClockCommand,
        AddAlarmCommand,         AddWatchdogCommand, AddI2cCommand,   AddPinsCommand,     AddLightCommand,
        AddBacklightCommand,     AddExplainCommand,  AddRawCommand,   AddDefaultsCommand, AddResetCommand,
        AddForceShutdownCommand, AddHelpCommand}) {
    add(app, invocation);
  }
}

// Commands leave out the options that all of them take.
class HelpText : public CLI::Formatter {
 public:
  std::string make_footer(const CLI::App* app) const override {
    const char* const end =
        app->get_parent() == nullptr
            ? ""
            : "\nAll commands take --json, --yes, --force and --timeout: 'rolu --help'.\n";
    return CLI::Formatter::make_footer(app) + end;
  }
};

void BuildCommandLine(CLI::App& app, Invocation& invocation) {
  app.name("rolu");
  app.formatter(std::make_shared<HelpText>());
  app.description("The board from a shell: reads, sets and watches the in-vehicle computer's hardware.");
  app.set_version_flag("--version", "rolu " ROLU_VERSION);
  app.add_flag("--json", invocation.common.json, "Print results as JSON, with units");
  app.add_flag("--force", invocation.common.force, "Go on although another process holds the MCU's port");
  app.add_flag("-y,--yes", invocation.common.yes,
               "Do not ask before what cuts power, switches a protection off or resets");
  AddDurationOption(app, "--timeout", invocation.common.timeout,
                    "Give up after this time, with exit status 4; an answer is waited for 3s",
                    kShortestTimeout, kLongestTimeout);
  AddGenerator(app, "--generate-man", RoluManPage);
  AddGenerator(app, "--generate-completion", RoluCompletion);
  app.require_subcommand(1);
  app.footer(
      "Examples:\n"
      "  rolu status\n"
      "  rolu set ignition.off-event-delay=20\n"
      "  rolu watch --on ignition-off 'logger ignition off'\n"
      "  rolu doctor\n"
      "\n" +
      ExitStatusHelp() +
      "\n'rolu COMMAND --help' says more about a command; 'rolu list' lists the settings.");
  AddCommands(app, invocation);
}

// A command that only ends by a signal or its --timeout is in time only without the latter.
int RunGuarded(const Invocation& invocation) {
  const guard::Guard guard(invocation.common.timeout);
  const int status = invocation.action();
  if (status == kDone && interrupt::Signal() == SIGALRM) interrupt::ThrowIfRequested();
  return status;
}

int Run(int argc, char** argv) {
  Invocation invocation;
  CLI::App app;
  BuildCommandLine(app, invocation);
  try {
    app.parse(argc, argv);
    return RunGuarded(invocation);
  } catch (const CLI::ParseError& stop) {
    return Conclude(app, stop);
  } catch (const CommandError& error) {
    SayProblem(error.what());
    return error.status();
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}

// All output must have been written. A reader that went away needs no message.
int AfterFlush(int exit_status) {
  const int error = OutputError();
  if (error == 0) return exit_status;
  if (error != EPIPE) SayProblem("could not write to standard output: " + ErrnoText(error));
  return exit_status == kDone ? kPartlyDone : exit_status;
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardDescriptors();
  interrupt::Watch();
  return AfterFlush(Run(argc, argv));
}
