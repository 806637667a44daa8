#pragma once

#include <chrono>
#include <string>

#include "cli/exit_status.h"

namespace rolu::interrupt {

// From now on SIGINT, SIGTERM and SIGHUP only ask for an end: the work stops after the present question, and
// the program takes down what it initialized. A second signal of the same kind ends the process at once. Call
// it before the first thread starts, and again in a child process, which has its own signals.
void Watch();

// The signal that asked for an end; 0 while none has. The end of the time that --timeout gives counts as
// SIGALRM.
int Signal();
void NoteTimeIsUp();

// What asked for an end, in words, and the exit status of a command that it ended: 128 and the signal, or
// kNoAnswer when the time was up.
std::string Reason();
ExitStatus ExitStatusOfEnd();

// Throws CommandError(ExitStatusOfEnd()) once a signal has asked for an end.
void ThrowIfRequested();

// A descriptor for poll: it is readable once a signal has asked for an end.
int Descriptor();

// Sleeps for `time`. Returns false at once when a signal asks for an end.
bool SleepFor(std::chrono::milliseconds time);

}  // namespace rolu::interrupt
