#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_status.h"
#include "simulator/desk/verb.h"

namespace rolu_sim {

// What the command line asks for.
struct Invocation {
  bool is_short_form = false;             // "run" was left out
  std::vector<std::string> marked_words;  // from the "--" that stands before a program
  std::function<int()> action;            // returns the exit status
};

// Ends rolu-sim with a message and this exit status.
class CommandError : public std::runtime_error {
 public:
  CommandError(rolu::ExitStatus status, const std::string& text)
      : std::runtime_error(text), status_(status) {}

  rolu::ExitStatus status() const { return status_; }

 private:
  rolu::ExitStatus status_;
};

// The help of a subcommand or of the whole program, with its own usage line and with the exit statuses.
class HelpText : public CLI::Formatter {
 public:
  explicit HelpText(std::string usage, std::string footer = {})
      : usage_(std::move(usage)), footer_(std::move(footer)) {
    column_width(26);
  }

  const std::string& usage() const { return usage_; }

  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: " + usage_ + "\n";
  }
  std::string make_footer(const CLI::App* /*app*/) const override {
    return footer_ + rolu::ExitStatusHelp() +
           "run and join give the program's own status; run gives 6, 7 or 8 if the board ended the "
           "program.\n";
  }

 private:
  const std::string usage_;
  const std::string footer_;
};

// A subcommand.
inline CLI::App* NewCommand(CLI::App& app, const std::string& name, const std::string& description,
                            const std::string& usage, const std::string& footer = {}) {
  CLI::App* const command = app.add_subcommand(name, description);
  command->formatter(std::make_shared<HelpText>(usage, footer));
  return command;
}

// Lets `work` give the exit status when `command` is the one that was given.
inline void OnRun(CLI::App* command, Invocation& invocation, const std::function<int()>& work) {
  command->callback([&invocation, work] { invocation.action = work; });
}

// The words of a command that are not options. The parser takes an option that it does not know for one of
// them.
inline std::vector<std::string> WordsFor(const CLI::App& command, const Invocation& invocation,
                                         const char* what) {
  std::vector<std::string> words = command.remaining();
  if (!words.empty() && words.front().starts_with('-')) throw CLI::ExtrasError({words.front()});
  const std::vector<std::string>& marked = invocation.marked_words;
  const bool begins_with_mark = words.empty() && !marked.empty();
  words.insert(words.end(), marked.begin() + (begins_with_mark ? 1 : 0), marked.end());
  if (words.empty()) throw CLI::RequiredError(what);
  return words;
}

// Each function adds its subcommand to `app`.
void AddRunCommand(CLI::App& app, Invocation& invocation);
void AddServeCommand(CLI::App& app, Invocation& invocation);
void AddJoinCommand(CLI::App& app, Invocation& invocation);
void AddCtlCommand(CLI::App& app, Invocation& invocation);
void AddTraceCommand(CLI::App& app, Invocation& invocation);
void AddScenariosCommand(CLI::App& app, Invocation& invocation);

// Moves the options of ctl before its words. The parser leaves an option that stands behind the words alone,
// because a word with a hyphen may be a negative number.
void BringCtlOptionsForward(std::vector<std::string>& words);

// A line, or two, of a list in a help text.
std::string ListItem(const std::string& left, const std::string& right);

// The words of ctl: the verbs, and the words that only ctl has.
std::vector<Verb> CtlWords();

// The man page and the completion for bash, made from the definitions of the command line and of the verbs.
std::string SimulatorManPage(const CLI::App& app);
std::string SimulatorCompletion(const CLI::App& app);

}  // namespace rolu_sim
