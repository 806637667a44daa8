// --help, the man page and the completion.

#include "tests/tools/rolu_process.h"

namespace rolu_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kCommands[] = {
    "status",       "get",           "set",          "list",           "save",         "load",
    "verify",       "watch",         "doctor",       "clock show",     "clock set",    "clock sync",
    "alarm show",   "alarm daily",   "alarm hourly", "alarm weekly",   "alarm off",    "watchdog on",
    "watchdog off", "watchdog feed", "i2c detect",   "explain",        "raw",          "i2c read",
    "i2c write",    "i2c dump",      "pins read",    "pins drive",     "pins prepare", "light",
    "backlight",    "defaults",      "reset",        "force-shutdown", "help",
};

TEST(RoluDocuments, EveryCommandHasHelpAndAPlaceInTheManPage) {
  const std::string page = Rolu("--generate-man").out;
  for (const char* const command : kCommands) {
    const Ended help = Rolu(std::string(command) + " --help");
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_THAT(help.out, HasSubstr(std::string("Usage: rolu ") + command)) << command;
    std::string heading = std::string("\n.SS rolu ") + command + " ";
    for (size_t at = 0; (at = heading.find('-', at)) != std::string::npos; at += 2) heading.insert(at, "\\");
    EXPECT_THAT(page, HasSubstr(heading)) << command;
  }
}

TEST(RoluDocuments, HelpShowsTheHelpOfACommand) {
  RunSteps({{"help alarm daily", 0, "Usage: rolu alarm daily"},
            {"help", 0, "Usage: rolu [OPTIONS]"},
            {"help alram", 2, "", "there is no command \"alram\"; did you mean alarm?"}});
}

TEST(RoluDocuments, HelpAndManPageTellTheExitStatusesAndTheSettings) {
  const Ended help = Rolu("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("  5         busy: another process holds the MCU's port"));
  const std::string page = Rolu("--generate-man").out;
  EXPECT_THAT(page, StartsWith(".TH ROLU 1"));
  EXPECT_THAT(page, HasSubstr("\\fBbattery.12v.lbp\\-threshold\\fR\n"));
  EXPECT_THAT(page, HasSubstr(".SH EXIT STATUS\n"));
  EXPECT_THAT(Rolu("--version").out, StartsWith("rolu "));
}

// The completions that bash offers for the last of `words`.
std::vector<std::string> Completions(const std::string& words) {
  TemporaryDirectory directory;
  WriteFile(directory.File("rolu"), Rolu("--generate-completion").out);
  WriteFile(directory.File("unit-17.json"), "");
  WriteFile(directory.File("ask"), "cd " + directory.File("") + " && source ./rolu\nCOMP_WORDS=(" + words +
                                       ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_rolu\nprintf '%s\\n' "
                                       "\"${COMPREPLY[@]}\"\n");
  const Ended bash =
      Process({"bash", "--norc", directory.File("ask")}, "", {"PATH=/usr/bin:/bin"}).WaitForAll();
  EXPECT_EQ(bash.status, 0) << bash.err;
  return Words(bash.out);
}

TEST(RoluDocuments, BashCompletesCommandsSettingsValuesEventsAndFiles) {
  EXPECT_THAT(Completions("rolu sta"), ElementsAre("status"));
  EXPECT_THAT(Completions("rolu alarm ''"), ElementsAre("show", "hourly", "daily", "weekly", "off"));
  EXPECT_THAT(Completions("rolu --json get battery.l"),
              ElementsAre("battery.low-event-delay", "battery.low-hard-off-delay", "battery.lbp"));
  EXPECT_THAT(Completions("rolu set battery.v"), IsEmpty()) << "it cannot be set";
  EXPECT_THAT(Completions("rolu set battery.m"), ElementsAre("battery.mode="));
  EXPECT_THAT(Completions("rolu set battery.mode ="), ElementsAre("12V", "24V"));
  EXPECT_THAT(Completions("rolu set battery.lbp = of"), ElementsAre("off"));
  EXPECT_THAT(Completions("rolu set battery.lbp = on battery.mode ="), ElementsAre("12V", "24V"));
  EXPECT_THAT(Completions("rolu set watchdog.time ="), IsEmpty()) << "a number";
  EXPECT_THAT(Completions("rolu set battery.mode=2"), ElementsAre("battery.mode=24V"))
      << "a word that is whole";
  EXPECT_THAT(Completions("rolu watch --on ign"), ElementsAre("ignition-on", "ignition-off"));
  EXPECT_THAT(Completions("rolu load unit"), ElementsAre("unit-17.json"));
  EXPECT_THAT(Completions("rolu load --d"), ElementsAre("--dry-run"));
}

}  // namespace
}  // namespace rolu_test
