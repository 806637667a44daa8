// rolu-sim: the simulated board on a desk.

#include <exception>
#include <iostream>
#include <vector>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "simulator/control/control_client.h"
#include "simulator/control/parameter.h"
#include "simulator/program/command_line.h"
#include "simulator/scenario/scenario.h"

namespace {

int Report(const std::exception& problem, int status) {
  rolu::SayProblem(problem.what());
  return status;
}

int Execute(int argc, char** argv) {
  try {
    rolu_sim::CommandLine command_line;
    return command_line.Execute(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const rolu_sim::UsageError& problem) {
    return Report(problem, rolu::kWrongUse);
  } catch (const rolu_sim::ScenarioError& problem) {
    return Report(problem, rolu::kWrongUse);
  } catch (const rolu_sim::NoBoardError& problem) {
    return Report(problem, rolu::kNoAnswer);
  } catch (const std::exception& problem) {
    return Report(problem, rolu::kBoardFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int status = Execute(argc, argv);
  std::cout.flush();
  if (std::cout || status != 0) return status;
  rolu::SayProblem("standard output cannot be written");
  return rolu::kPartlyDone;
}
