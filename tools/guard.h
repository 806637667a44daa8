#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <thread>

namespace rolu::guard {

// Ends a command that cannot end by itself in time: a library call waits 3 s for an answer, and nothing can
// interrupt it. Once a signal or the time-out has asked for an end, the command goes on as long as the board
// answers, to take down what it set up. When nothing has come for 150 ms, the process ends: with the lines on
// standard output that are whole, and with a message that says what is left.
class Guard {
 public:
  // A timeout of 0 is none.
  explicit Guard(std::chrono::milliseconds timeout);
  ~Guard();
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  void Run(std::chrono::milliseconds timeout) const;
  [[noreturn]] void EndProcess() const;

  int over_;  // an eventfd: the command has ended by itself
  std::thread thread_;
};

// The board has answered. Child processes that were forked while there is a guard may say so too.
void NoteAnswer();

// What to say if the command is ended now: "the watchdog may still be on".
void SetLastWords(std::string words);

// A child process that ends with this process; 0 for none.
void SetDependent(pid_t child);

// While such an object lives, the command is not ended: a protection of the vehicle is off. A second signal
// ends the process nevertheless.
class MustFinish {
 public:
  MustFinish();
  ~MustFinish();
  MustFinish(const MustFinish&) = delete;
  MustFinish& operator=(const MustFinish&) = delete;
};

}  // namespace rolu::guard
