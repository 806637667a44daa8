#ifndef TESTS_TOOLS_ROLU_PROCESS_H
#define TESTS_TOOLS_ROLU_PROCESS_H

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "simulator/board.h"
#include "tests/support/process.h"

namespace rolu_test {

// The words that start the rolu command, in a cross build under its emulator.
std::vector<std::string> RoluCommand(const std::vector<std::string>& arguments);

// The rolu command as a process of its own.
class RoluProcess : public Process {
 public:
  template <typename Input = std::string>
  explicit RoluProcess(const std::vector<std::string>& arguments, const Input& input = {})
      : Process(RoluCommand(arguments), input) {}
};

// Runs it from beginning to end.
Ended Rolu(const std::vector<std::string>& arguments, const std::string& input = "");
Ended Rolu(const std::string& command_line, const std::string& input = "");

// One command line after another on the same board.
struct Step {
  std::string command_line;
  int status;
  const char* out = "";  // part of what is printed on standard output
  const char* err = "";
  const char* input = "";
};
void RunSteps(const std::vector<Step>& steps);

// A board that rolu meets.
class RoluTest : public testing::Test {
 protected:
  void SetUp() override { board.AttachThisProcess(); }

  // Commands that begin with `prefix`, as the MCU received them.
  std::vector<std::string> Received(const std::string& prefix);

  rolu_sim::Board board;
};

}  // namespace rolu_test

#endif  // TESTS_TOOLS_ROLU_PROCESS_H
