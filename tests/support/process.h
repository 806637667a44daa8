// A program in its own process: its input, its output and its end.
#ifndef TESTS_SUPPORT_PROCESS_H
#define TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/process_state.h"

namespace rolu_test {

// How a program ended: its status as a shell gives it, and everything that it printed.
struct Ended {
  int status = -1;
  std::string out;
  std::string err;

  nlohmann::json Json() const { return nlohmann::json::parse(out); }
};

class Process {
 public:
  // `environment` replaces the environment of this process, unless it is empty.
  explicit Process(std::vector<std::string> words, const std::string& input = "",
                   std::vector<std::string> environment = {});
  // Starts the program with a descriptor as its standard input.
  Process(std::vector<std::string> words, int input);
  // Ends the program if it still runs.
  virtual ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t pid() const { return pid_; }
  void Signal(int number) const;

  // Waits until the program has printed `text` on standard output, or on standard error, at or after position
  // `from`. Returns false when the program ended, or after `patience`.
  bool WaitForOutput(const std::string& text, size_t from = 0,
                     std::chrono::milliseconds patience = kGenerous) {
    return WaitFor(out_, text, from, patience);
  }
  bool WaitForMessage(const std::string& text, size_t from = 0) {
    return WaitFor(err_, text, from, kGenerous);
  }

  // Closes the reading end of the program's standard output.
  void StopReading();

  // Waits for the end of the program. Returns the exit status, or 128 plus the number of the signal that
  // ended it.
  int Wait();
  Ended WaitForAll();

  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }

 private:
  void Start(std::vector<std::string>& words, int input, std::vector<std::string>& environment);
  bool WaitFor(const std::string& stream, const std::string& text, size_t from,
               std::chrono::milliseconds patience);
  bool ReadSome(std::chrono::steady_clock::time_point deadline);

  pid_t pid_ = -1;
  int out_pipe_ = -1;
  int err_pipe_ = -1;
  std::string out_;
  std::string err_;
};

// Splits "set -y battery.lbp=on" into words.
std::vector<std::string> Words(const std::string& command_line);
std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

// A directory that the end of the test removes.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& path() const { return path_; }
  std::string File(const std::string& name) const { return path_ + "/" + name; }
  // Writes a file and returns its path.
  std::string Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const { return ReadFile(File(name)); }
  // The names of everything in the directory, in alphabetical order.
  std::vector<std::string> Names() const;

 private:
  std::string path_ = "/tmp/rolu-test-XXXXXX";
};

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_PROCESS_H
