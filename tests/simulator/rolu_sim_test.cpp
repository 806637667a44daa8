#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

// rolu-sim in a process of its own, with a directory for temporary files that only it uses.
class RoluSim {
 public:
  explicit RoluSim(std::vector<std::string> arguments) {
    char directory[] = "/tmp/rolu-sim-test-XXXXXX";
    temporary_ = mkdtemp(directory);
    int output[2];
    EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
    output_ = output[0];

    arguments.insert(arguments.begin(), ROLU_SIM);
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (std::string& word : arguments) words.push_back(word.data());
    words.push_back(nullptr);
    std::string variable = "TMPDIR=" + temporary_;
    std::string path = "PATH=/usr/bin:/bin";
    char* environment[] = {variable.data(), path.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDERR_FILENO);
    EXPECT_EQ(posix_spawn(&process_, ROLU_SIM, &actions, nullptr, words.data(), environment), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
  }

  ~RoluSim() {
    EXPECT_TRUE(std::filesystem::is_empty(temporary_)) << "left something behind";
    std::filesystem::remove_all(temporary_);
    close(output_);
  }

  pid_t process() const { return process_; }

  // Reads what it prints until `text` has come, or to the end.
  std::string ReadUntil(const std::string& text) {
    char buffer[256];
    ssize_t length = 0;
    while (printed_.find(text) == std::string::npos && (length = read(output_, buffer, sizeof buffer)) > 0) {
      printed_.append(buffer, static_cast<std::size_t>(length));
    }
    return printed_;
  }
  std::string Output() { return ReadUntil(std::string("\0never", 6)); }

  int WaitForExit() {
    Output();
    int status = 0;
    EXPECT_EQ(waitpid(process_, &status, 0), process_);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  std::string temporary_;
  std::string printed_;
  int output_ = -1;
  pid_t process_ = -1;
};

TEST(RoluSim, gives_each_outcome_its_exit_status_and_a_sentence) {
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* says;
  } kRows[] = {
      {{"--", "sh", "-c", "exit 7"}, 7, ""},
      {{"sh", "-c", "kill -9 $$"}, 128 + SIGKILL, ""},
      {{"--help"}, 0, "--battery"},
      {{"--version"}, 0, "rolu-sim "},
      {{}, 2, "PROGRAM is required"},
      {{"--bogus", "true"}, 2, "--bogus"},
      {{"--mode", "13", "true"}, 2, "{12,24}"},
      {{"--battery", "0s=12.6 2s", "true"}, 2, "as in 2s=12.6"},
      {{"/tmp"}, 126, "rolu-sim: /tmp"},
      {{"no-such-program"}, 127, "rolu-sim: no-such-program"},
  };
  for (const auto& row : kRows) {
    RoluSim simulator(row.arguments);
    EXPECT_EQ(simulator.WaitForExit(), row.status) << simulator.Output();
    EXPECT_THAT(simulator.Output(), HasSubstr(row.says));
  }
}

TEST(RoluSim, lets_a_program_talk_to_the_microcontroller) {
  RoluSim simulator({"--mode", "24", "--battery", "0s=23.73", "--trace", "-", "--baud", "--", "sh", "-c",
                     "exec 3<>/proc/vpm_serial; printf 'MCVG\\r' >&3; head -n 1 <&3; uname -m"});
  EXPECT_EQ(simulator.WaitForExit(), 0);
  EXPECT_THAT(simulator.Output(),
              MatchesRegex(" +[0-9.]+ > MCVG [^\n]+\n +[0-9.]+ < 05DC +1500 units\n05DC\r\narmv7l\n"));
}

TEST(RoluSim, lets_scripts_use_the_whole_board) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"sh", SCRIPTS "whole_board.sh"},
        std::vector<std::string>{"bash", SCRIPTS "whole_board.sh"},
        std::vector<std::string>{"python3", SCRIPTS "whole_board.py"}}) {
    RoluSim simulator(command);
    EXPECT_EQ(simulator.WaitForExit(), 0);
    EXPECT_EQ(simulator.Output(), "");
  }
}

TEST(RoluSim, passes_signals_on_and_cleans_up) {
  RoluSim trapping({"sh", "-c", "trap 'echo got it; exit 3' TERM; echo ready; while :; do sleep 0.05; done"});
  trapping.ReadUntil("ready");
  kill(trapping.process(), SIGTERM);
  EXPECT_EQ(trapping.WaitForExit(), 3);
  EXPECT_THAT(trapping.Output(), HasSubstr("got it"));

  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    RoluSim dying({"sh", "-c", "echo ready; exec sleep 60"});
    dying.ReadUntil("ready");
    kill(dying.process(), signal);
    EXPECT_EQ(dying.WaitForExit(), 128 + signal);
  }
}

}  // namespace
