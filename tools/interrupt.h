#pragma once

#include <chrono>

namespace rolu::interrupt {

// From now on SIGINT, SIGTERM and SIGHUP ask for an end instead of making one: the work stops after
// the question in hand, and what was initialised is taken down. A second signal of the same kind
// ends the process at once. Call it before the first thread starts, and again in a child process, which
// signals ask on its own.
void Watch();

// The signal that asked for an end; 0 while none has.
int Signal();

// Throws CommandError(128 + signal) once a signal has asked for an end.
void ThrowIfRequested();

// Readable once a signal has asked for an end; for poll.
int Descriptor();

// Waits, at most until a signal asks for an end; false when it did.
bool SleepFor(std::chrono::milliseconds time);

}  // namespace rolu::interrupt
