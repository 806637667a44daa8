#include "cli/man_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "cli/command_line.h"
#include "cli/exit_status.h"

namespace rolu {
namespace {

// Every command has --help; it is told once.
bool IsShown(const CLI::App& app, const CLI::Option& option) {
  const bool is_repeated = &option == app.get_help_ptr() && app.get_parent() != nullptr;
  return !option.get_group().empty() && !is_repeated;
}

// "-n, --value-only", or "--for DURATION".
std::string OptionTerm(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true);
  std::string term;
  for (const std::string& name : option.get_snames()) term += (term.empty() ? "-" : ", -") + name;
  for (const std::string& name : option.get_lnames()) term += (term.empty() ? "--" : ", --") + name;
  return option.get_expected_max() > 0 ? term + " " + option.get_type_name() : term;
}

std::string Options(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* const option : app.get_options()) {
    if (IsShown(app, *option)) text += RoffItem(OptionTerm(*option), RoffText(option->get_description()));
  }
  return text;
}

std::string Commands(const CLI::App& app, std::string (*usage)(const CLI::App&)) {
  std::string text;
  for (const CLI::App* const command : ShownSubcommands(app)) {
    text += fmt::format(".SS {}\n{}.\n{}", RoffText(usage(*command)), RoffText(command->get_description()),
                        Options(*command));
    if (!command->get_footer().empty()) {
      text += fmt::format(".PP\n.nf\n{}\n.fi\n", RoffText(command->get_footer()));
    }
    text += Commands(*command, usage);
  }
  return text;
}

std::string ExitStatuses() {
  std::string text;
  for (const ExitStatusText& status : kExitStatusTexts) {
    text += RoffItem(status.number, RoffText(status.meaning));
  }
  return text;
}

}  // namespace

std::string RoffText(std::string_view text) {
  std::string escaped;
  bool is_line_start = true;
  for (const char character : text) {
    if (is_line_start && (character == '.' || character == '\'')) escaped += "\\&";
    if (character == '\\') {
      escaped += "\\e";
    } else if (character == '-') {
      escaped += "\\-";
    } else {
      escaped += character;
    }
    is_line_start = character == '\n';
  }
  return escaped;
}

std::string RoffItem(std::string_view term, std::string_view body) {
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", RoffText(term), body);
}

std::string ManPage(const CLI::App& app, std::string_view version, std::string_view purpose,
                    std::string (*usage)(const CLI::App&)) {
  std::string title = app.get_name();
  std::transform(title.begin(), title.end(), title.begin(), [](unsigned char c) { return std::toupper(c); });
  return fmt::format(
      ".TH {} 1 \"\" \"kavo_rolu {}\" \"User Commands\"\n"
      ".SH NAME\n{} \\- {}\n"
      ".SH SYNOPSIS\n\\fB{}\\fR\n"
      ".SH DESCRIPTION\n{}\n"
      ".SH OPTIONS\n{}"
      ".SH COMMANDS\n{}"
      ".SH EXIT STATUS\n{}",
      RoffText(title), version, RoffText(app.get_name()), RoffText(purpose), RoffText(usage(app)),
      RoffText(app.get_description()), Options(app), Commands(app, usage), ExitStatuses());
}

}  // namespace rolu
