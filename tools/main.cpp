// rolu: the board from a shell.

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <exception>

#include "tools/command_line.h"
#include "tools/interrupt.h"
#include "tools/messages.h"
#include "tools/output.h"

namespace {

using namespace rolu;

// The MCU's port must not become descriptor 0, 1 or 2 of a program that was started without them.
void OpenStandardDescriptors() {
  int file = 0;
  do {
    file = open("/dev/null", O_RDWR);
  } while (file >= 0 && file <= STDERR_FILENO);
  if (file > STDERR_FILENO) close(file);
}

int RunAction(const Invocation& invocation) {
  try {
    return invocation.action();
  } catch (const CommandError& error) {
    SayProblem(error.what());
    return error.status();
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}

// What was printed must have arrived; a reader that went away needs no message.
int AfterFlush(int exit_status) {
  const int error = OutputError();
  if (error == 0) return exit_status;
  if (error != EPIPE) SayProblem("could not write to standard output: " + ErrnoText(error));
  return exit_status == kDone ? kPartlyDone : exit_status;
}

int Run(int argc, char** argv) {
  Invocation invocation;
  CLI::App app;
  BuildCommandLine(app, invocation);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    if (stop.get_exit_code() == 0) return app.exit(stop);
    SayProblem(ParseProblem(app, stop));
    Say(fmt::format("try '{} --help'", GivenCommand(app)));
    return kWrongUse;
  }
  return RunAction(invocation);
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardDescriptors();
  interrupt::Watch();
  try {
    return AfterFlush(Run(argc, argv));
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}
