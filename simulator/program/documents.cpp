#include <fmt/format.h>

#include "cli/command_line.h"
#include "cli/generated_documents.h"
#include "simulator/desk/expectation.h"
#include "simulator/desk/mcu_settings.h"
#include "simulator/desk/readings.h"
#include "simulator/program/command.h"
#include "simulator/program/installed_files.h"

namespace rolu_sim {
namespace {

using rolu::RoffItem;
using rolu::RoffText;
using Paths = rolu::Candidates::Paths;

std::string UsageOf(const CLI::App& app) {
  return dynamic_cast<const HelpText&>(*app.get_formatter()).usage();
}

std::string VerbItem(const Verb& verb) {
  std::string text = RoffText(verb.help + '.');
  for (const Parameter& parameter : verb.parameters) {
    text += fmt::format(
        "\n.br\n\\fI{}\\fR: {}", parameter.name,
        RoffText(fmt::format("{}; {}{}.", parameter.help, parameter.range, FallbackText(parameter))));
  }
  return RoffItem(Synopsis(verb), text);
}

std::string VerbItems() {
  std::string text;
  std::string subject;
  for (const Verb& verb : CtlWords()) {
    if (verb.subject != subject) text += fmt::format(".SS {}\n", RoffText(subject = verb.subject));
    text += VerbItem(verb);
  }
  text += ".SS Readings\n";
  for (const Reading& reading : Readings()) text += RoffItem(reading.name, RoffText(reading.help + '.'));
  return text;
}

constexpr char kScenarioHelp[] = R"(A scenario is a JSON object with a
.I description
and a list of
.IR events .
Each event has a time
.I at
(as "2s", "500ms", or a number of seconds) or follows something:
.I after
names another event (its
.IR name ),
an event of the board or the beginning of a command of the MCU; the first time counts, and a
.I delay
may come in between. It has a verb
.I do
and the verb's values by their names, and is repeated if it has
.I every
and
.IR repeat ;
or it expects something
.I within
a time from then.
.PP
.nf
{
  "description": "the ignition goes off, and the power after it",
  "events": [
    {"at": "2s", "do": "ignition", "state": "off"},
    {"after": "ignition\-warning", "expect": "shutdown", "within": "3s"},
    {"after": "WDTE", "delay": 0.5, "every": "500ms", "repeat": 10, "do": "shock"}
  ]
}
.fi
.PP
When an expectation fails, the program is ended (SIGTERM, and SIGKILL 2 s later) and the exit status is 9. When
all are met and no other event is due, a program that still runs is ended likewise, with status 0; so a daemon can
be tested. What is still expected when the program ends has failed. Status 0 also stands for a status of the
program, a power cut, a reset or a bite that was expected. On a served board a failed expectation ends the scenario
only, and serve ends with status 9 when it is stopped.
.PP
)";

std::string ScenarioItems() {
  std::string text = "What can be expected:\n";
  for (const Verb& verb : ExpectationVerbs()) text += VerbItem(verb);
  return text;
}

constexpr char kLimitsHelp[] =
    R"(Programs that are statically linked, set\-user\-ID or for another processor, raw system
calls, and
.BR glob (3),
.BR ftw (3),
.BR fts (3)
and
.BR freopen (3)
of the C library do not see the board. What such a program writes to a descriptor that it inherited is taken, but
it does not hear of a refusal; what it reads from one is at its end at once. Run and join warn of such a program when
they start it; they look through env, nohup, setsid and the first line of scripts.
.PP
The environment names the board. What drops the environment
.RI ( sudo ,
.IR "env \-i" )
goes before
.IR rolu\-sim ,
as in
.IR "sudo rolu\-sim join DIR \-\- PROGRAM" .
A board is open to its user and to root: after
.IR su " or " setpriv
its files are refused (EACCES).
.PP
A program for 32\-bit ARM (armhf) starts under
.BR qemu\-arm (1)
of the Debian package
.IR qemu\-user ,
if that, the package
.I libc6\-armhf\-cross
and the board's preloaded object for armhf are there.
.I rolu\-sim
finds that object in
.I lib/arm\-linux\-gnueabihf/rolu\-sim
beside its own directory, and in a build tree where
.I ./run build arm\-library
puts it. An ARM program starts by itself or behind env, nohup or setsid; not from a script, and not from another ARM
program.
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
an I2C bus refuses packet error checks, ten\-bit addresses and SMBus block reads (EOPNOTSUPP), takes at most
8192 bytes a transfer in each direction, and is not in
.IR /sys/class/i2c\-dev ;
.IP \(bu
the serial port has no modem lines (ENOTTY).
)";

// The words that can follow a verb: the choices of its first value, and the names of all values.
void AddVerb(const Verb& verb, rolu::CompletionTable& table) {
  const std::string command = "rolu-sim ctl " + verb.name;
  std::string& words = table.arguments[command].words;
  if (!verb.parameters.empty()) words = fmt::format("{}", fmt::join(verb.parameters.front().choices, " "));
  for (const Parameter& parameter : verb.parameters) {
    rolu::AddWord(words, parameter.name + '=');
    if (parameter.choices.empty()) continue;
    table.values[command + '=' + parameter.name].words = fmt::format("{}", fmt::join(parameter.choices, " "));
  }
  rolu::AddWord(table.arguments["rolu-sim ctl"].words, verb.name);
}

}  // namespace

