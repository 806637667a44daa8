#include "tests/tools/rolu_process.h"

#include <regex>

namespace rolu_test {
namespace {

// The library in an emulated rolu starts a native shell, which complains that it cannot load the board's
// object.
std::string WithoutEmulationNoise(const std::string& text) {
  if (Words(ROLU_EMULATOR).empty()) return text;
  return std::regex_replace(text, std::regex("ERROR: ld\\.so: [^\n]*\n"), "");
}

}  // namespace

std::vector<std::string> RoluCommand(const std::vector<std::string>& arguments) {
  return Joined(Joined(Words(ROLU_EMULATOR), {ROLU_PROGRAM}), arguments);
}

Ended Rolu(const std::string& command_line, const std::string& input) {
  return Rolu(Words(command_line), input);
}

Ended Rolu(const std::vector<std::string>& arguments, const std::string& input) {
  Ended rolu = RoluProcess(arguments, input).WaitForAll();
  rolu.err = WithoutEmulationNoise(rolu.err);
  return rolu;
}

void RunSteps(const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    const Ended ended = Rolu(step.command_line, step.input);
    EXPECT_EQ(ended.status, step.status) << step.command_line << ": " << ended.err;
    EXPECT_THAT(ended.out, testing::HasSubstr(step.out)) << step.command_line;
    EXPECT_THAT(ended.err, testing::HasSubstr(step.err)) << step.command_line;
  }
}

std::vector<std::string> RoluTest::Received(const std::string& prefix) {
  std::vector<std::string> commands = board.mcu().CommandsReceived();
  std::erase_if(commands, [&](const std::string& command) { return !command.starts_with(prefix); });
  return commands;
}

}  // namespace rolu_test
