#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <string>
#include <vector>

#include "simulator/program/board_settings.h"

namespace rolu_sim {

// The subcommands: what each was asked for, and its work, which gives the exit status.

struct RunOptions {
  BoardSettings board;
  std::vector<std::string> command;
};
int Run(const RunOptions& options);

struct ServeOptions {
  BoardSettings board;
  std::string directory;
};
int Serve(const ServeOptions& options);

// Which board that is up already, and how long to wait for it to come up.
struct BoardChoice {
  std::string directory;
  std::chrono::milliseconds patience{0};
};

struct JoinOptions {
  BoardChoice board;
  std::vector<std::string> command;
};
int Join(const JoinOptions& options);

struct CtlOptions {
  BoardChoice board;
  bool json = false;
  std::vector<std::string> words;
};
int Ctl(const CtlOptions& options);

struct TraceOptions {
  BoardChoice board;
  bool json = false;
  bool follow = false;
  std::chrono::milliseconds length{0};  // of the following; 0 is without end
};
int ShowTrace(const TraceOptions& options);

struct ScenariosOptions {
  std::string shown;                 // the scenario whose text is wanted; empty: none
  std::vector<std::string> checked;  // the files to be checked
};
int Scenarios(const ScenariosOptions& options);

// The man page, and the completion for bash: from the definitions of the command line and of the verbs.
std::string SimulatorManPage(const CLI::App& app);
std::string SimulatorCompletion(const CLI::App& app);

}  // namespace rolu_sim