std::string SimulatorManPage(const CLI::App& app) {
  return rolu::ManPage(app, ROLU_SIM_VERSION, "run programs against a simulated board", UsageOf) +
         ".PP\nrun and join give the program's own status; run gives 6, 7 or 8 if the board ended the "
         "program.\n"
         ".SH WORDS OF CTL\nValues go in their order, or as name=value.\n" +
         VerbItems() + ".SH SCENARIOS\n" + kScenarioHelp + ScenarioItems() + ".SH ENVIRONMENT\n" +
         RoffItem("ROLU_SIM_ROOT", "The directory of the board that a program meets; run and join set it.") +
         RoffItem("ASAN_OPTIONS",
                  "Run and join add verify_asan_link_order=0, without which gcc's address "
                  "sanitizer refuses to start.") +
         RoffItem("TMPDIR",
                  "Where run makes the board's directory, if the path is short enough; else /tmp.") +
         ".SH LIMITS\n" + kLimitsHelp;
}

std::string SimulatorCompletion(const CLI::App& app) {
  rolu::CompletionTable table;
  for (const Verb& verb : CtlWords()) AddVerb(verb, table);
  const std::string scenarios = fmt::format("{}", fmt::join(ReadyScenarioNames(), " "));
  table.arguments["rolu-sim ctl play"] = {"scenario= " + scenarios, Paths::kFiles};
  // The short form has the options of run, then a program.
  const std::string run = fmt::format("{}", fmt::join(rolu::LongOptions(*app.get_subcommand("run")), " "));
  table.arguments["rolu-sim"] = {run, Paths::kProgram};
  table.arguments["rolu-sim run"].paths = Paths::kProgram;
  table.arguments["rolu-sim join"].paths = Paths::kProgram;
  table.arguments["rolu-sim serve"].paths = Paths::kDirectories;
  for (const char* const option : {"--scenario", "--show"}) table.values[option] = {scenarios, Paths::kFiles};
  for (const char* const option : {"--replay", "--trace", "--check"})
    table.values[option].paths = Paths::kFiles;
  table.values["--fault"].words = fmt::format("{}", fmt::join(FaultKinds(), " "));
  table.values["--set"].words = fmt::format("{}", fmt::join(McuSettingNames(), " "));
  table.values["--mode"].words = "12 24";
  table.values["--trace-format"].words = "json text";
  table.values["--board"].paths = Paths::kDirectories;
  return rolu::BashCompletion(app, std::move(table));
}

}  // namespace rolu_sim
