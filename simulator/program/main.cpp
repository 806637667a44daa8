// rolu-sim: runs a program against a simulated board.

#include <stdlib.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

#include "simulator/board.h"
#include "simulator/preloaded.h"
#include "simulator/program/child_process.h"
#include "simulator/program/exit_status.h"
#include "simulator/program/options.h"
#include "simulator/program/preload_location.h"
#include "simulator/program/wire_printer.h"

namespace {

void PreloadIntoChildren() {
  const char* const present = getenv("LD_PRELOAD");
  const std::string list =
      rolu_sim::PreloadListWith(present == nullptr ? "" : present, rolu_sim::FindPreloadObject());
  setenv("LD_PRELOAD", list.c_str(), 1);
}

int RunOnBoard(const rolu_sim::Options& options) {
  rolu_sim::ChildProcess program;
  const auto start = std::chrono::steady_clock::now();
  rolu_sim::BoardOptions board_options;
  board_options.serial.paced = options.paced;
  if (options.print_wire) board_options.serial.line_listener = rolu_sim::PrintWireSince(start);
  rolu_sim::Board board(board_options);
  board.mcu().WithModel([&](rolu_sim::McuModel& mcu) {
    mcu.SetVehicle(options.mode);
    if (options.battery) mcu.SetBatteryCurve(*options.battery, start);
  });
  PreloadIntoChildren();
  board.AttachThisProcess();
  return program.Run(options.command);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const rolu_sim::CommandLine command_line = rolu_sim::ParseCommandLine(argc, argv);
    return command_line.options ? RunOnBoard(*command_line.options) : command_line.exit_status;
  } catch (const std::exception& problem) {
    std::cerr << "rolu-sim: " << problem.what() << '\n';
    return rolu_sim::kBoardFailed;
  }
}
