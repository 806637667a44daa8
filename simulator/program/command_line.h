#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "simulator/program/commands.h"

namespace rolu_sim {

// The definitions behind the command line, the help texts, the man page and the completion.
class CommandLine {
 public:
  CommandLine();

  // Does what the words (without the program's name) ask for and gives the exit status. Throws what
  // the subcommands throw.
  int Execute(std::vector<std::string> words);

  const CLI::App& app() const { return app_; }

 private:
  void DefineRun();
  void DefineServe();
  void DefineJoin();
  void DefineCtl();
  void DefineTrace();
  void DefineScenarios();
  CLI::App* AddSubcommand(const char* name, const char* description, const char* usage,
                          std::function<int(CLI::App&)> work);
  void TakeMarkedWords(std::vector<std::string>& words);
  std::vector<std::string> WordsFor(const CLI::App& app, const char* what) const;
  const CLI::App* FindSubcommand(const std::string& name) const;
  void SuggestSubcommand(const std::string& word) const;

  CLI::App app_;
  std::vector<std::pair<CLI::App*, std::function<int(CLI::App&)>>> works_;
  bool short_form_ = false;                // "run" was left out
  std::vector<std::string> marked_words_;  // from the "--" before a program on

  RunOptions run_;
  ServeOptions serve_;
  JoinOptions join_;
  CtlOptions ctl_;
  TraceOptions trace_;
  ScenariosOptions scenarios_;
};

}  // namespace rolu_sim
