#pragma once

#include <chrono>

namespace rolu::interrupt {

// From now on SIGINT, SIGTERM and SIGHUP only ask for an end: the work stops after the question in hand,
// and the program takes down what it initialised. A second signal of the same kind ends the process at
// once. Call it before the first thread starts, and again in a child process, which gets signals of its own.
void Watch();

// The signal that asked for an end; 0 while none has.
int Signal();

// Throws CommandError(128 + signal) once a signal has asked for an end.
void ThrowIfRequested();

// Readable once a signal has asked for an end; for poll.
int Descriptor();

// Waits. Returns false at once when a signal asks for an end.
bool SleepFor(std::chrono::milliseconds time);

}  // namespace rolu::interrupt
