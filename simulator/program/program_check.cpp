#include "simulator/program/program_check.h"

#include <elf.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <utility>

#include "cli/messages.h"
#include "simulator/devices/board_paths.h"
#include "simulator/program/installed_files.h"

namespace rolu_sim {
namespace {

namespace fs = std::filesystem;

constexpr char kArmTriplet[] = "arm-linux-gnueabihf";
// Where Debian's packages for cross-compilation keep the C library.
constexpr char kArmSystem[] = "/usr/arm-linux-gnueabihf";

// A script may have a script as its interpreter. The kernel follows as many.
constexpr int kMaxInterpreters = 4;

// Other files are not read: some of /proc block.
bool IsProgram(const fs::path& path) {
  std::error_code failed;
  return fs::is_regular_file(path, failed) && access(path.c_str(), X_OK) == 0;
}

// The file that the exec functions would run; empty when there is none.
std::string FindProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) return name;
  const char* const list = getenv("PATH");
  std::istringstream directories(list == nullptr ? "/bin:/usr/bin" : list);
  for (std::string directory; std::getline(directories, directory, ':');) {
    const fs::path path = fs::path(directory.empty() ? "." : directory) / name;
    if (IsProgram(path)) return path;
  }
  return {};
}

// The loader gives a process that gains rights by its file no preloaded object.
bool GainsRights(const std::string& path) {
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) return false;
  if ((file.st_mode & S_ISUID) != 0 && file.st_uid != geteuid()) return true;
  if ((file.st_mode & S_ISGID) != 0 && file.st_gid != getegid()) return true;
  return geteuid() != 0 && getxattr(path.c_str(), "security.capability", nullptr, 0) > 0;
}

struct Executable {
  unsigned machine = 0;
  bool has_loader = false;
};

template <typename Header, typename Segment>
std::optional<Executable> ReadHeaders(std::istream& file) {
  Header header{};
  file.seekg(0);
  if (!file.read(reinterpret_cast<char*>(&header), sizeof header)) return std::nullopt;
  Executable found{.machine = header.e_machine};
  file.seekg(static_cast<std::streamoff>(header.e_phoff));
  Segment segment{};
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    if (!file.read(reinterpret_cast<char*>(&segment), sizeof segment)) return std::nullopt;
    found.has_loader = found.has_loader || segment.p_type == PT_INTERP;
  }
  return found;
}

// Nothing for a file that is not a whole executable of a little-endian processor.
std::optional<Executable> ReadExecutable(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, EI_NIDENT> identity{};
  file.read(identity.data(), identity.size());
  if (!file || std::string_view(identity.data(), SELFMAG) != ELFMAG || identity[EI_DATA] != ELFDATA2LSB)
    return std::nullopt;
  return identity[EI_CLASS] == ELFCLASS64 ? ReadHeaders<Elf64_Ehdr, Elf64_Phdr>(file)
                                          : ReadHeaders<Elf32_Ehdr, Elf32_Phdr>(file);
}

// The words behind #! in a script's first line; none for another file.
std::vector<std::string> InterpreterOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string line(256, '\0');
  file.read(line.data(), static_cast<std::streamsize>(line.size()));
  line.resize(static_cast<std::size_t>(file.gcount()));
  if (!line.starts_with("#!")) return {};
  std::istringstream words(line.substr(2, line.find('\n') - 2));
  return {std::istream_iterator<std::string>(words), {}};
}

// A program that starts another one: env, which may drop the environment, and others that only have options.
struct Starter {
  bool drops_environment = false;
  std::size_t skipped_words = 0;  // 0: not a starter
};

Starter ReadStarter(const std::string& name, const std::vector<std::string>& words) {
  if (name != "env" && name != "nohup" && name != "setsid") return {};
  Starter starter{.skipped_words = 1};
  for (; starter.skipped_words < words.size(); ++starter.skipped_words) {
    const std::string& word = words[starter.skipped_words];
    const bool is_assignment = name == "env" && word.find('=') != std::string::npos;
    if (!is_assignment && !word.starts_with('-')) break;
    const bool drops = word == "-i" || word == "-" || word == "--ignore-environment";
    starter.drops_environment = starter.drops_environment || (name == "env" && drops);
  }
  return starter;
}

std::string NameOfMachine(unsigned machine) {
  switch (machine) {
    case EM_386:
      return "32-bit x86";
    case EM_X86_64:
      return "x86-64";
    case EM_ARM:
      return "32-bit ARM";
    case EM_AARCH64:
      return "64-bit ARM";
    default:
      return fmt::format("another processor (ELF machine {})", machine);
  }
}

ProgramKind KindOf(const std::string& path, unsigned& machine) {
  static const std::optional<Executable> self = ReadExecutable("/proc/self/exe");
  const std::optional<Executable> executable = ReadExecutable(path);
  if (!executable) return ProgramKind::kOrdinary;
  machine = executable->machine;
  if (GainsRights(path)) return ProgramKind::kPrivileged;
  if (!executable->has_loader) return ProgramKind::kStatic;
  return self && machine != self->machine ? ProgramKind::kForeign : ProgramKind::kOrdinary;
}

