// rolu-sim with one program on a private board.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/desk/mcu_settings.h"
#include "tests/desk/tool.h"

namespace desk_test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(RoluSim, GivesTheProgramsStatus) {
  const Directory directory;
  EXPECT_EQ(RunTool(directory, {"--", "sh", "-c", "exit 7"}).status, 7);
  EXPECT_EQ(RunTool(directory, {"sh", "-c", "kill -9 $$"}).status, 128 + SIGKILL);
  EXPECT_THAT(RunTool(directory, {"--version"}).out, MatchesRegex("rolu-sim [0-9.]+\n"));
}

TEST(RoluSim, LetsAProgramTalkToTheMicrocontroller) {
  const Directory directory;
  const Ended run =
      RunTool(directory, {"--mode", "24", "--battery", "0s=23.73", "--trace", "-", "--baud", "--", "sh", "-c",
                          "exec 3<>/proc/vpm_serial; printf 'MCVG\\r' >&3; head -n 1 <&3; uname -m"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, MatchesRegex(" +[0-9.]+ > MCVG [^\n]+\n +[0-9.]+ < 05DC +1500 units\n"));
  EXPECT_EQ(run.out, "05DC\r\narmv7l\n");
}

TEST(RoluSim, LetsScriptsUseTheWholeBoard) {
  const Directory directory;
  for (const auto& [program, script] :
       {std::pair("sh", "whole_board.sh"), {"bash", "whole_board.sh"}, {"python3", "whole_board.py"}}) {
    const Ended run = RunTool(directory, {program, std::string(SCRIPTS) + script});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
  }
}

TEST(RoluSim, NamesTheProgramsThatShareTheSerialPort) {
  const Directory directory;
  const Ended run =
      RunTool(directory, {"--", "sh", "-c",
                          "exec 3<>/proc/vpm_serial 4<>/proc/vpm_serial; stty -F /proc/vpm_serial "
                          "; " ROLU_SIM " ctl get board"});
  EXPECT_THAT(run.err, MatchesRegex("rolu-sim: program \"stty\" \\([0-9]+\\) opens the MCU's port while "
                                    "\"sh\" \\([0-9]+\\) has it open: [^\n]+\n"));
  EXPECT_THAT(run.out, HasSubstr("serial port holders: sh ("));

  const Ended inherited =
      RunTool(directory, {"--", "sh", "-c",
                          "child=$(exec 3<>/proc/vpm_serial; sleep 60 >/dev/null & echo $!); stty -F "
                          "/proc/vpm_serial; kill $child"});
  EXPECT_THAT(inherited.err, HasSubstr("while \"sleep\" ("));
}

// Asks the MCU for the voltage, then writes behind a block of memory if it is told to.
constexpr char kClient[] = R"(
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>
int main(int argc, char** argv) {
  char answer[7] = "";
  int port = open("/proc/vpm_serial", O_RDWR);
  if (port < 0 || write(port, "MCVG\r", 5) != 5) return 1;
  for (int taken = 0; taken < 6;) taken += read(port, answer + taken, 6 - taken);
  printf("%s", answer);
  fflush(stdout);
  char* block = malloc(argc);
  ssize_t length = read(open("/dev/zero", O_RDONLY), block, argc == 1 ? 1 : 4);
  free(block);
  return length < 0;
})";

std::string Compiled(const Directory& directory, const std::string& name, const std::string& options) {
  const std::string source = directory.Write("client.c", kClient);
  const Ended built =
      rolu_test::Process(Joined(Words("gcc -g -w " + options + " -o"), {directory.File(name), source}))
          .WaitForAll();
  EXPECT_EQ(built.status, 0) << built.err;
  return directory.File(name);
}

TEST(RoluSim, RunsAProgramWithGccsAddressSanitizer) {
  const Directory directory;
  const std::string client = Compiled(directory, "client", "-fsanitize=address");
  // The runtime keeps its shadow memory at a fixed address.
  const std::string script = R"(if setarch -R true; then exec setarch -R "$@"; fi; exec "$@")";
  const Ended good = RunTool(directory, {"--", "sh", "-c", script, "sh", client});
  EXPECT_EQ(good.out, "0333\r\n") << good.err;
  EXPECT_EQ(good.status, 0);
  const Ended bad = RunTool(directory, {"--", "sh", "-c", script, "sh", client, "overflow"});
  EXPECT_EQ(bad.out, "0333\r\n");
  EXPECT_THAT(bad.err, HasSubstr("heap-buffer-overflow"));
}

