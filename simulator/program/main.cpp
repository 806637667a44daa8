// rolu-sim: the simulated board on a desk.

#include <exception>
#include <iostream>
#include <vector>

#include "simulator/control/control_client.h"
#include "simulator/control/parameter.h"
#include "simulator/program/command_line.h"
#include "simulator/program/exit_status.h"
#include "simulator/scenario/scenario.h"

namespace {

int Report(const std::exception& problem, int status) {
  std::cerr << "rolu-sim: " << problem.what() << '\n';
  return status;
}

int Execute(int argc, char** argv) {
  try {
    rolu_sim::CommandLine command_line;
    return command_line.Execute(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const rolu_sim::UsageError& problem) {
    return Report(problem, rolu_sim::kWrongUse);
  } catch (const rolu_sim::ScenarioError& problem) {
    return Report(problem, rolu_sim::kWrongUse);
  } catch (const rolu_sim::NoBoardError& problem) {
    return Report(problem, rolu_sim::kNoBoard);
  } catch (const std::exception& problem) {
    return Report(problem, rolu_sim::kBoardFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int status = Execute(argc, argv);
  std::cout.flush();
  if (std::cout || status != 0) return status;
  std::cerr << "rolu-sim: standard output cannot be written\n";
  return rolu_sim::kRefused;
}
