#include <fmt/format.h>

#include "cli/command_line.h"
#include "cli/generated_documents.h"
#include "tools/board_watcher.h"
#include "tools/command.h"
#include "tools/port_owner.h"
#include "tools/setting.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

// The usage line of a command, as "rolu alarm daily [OPTIONS] TIME".
std::string Usage(const CLI::App& app) {
  std::string usage = PathOf(app) + " [OPTIONS]";
  if (!ShownSubcommands(app).empty()) return usage + " COMMAND";
  for (const CLI::Option* const option : app.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name = option->get_name(true) + (option->get_expected_max() > 2 ? "..." : "");
    usage += option->get_required() ? " " + name : " [" + name + "]";
  }
  return usage;
}

std::string SettingItems() {
  std::string text;
  for (const Setting& setting : Settings()) {
    const std::string unit = setting.unit.empty() ? "" : fmt::format(" ({})", setting.unit);
    text += RoffItem(setting.name, RoffText(fmt::format("{}. {}: {}{}.", setting.help,
                                                        setting.IsWritable() ? "Takes" : "Read only",
                                                        RangeText(setting), unit)));
  }
  return text;
}

// The candidates for the positional argument of a command.
Candidates ArgumentsOf(const CLI::Option& argument) {
  Candidates candidates;
  if (argument.get_name(true) == "FILE") candidates.paths = Candidates::Paths::kFiles;
  if (argument.get_name(true) == "NAME") {
    for (const SettingGroup& group : SettingGroups()) AddWord(candidates.words, group.name);
    for (const Setting& setting : Settings()) AddWord(candidates.words, setting.name);
  }
  if (argument.get_name(true) == "STATUS") {
    for (const StatusWords& words : AllStatusWords()) AddWord(candidates.words, words.name);
  }
  if (argument.get_name(true) == "OUTPUT=LEVEL") candidates.words = "out1= out2=";
  if (argument.get_name(true) == "NAME=VALUE") {
    for (const Setting& setting : Settings()) {
      if (setting.IsWritable()) AddWord(candidates.words, fmt::format("{}=", setting.name));
    }
  }
  return candidates;
}

}  // namespace

std::string RoluManPage(const CLI::App& app) {
  return ManPage(app, ROLU_VERSION, "the board from a shell", Usage) +
         ".SH SETTINGS\nThe names that get, set, status and list take; a group is what stands before the "
         "first dot. " +
         RoffText(kMcuUnitsHelp) + "\n" + SettingItems() + ".SH ENVIRONMENT\n" +
         RoffItem("COLUMNS", "The width of help texts; else that of the terminal.") +
         RoffItem("NO_COLOR", "When it is set and not empty, nothing is coloured.") + ".SH FILES\n" +
         RoffItem(kMcuPort, "The MCU's port. One process at a time may use it.");
}

std::string RoluCompletion(const CLI::App& app) {
  CompletionTable table;
  for (const CLI::App* const command : ShownSubcommands(app)) {
    for (const CLI::Option* const option : command->get_options()) {
      if (option->get_positional()) table.arguments[PathOf(*command)] = ArgumentsOf(*option);
    }
  }
  for (const Setting& setting : Settings()) {
    if (!setting.IsWritable()) continue;
    std::string& values = table.values[fmt::format("rolu set={}", setting.name)].words;
    if (setting.kind == Kind::kFlag) values = "on off";
    for (const std::string_view choice : setting.choices) AddWord(values, choice);
  }
  for (const EventName& event : EventNames()) AddWord(table.values["--on"].words, event.name);
  return BashCompletion(app, std::move(table));
}

}  // namespace rolu
