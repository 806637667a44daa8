#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "tools/documentation.h"
#include "tools/exit_status.h"
#include "tools/port_owner.h"
#include "tools/settings_table.h"

namespace rolu {
namespace {

// Text in which nothing is a roff request.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (character == '\\') {
      escaped += "\\e";
    } else if (character == '-') {
      escaped += "\\-";
    } else {
      escaped += character;
    }
  }
  const bool looks_like_request = !escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'');
  return looks_like_request ? "\\&" + escaped : escaped;
}

std::string Paragraph(const std::string& term, const std::string& text) {
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", Escaped(term), Escaped(text));
}

// Lines as they stand.
std::string Verbatim(const std::string& text) {
  std::string block = ".PP\n.nf\n";
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) block += Escaped(line) + "\n";
  return block + ".fi\n";
}

// Every command has --help; it is told once.
bool IsShown(const CLI::App& app, const CLI::Option& option) {
  const bool is_repeated = &option == app.get_help_ptr() && app.get_parent() != nullptr;
  return !option.get_group().empty() && !is_repeated;
}

// "-n, --value-only", or "--for DURATION".
std::string OptionTerm(const CLI::Option& option) {
  std::string term;
  for (const std::string& name : option.get_snames()) term += (term.empty() ? "-" : ", -") + name;
  for (const std::string& name : option.get_lnames()) term += (term.empty() ? "--" : ", --") + name;
  const bool takes_value = option.get_expected_max() > 0;
  return takes_value ? term + " " + option.get_type_name() : term;
}

std::string Options(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* const option : app.get_options()) {
    if (!IsShown(app, *option)) continue;
    const std::string term = option->get_positional() ? option->get_name(true) : OptionTerm(*option);
    text += Paragraph(term, option->get_description());
  }
  return text;
}

// "rolu alarm daily [OPTIONS] TIME".
std::string Usage(const CLI::App& app) {
  std::string path = app.get_name();
  for (const CLI::App* at = app.get_parent(); at != nullptr; at = at->get_parent()) {
    path.insert(0, at->get_name() + " ");
  }
  if (!ShownSubcommands(app).empty()) return path + " [OPTIONS] COMMAND";
  path += " [OPTIONS]";
  for (const CLI::Option* const option : app.get_options()) {
    if (!option->get_positional() || !IsShown(app, *option)) continue;
    const std::string name = option->get_name(true) + (option->get_expected_max() > 2 ? "..." : "");
    path += option->get_required() ? " " + name : " [" + name + "]";
  }
  return path;
}

std::string Commands(const CLI::App& app) {
  std::string text;
  for (const CLI::App* const command : ShownSubcommands(app)) {
    text += fmt::format(".SS {}\n{}.\n", Escaped(Usage(*command)), Escaped(command->get_description()));
    text += Options(*command);
    if (!command->get_footer().empty()) text += Verbatim(command->get_footer());
    text += Commands(*command);
  }
  return text;
}

std::string SettingsSection() {
  std::string text =
      ".SH SETTINGS\nThe names that get, set, status and list take; a group is what stands before the first "
      "dot.\n";
  for (const Setting& setting : Settings()) {
    const std::string unit = setting.unit.empty() ? "" : fmt::format(" ({})", setting.unit);
    text += Paragraph(std::string(setting.name),
                      fmt::format("{}. {}: {}{}.", setting.help, setting.IsWritable() ? "Takes" : "Read only",
                                  RangeText(setting), unit));
  }
  return text;
}

std::string ExitStatusSection() {
  std::string text = ".SH EXIT STATUS\n";
  for (const ExitStatusText& status : kExitStatusTexts) text += Paragraph(status.number, status.meaning);
  return text;
}

}  // namespace

std::vector<const CLI::App*> ShownSubcommands(const CLI::App& app) {
  std::vector<const CLI::App*> commands = app.get_subcommands([](const CLI::App*) { return true; });
  commands.erase(std::remove_if(commands.begin(), commands.end(),
                                [](const CLI::App* command) { return command->get_group().empty(); }),
                 commands.end());
  return commands;
}

std::string ManPage(const CLI::App& app) {
  std::string page = fmt::format(".TH ROLU 1 \"\" \"kavo_rolu {}\" \"User Commands\"\n", ROLU_VERSION);
  page += ".SH NAME\nrolu \\- the board from a shell\n";
  page += fmt::format(".SH SYNOPSIS\n.B {}\n", Escaped(Usage(app)));
  page += fmt::format(".SH DESCRIPTION\n{}\n", Escaped(app.get_description()));
  page += ".SH OPTIONS\nThey may stand before or after the command.\n" + Options(app);
  page += ".SH COMMANDS\n" + Commands(app);
  page += SettingsSection() + ExitStatusSection();
  page += ".SH ENVIRONMENT\n" + Paragraph("NO_COLOR", "When it is set and not empty, nothing is coloured.");
  page += ".SH FILES\n" + Paragraph(kMcuPort, "The MCU's port. One process at a time may use it.");
  return page;
}

}  // namespace rolu