TEST(RoluSim, SaysWhyAProgramWillNotSeeTheBoard) {
  const Directory directory;
  const std::string client = Compiled(directory, "client", "");
  std::string other_processor = rolu_test::ReadFile(client);
  other_processor[18] = '\xF3';  // the machine in the ELF header: RISC-V
  const std::string foreign = directory.Write("foreign", other_processor);
  const std::string sudo = directory.Write("sudo", "#!/bin/sh\nexit 3\n");
  const std::string script = directory.Write("script", "#!" + foreign + "\n");
  const std::string privileged = directory.Write("privileged", rolu_test::ReadFile("/bin/true"));
  for (const std::string& path : {foreign, sudo, script}) chmod(path.c_str(), 0755);
  const bool is_root = chown(privileged.c_str(), 65534, 65534) == 0;
  chmod(privileged.c_str(), 04755);
  const struct {
    std::string words;
    std::string says;
  } kRows[] = {
      {Compiled(directory, "static", "-static"), "statically linked"},
      {foreign, "for another processor (ELF machine 243)"},
      {script, "for another processor"},
      {"env A=1 " + foreign, "for another processor"},
      {"nohup setsid -w " + sudo, "before rolu-sim, as in \"sudo rolu-sim "},
      {"env -i " + client, "before rolu-sim, as in \"env -i rolu-sim "},
      {"env -i " + client, "the program failed and opened nothing of the board"},
      {is_root ? privileged : "su --version", "set-user-ID"},
  };
  for (const auto& row : kRows) {
    EXPECT_THAT(RunTool(directory, Joined({"--"}, Words(row.words))).err, HasSubstr(row.says)) << row.words;
  }
  for (const char* const starts : {"", "env A=1 ", "setsid -w ", "nohup ", "sh -c "}) {
    const Ended run = RunTool(directory, Joined({"--"}, Words(starts + client)));
    EXPECT_EQ(run.out, "0333\r\n") << starts;
    EXPECT_EQ(run.err, "") << starts;
  }
}

TEST(RoluSim, PassesSignalsOnAndCleansUp) {
  const Directory directory;
  Tool trapping(directory,
                {"sh", "-c", "trap 'echo got it; exit 3' TERM; echo ready; while :; do sleep 0.05; done"});
  trapping.WaitForOutput("ready");
  trapping.Signal(SIGTERM);
  EXPECT_EQ(trapping.Wait(), 3);
  EXPECT_THAT(trapping.out(), HasSubstr("got it"));

  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Tool dying(directory, {"sh", "-c", "echo ready; exec sleep 60"});
    dying.WaitForOutput("ready");
    dying.Signal(signal);
    EXPECT_EQ(dying.Wait(), 128 + signal);
  }
}

// The background process holds the program's output: the run would not end if it lived on.
TEST(RoluSim, EndsProgramsAsTheirComputerEnds) {
  const char kReset[] =
      "python3 -c 'import os, fcntl, time; bus = os.open(\"/dev/i2c-3\", 2); fcntl.ioctl(bus, 0x706, 0x78); "
      "os.write(bus, b\"\\x0b\\x01\"); print(\"alive\")'";
  const char kBite[] =
      "printf 'WDTS0001\\rWDTE\\r' >/proc/vpm_serial; " ROLU_SIM " ctl wait BITE; echo alive";
  const char kForced[] = "setsid sleep 60 & printf 'MSSS1\\r' >/proc/vpm_serial; sleep 60";
  const char kOrder[] = "exec 3<>/proc/vpm_serial; printf 'ATPO\\r' >&3; head -n 1 <&3; exit 3";
  const struct {
    const char* options;
    const char* script;
    int status;
    bool lives_on;
    const char* says;
  } kRows[] = {
      {"--set shutdown.forced-delay=3", kForced, 7, false, "the forced shutdown was on for 3 MCU units ***"},
      {"", kOrder, 7, false, "*** POWER CUT at "},
      {"", kReset, 8, false, "*** RESET at "},
      {"", kBite, 6, false, "it was not triggered in time, the computer is reset ***"},
      {"--survive-power-cut", kOrder, 3, false, "a program ordered it, but the computer goes on ***"},
      {"--survive-power-cut", kReset, 0, true, "*** RESET at "},
      {"--survive-bite", kBite, 0, true, "but the computer goes on ***"},
      {"--survive-bite --fail-on-bite", kBite, 6, true, "bites: 1"},
  };
  const Directory directory;
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.options) + " -- " + row.script);
    const std::vector<std::string> run = Words(std::string("run --mcu-unit 10ms ") + row.options);
    const Ended done = RunTool(directory, Joined(run, {"--", "sh", "-c", row.script}));
    EXPECT_EQ(done.status, row.status) << done.err;
    EXPECT_EQ(done.out.find("alive") != std::string::npos, row.lives_on);
    EXPECT_THAT(done.err, HasSubstr(row.says));
  }
}

#ifdef ROLU
TEST(RoluSim, GivesSettingsToTheMicrocontrollerThatRoluFindsThere) {
  std::vector<std::string> run = {"run"};
  std::vector<std::string> get = {"--", ROLU, "get", "-n"};
  std::string values;
  for (const std::string& name : rolu_sim::McuSettingNames()) {
    std::string value = "off";
    if (name.ends_with("delay") || name.ends_with("time")) value = std::to_string(1000 + run.size());
    if (name.starts_with("battery.12v")) value = "11.108";
    if (name.starts_with("battery.24v")) value = "22.148";
    if (name.starts_with("wakeup.source-") || name == "alarm.active") value = "on";
    run.insert(run.end(), {"--set", name + '=' + value});
    get.push_back(name);
    values += value + '\n';
  }
  const Directory directory;
  EXPECT_EQ(RunTool(directory, Joined(run, get)).out, values);
  const Ended refused = RunTool(directory, {"run", "--set", "ignition.hard-of-delay=1", "--", "true"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err, HasSubstr("did you mean ignition.hard-off-delay?"));
}
#endif

}  // namespace
}  // namespace desk_test
