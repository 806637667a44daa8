#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "simulator/control/readings.h"
#include "simulator/program/control_words.h"
#include "simulator/program/exit_status.h"
#include "simulator/program/help_text.h"
#include "simulator/program/manual.h"

namespace rolu_sim {
namespace {

// Backslashes, hyphens and leading dots mean something to the formatter.
std::string Escaped(const std::string& text) {
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

std::string Item(const std::string& term, const std::string& text) {
  return fmt::format(".TP\n.B {}\n{}\n", Escaped(term), Escaped(text));
}

std::string OptionTerm(const CLI::Option& option) {
  const std::string name = option.get_positional() ? option.get_single_name() : option.get_name(false, true);
  return option.get_items_expected_max() == 0 ? name : name + ' ' + option.get_type_name();
}

std::string Options(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* const option : app.get_options()) {
    if (!option->get_group().empty()) text += Item(OptionTerm(*option), option->get_description() + '.');
  }
  return text;
}

std::string Subcommands(const CLI::App& app) {
  std::string text;
  for (const CLI::App* const subcommand : app.get_subcommands({})) {
    if (subcommand->get_group().empty()) continue;
    text += fmt::format(".SS {}\n", Escaped(subcommand->get_name()));
    text +=
        fmt::format("{}.\n.PP\n{}\n", Escaped(subcommand->get_description()), Escaped(UsageOf(*subcommand)));
    text += Options(*subcommand);
  }
  return text;
}

std::string VerbItem(const Verb& verb) {
  std::string text = verb.help + '.';
  for (const Parameter& parameter : verb.parameters) {
    text += fmt::format("\n.br\n\\fI{}\\fR: {}; {}", parameter.name, Escaped(parameter.help),
                        Escaped(parameter.range));
    if (!parameter.fallback.is_null()) {
      const Json& fallback = parameter.fallback;
      text += fmt::format(" (else {})",
                          Escaped(fallback.is_string() ? fallback.get<std::string>() : fallback.dump()));
    }
    text += '.';
  }
  return fmt::format(".TP\n.B {}\n{}\n", Escaped(Synopsis(verb)), text);
}

std::string VerbItems() {
  std::string text;
  std::string subject;
  std::vector<Verb> all = ControlWords();
  all.insert(all.end(), Verbs().begin(), Verbs().end());
  for (const Verb& verb : all) {
    if (verb.subject != subject) text += fmt::format(".SS {}\n", Escaped(subject = verb.subject));
    text += VerbItem(verb);
  }
  text += ".SS Readings\n";
  for (const Reading& reading : Readings()) text += Item(reading.name, reading.help + '.');
  return text;
}

constexpr char kScenarioHelp[] = R"(A scenario is a JSON object with a
.I description
and a list of
.IR events .
Each event has a time
.I at
(as "2s", "500ms", or a number of seconds), a verb
.I do
and the verb's values by their names; it is repeated if it has
.I every
and
.IR repeat .
.PP
.nf
{
  "description": "the ignition goes off, and the power after it",
  "events": [
    {"at": "2s", "do": "ignition", "state": "off"},
    {"at": 3.5, "do": "power\-off\-warning", "cause": "ignition"},
    {"at": "4s", "every": "500ms", "repeat": 10, "do": "shock"}
  ]
}
.fi
)";

constexpr char kLimitsHelp[] = R"(Programs that are statically linked or set\-user\-ID, raw system calls, and
.BR glob (3),
.BR ftw (3),
.BR fts (3)
and
.BR freopen (3)
of the C library do not see the board. What such a program writes to a descriptor that it inherited is taken, but
it does not hear of a refusal; what it reads from one is at its end at once.
.PP
Every other program may open, duplicate, inherit and list the board's files as on the board, except that
.IP \(bu 2
the files that the library uses are there and no others: no
.IR unexport ,
no
.IR uevent ;
.IP \(bu
.IR /dev ,
.I /proc
and the directories above
.IR /sys/class/gpio ,
.I /sys/devices/omapdss
and
.I /sys/devices/platform/ehci\-omap.0
are your system's, and do not list what the board has in them;
.IP \(bu
.IR /dev/stdin ,
.I /dev/fd
and
.I /proc/self/fd
do not open a device once more (ENXIO);
.IP \(bu
an I2C bus takes an address, reads and writes; combined and SMBus transfers are refused (ENOTTY).
)";

}  // namespace

std::string ManPage(const CLI::App& app) {
  std::string text =
      fmt::format(".TH ROLU\\-SIM 1 \"\" \"rolu\\-sim {}\" \"User Commands\"\n", ROLU_SIM_VERSION);
  text += ".SH NAME\nrolu\\-sim \\- run programs against a simulated board\n";
  text += fmt::format(".SH SYNOPSIS\n{}\n", Escaped(UsageOf(app)));
  text += fmt::format(".SH DESCRIPTION\n{}\n", Escaped(app.get_description()));
  text += ".SH SUBCOMMANDS\n" + Subcommands(app);
  text += ".SH WORDS OF CTL\nValues go in their order, or as name=value.\n" + VerbItems();
  text += std::string(".SH SCENARIOS\n") + kScenarioHelp;
  text += fmt::format(".SH EXIT STATUS\n{}\n", Escaped(kExitStatusHelp));
  text += ".SH ENVIRONMENT\n";
  text += Item("ROLU_SIM_ROOT", "The directory of the board that a program meets; run and join set it.");
  text += Item("TMPDIR", "Where run makes the board's directory, if the path is short enough; else /tmp.");
  text += std::string(".SH LIMITS\n") + kLimitsHelp;
  return text;
}

}  // namespace rolu_sim
