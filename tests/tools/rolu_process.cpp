#include "tests/tools/rolu_process.h"

#include <sstream>

namespace rolu_test {
namespace {

// A shell that the library in an emulated rolu starts runs natively, and complains that it cannot load
// the board's object.
std::string WithoutEmulationNoise(const std::string& text) {
  if (Words(ROLU_EMULATOR).empty()) return text;
  std::istringstream lines(text);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("ERROR: ld.so: ", 0) != 0) rest += line + '\n';
  }
  return rest;
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

std::vector<std::string> RoluTest::Received(const std::string& prefix) {
  std::vector<std::string> found;
  for (const std::string& command : board.mcu().CommandsReceived()) {
    if (command.rfind(prefix, 0) == 0) found.push_back(command);
  }
  return found;
}

}  // namespace rolu_test