void Warn(const std::string& path, const std::string& what, const std::string& advice) {
  rolu::Say(fmt::format("{} {}: it will not see the board. {}", path, what, advice));
}

// A value of LD_PRELOAD for an emulated program, whose children are programs of this system: each one's
// loader puts the name of its own library directory for $LIB.
std::string PreloadForBoth(const fs::path& foreign_object, const std::string& board_directory) {
  for (const auto& [triplet, object] :
       {std::pair(kArmTriplet, foreign_object), {ROLU_SIM_TRIPLET, FindPreloadObject()}}) {
    const fs::path directory = board_directory + kObjectDirectory + '/' + triplet;
    std::error_code there_already;
    fs::create_directories(directory);
    fs::create_symlink(object, directory / object.filename(), there_already);
  }
  return board_directory + "/$LIB/" + foreign_object.filename().string();
}

// The words before an ARM program; empty when something is missing, which `missing` then names.
std::vector<std::string> EmulatorWords(const std::string& board_directory,
                                       std::vector<std::string>& missing) {
  const std::string emulator = FindProgram("qemu-arm");
  const std::optional<fs::path> object = FindPreloadObjectFor(kArmTriplet);
  if (emulator.empty()) missing.emplace_back("qemu-arm (Debian package qemu-user)");
  if (!object) {
    missing.emplace_back(
        "the board's preloaded object for armhf (./run build arm-library makes it, rolu-tools for armhf has "
        "it in lib/arm-linux-gnueabihf/rolu-sim)");
  }
  if (!fs::exists(kArmSystem))
    missing.emplace_back("the C library for armhf (Debian package libc6-armhf-cross)");
  if (!missing.empty()) return {};
  return {emulator, "-L", kArmSystem, "-E", "LD_PRELOAD=" + PreloadForBoth(*object, board_directory)};
}

std::vector<std::string> PrepareForeign(std::vector<std::string> command, const ProgramCheck& program,
                                        const std::string& board_directory) {
  std::vector<std::string> emulator;
  std::string advice = "Build it for this processor.";
  if (program.machine == EM_ARM && program.position) {
    // These end a word of LD_PRELOAD or of the emulator's option.
    if (board_directory.find_first_of(" :,") != std::string::npos) {
      advice = "To run it here, give the board a directory without a space, colon or comma in its path.";
    } else {
      std::vector<std::string> missing;
      emulator = EmulatorWords(board_directory, missing);
      if (emulator.empty()) advice = fmt::format("To run it here, install {}.", fmt::join(missing, " and "));
    }
  }
  if (emulator.empty()) {
    Warn(program.path, "is a program for " + NameOfMachine(program.machine), advice);
    return command;
  }
  // The emulator itself is a program of this system.
  unsetenv("LD_PRELOAD");
  const auto word = command.begin() + static_cast<std::ptrdiff_t>(*program.position);
  *word = program.path;
  command.insert(word, emulator.begin(), emulator.end());
  return command;
}

}  // namespace

ProgramCheck CheckProgram(const std::vector<std::string>& command) {
  std::vector<std::string> words = command;
  ProgramCheck check{.position = 0};
  for (int depth = 0; depth <= kMaxInterpreters && !words.empty(); ++depth) {
    check.path = FindProgram(words.front());
    if (!IsProgram(check.path)) return check;
    const std::string name = fs::path(check.path).filename();
    const Starter starter = ReadStarter(name, words);
    check.kind = KindOf(check.path, check.machine);
    if (name == "sudo" || starter.drops_environment) check.kind = ProgramKind::kDropsEnvironment;
    if (check.kind != ProgramKind::kOrdinary) return check;
    if (starter.skipped_words > 0) {
      words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(starter.skipped_words));
      if (check.position) *check.position += starter.skipped_words;
    } else {
      words = InterpreterOf(check.path);
      check.position.reset();
    }
  }
  return check;
}

std::vector<std::string> PrepareProgram(const std::vector<std::string>& command,
                                        const std::string& board_directory) {
  const ProgramCheck program = CheckProgram(command);
  switch (program.kind) {
    case ProgramKind::kOrdinary:
      break;
    case ProgramKind::kStatic:
      Warn(program.path, "is statically linked", "Link it dynamically.");
      break;
    case ProgramKind::kPrivileged:
      Warn(program.path,
           "gains rights by its file (set-user-ID or the like), so the system preloads nothing into it",
           "Run rolu-sim as root, or a copy of the program without these rights.");
      break;
    case ProgramKind::kForeign:
      return PrepareForeign(command, program, board_directory);
    case ProgramKind::kDropsEnvironment:
      rolu::Say(fmt::format(
          "{} drops the environment: what it starts will not see the board. Put it before rolu-sim, as in "
          "\"{} rolu-sim ... -- PROGRAM\"",
          program.path, program.path.ends_with("env") ? "env -i" : "sudo"));
      break;
  }
  return command;
}

}  // namespace rolu_sim
