#pragma once

#include <gmock/gmock.h>
#include <sys/types.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "simulator/board.h"

namespace rolu_test {

// Far beyond what anything here takes on a loaded machine.
inline constexpr std::chrono::seconds kAmple{30};

// The rolu command as a process of its own.
class RoluProcess {
 public:
  // Starts it with `input` on its standard input.
  explicit RoluProcess(const std::vector<std::string>& arguments, const std::string& input = "");
  // Starts it with a descriptor as its standard input.
  RoluProcess(const std::vector<std::string>& arguments, int input);
  // Ends it when a test left it running.
  ~RoluProcess();
  RoluProcess(const RoluProcess&) = delete;
  RoluProcess& operator=(const RoluProcess&) = delete;

  pid_t pid() const { return pid_; }

  // Waits until `text` was printed on standard output, or on standard error, at or behind position
  // `from`; false when it ended or took too long before.
  bool WaitForOutput(const std::string& text, std::size_t from = 0) { return WaitFor(out_, text, from); }
  bool WaitForMessage(const std::string& text, std::size_t from = 0) { return WaitFor(err_, text, from); }

  void Signal(int number) const;

  // Closes the other end of its standard output.
  void StopReading();

  // Waits for its end: the exit status, or minus the number of the signal that ended it.
  int Wait();

  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }

 private:
  void Start(const std::vector<std::string>& arguments, int input);
  bool WaitFor(const std::string& stream, const std::string& text, std::size_t from);
  bool ReadSome(std::chrono::steady_clock::time_point deadline);

  pid_t pid_ = -1;
  int out_pipe_ = -1;
  int err_pipe_ = -1;
  std::string out_;
  std::string err_;
};

struct Ended {
  int status = -1;
  std::string out;
  std::string err;

  nlohmann::json Json() const { return nlohmann::json::parse(out); }
};

// Runs it from beginning to end.
Ended Rolu(const std::vector<std::string>& arguments, const std::string& input = "");
Ended Rolu(const std::string& command_line, const std::string& input = "");

// "set -y battery.lbp=on" as arguments.
std::vector<std::string> Words(const std::string& command_line);

// A board that rolu meets.
class RoluTest : public testing::Test {
 protected:
  void SetUp() override { board.AttachThisProcess(); }

  // Commands that begin with `prefix`, as the MCU received them.
  std::vector<std::string> Received(const std::string& prefix);

  rolu_sim::Board board;
};

// A directory that is gone after the test.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string File(const std::string& name) const { return path_ + "/" + name; }
  // Everything in it.
  std::vector<std::string> Names() const;

 private:
  std::string path_ = "/tmp/rolu-test-XXXXXX";
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

}  // namespace rolu_test
