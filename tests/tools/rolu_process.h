#ifndef TESTS_TOOLS_ROLU_PROCESS_H
#define TESTS_TOOLS_ROLU_PROCESS_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "simulator/board.h"
#include "tests/support/process.h"

namespace rolu_test {

// The words that start the rolu command; a cross build runs it under its emulator.
std::vector<std::string> RoluCommand(const std::vector<std::string>& arguments);

// The rolu command in its own process.
class RoluProcess : public Process {
 public:
  template <typename Input = std::string>
  explicit RoluProcess(const std::vector<std::string>& arguments, const Input& input = {})
      : Process(RoluCommand(arguments), input) {}
};

// Runs rolu to its end.
Ended Rolu(const std::vector<std::string>& arguments, const std::string& input = "");
Ended Rolu(const std::string& command_line, const std::string& input = "");

// One of several command lines that run on the same board.
struct Step {
  std::string command_line;
  int status;
  const char* out = "";  // part of the text on standard output
  const char* err = "";
  const char* input = "";
};
void RunSteps(const std::vector<Step>& steps);

// A board that rolu uses.
class RoluTest : public testing::Test {
 protected:
  void SetUp() override { board.AttachThisProcess(); }

  // The commands that the MCU received and that begin with `prefix`.
  std::vector<std::string> Received(const std::string& prefix);

  rolu_sim::Board board;
};

}  // namespace rolu_test

#endif  // TESTS_TOOLS_ROLU_PROCESS_H
