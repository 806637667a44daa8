#include "simulator/program/board_environment.h"

#include <fmt/format.h>
#include <stdlib.h>

#include <filesystem>

#include "cli/command_line.h"
#include "simulator/desk/parameter.h"
#include "simulator/devices/board_paths.h"
#include "simulator/environment.h"
#include "simulator/program/installed_files.h"

namespace rolu_sim {
namespace {

constexpr char kPreloadVariable[] = "LD_PRELOAD";
constexpr char kSanitizerVariable[] = "ASAN_OPTIONS";
constexpr char kAnyOrder[] = ":verify_asan_link_order=0";

std::string PreloadList() {
  const char* const present = getenv(kPreloadVariable);
  return PreloadListWith(present == nullptr ? "" : present, FindPreloadObject().string());
}

// gcc's address sanitizer refuses to start when another object comes before its runtime. It works all the
// same, and intercepts what the object calls.
std::string SanitizerOptions() {
  const char* const present = getenv(kSanitizerVariable);
  const std::string options = present == nullptr ? "" : present;
  return options.ends_with(kAnyOrder) ? options : options + kAnyOrder;
}

std::string CommandDirectoryOf(const std::string& board_directory) {
  return board_directory + kCommandDirectoryName;
}

}  // namespace

void MeetBoard(const std::string& board_directory) {
  SetEnvironment(kRootVariable, board_directory);
  SetEnvironment(kPreloadVariable, PreloadList());
  SetEnvironment(kSanitizerVariable, SanitizerOptions());
  AddCommandDirectory(CommandDirectoryOf(board_directory));
}

std::string ShellWord(const std::string& text) {
  constexpr char kPlain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+:,@%";
  if (text.find_first_not_of(kPlain) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char character : text) quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + '\'';
}

std::string ShellAssignments(const std::string& board_directory) {
  return fmt::format(R"({0}={1} {2}={3} {4}="${{{4}-}}"{5} PATH={6}:"$PATH")", kRootVariable,
                     ShellWord(board_directory), kPreloadVariable, ShellWord(PreloadList()),
                     kSanitizerVariable, kAnyOrder, ShellWord(CommandDirectoryOf(board_directory)));
}

void AddBoardChoice(CLI::App& command, BoardChoice& board) {
  command
      .add_option("--board", board.directory,
                  "The board's directory; else the board that this program runs on")
      ->type_name("DIR");
  AddWaitOption(command, board);
}

void AddWaitOption(CLI::App& command, BoardChoice& board) {
  rolu::AddDurationOption(command, "--wait", board.patience,
                          "Wait this long for the board to come up (join: and for its computer to be on)",
                          std::chrono::milliseconds(0), kLongestTime);
}

std::string BoardDirectory(const std::string& named) {
  const char* const met = getenv(kRootVariable);
  if (named.empty() && met != nullptr && *met != '\0') return met;
  if (named.empty()) throw UsageError("which board? Name its directory with --board DIR");
  // Without symbolic links: the preloaded object compares this path with a program's working directory. The
  // links of a directory that this user may not look into stay; whoever uses it is refused there.
  const std::filesystem::path absolute = std::filesystem::absolute(named);
  std::error_code refused;
  const std::filesystem::path canonical = std::filesystem::weakly_canonical(absolute, refused);
  std::string directory = (refused ? absolute : canonical).string();
  while (directory.size() > 1 && directory.back() == '/') directory.pop_back();
  return directory;
}

}  // namespace rolu_sim
