#include "bench/mcu_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "simulator/line/pseudo_terminal.h"
#include "simulator/system/system_error.h"
#include "simulator/system/unique_fd.h"

namespace rolu_bench {
namespace {

// Messages of each kind that the library tells apart: samples, warnings, ignored ones, a line that is too
// long.
constexpr std::array<std::string_view, 5> kMessages = {
    "[GI:00010002FFFF]",
    "[0000 ignition]",
    "[0001 battery]",
    "[GI:0001]",
    "[a line of more characters than the library's sixty-three hold is dropped]",
};

struct Answer {
  std::string_view command;
  std::string bytes;
};

std::string MessagesThenOk() {
  std::string lines;
  for (std::size_t i = 0; i < kMessagesBeforeTriggerAnswer; ++i) {
    lines.append(kMessages[i % kMessages.size()]).append("\r\n");
  }
  return lines + "OK\r\n";
}

void WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written <= 0) _exit(1);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// A request to read registers is eight bytes long, and its first byte, the address, begins no command.
constexpr std::size_t kModbusRequestLength = 8;

bool IsModbusRequest(std::string_view bytes) {
  return !bytes.empty() && bytes.front() == kModbusUnit;
}

std::string WithModbusChecksum(std::string frame) {
  unsigned checksum = 0xFFFF;
  for (const char byte : frame) {
    checksum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit)
      checksum = (checksum & 1U) != 0 ? checksum >> 1U ^ 0xA001U : checksum >> 1U;
  }
  frame += static_cast<char>(checksum & 0xFFU);
  frame += static_cast<char>(checksum >> 8U);
  return frame;
}

// The unit, the function "read holding registers", two bytes of data.
std::string ModbusAnswer() {
  return WithModbusChecksum({kModbusUnit, 3, 2, kWatchdogTime >> 8, kWatchdogTime & 0xFF});
}

[[noreturn]] void AnswerCommands(int master) {
  const std::array<Answer, 3> answers = {{
      {"Hello", "OK\r\n"},
      {"WDTG", "003C\r\n"},
      {"WDTR", MessagesThenOk()},
  }};
  const std::string modbus_answer = ModbusAnswer();
  std::array<char, 64> bytes{};
  std::string command;
  for (;;) {
    const ssize_t count = read(master, bytes.data(), bytes.size());
    if (count <= 0) _exit(1);
    for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
      if (byte != '\r' || IsModbusRequest(command)) {
        command += byte;
        if (!IsModbusRequest(command) || command.size() < kModbusRequestLength) continue;
        WriteAll(master, modbus_answer);
        command.clear();
        continue;
      }
      for (const Answer& answer : answers) {
        if (answer.command == command) WriteAll(master, answer.bytes);
      }
      command.clear();
    }
  }
}

}  // namespace

McuProcess::McuProcess() {
  const rolu_sim::PseudoTerminal terminal;
  // While no program has the device open, the MCU would read errors: this descriptor keeps it open.
  const rolu_sim::UniqueFd device(open(terminal.device_path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!device) rolu_sim::ThrowErrno("opening " + terminal.device_path());
  if (fcntl(terminal.master(), F_SETFL, 0) != 0) rolu_sim::ThrowErrno("preparing a pseudo-terminal");
  device_path_ = terminal.device_path();
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ < 0) rolu_sim::ThrowErrno("starting the MCU's process");
  if (process_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    AnswerCommands(terminal.master());
  }
}

McuProcess::~McuProcess() {
  HangUp();
}

bool McuProcess::HangUp() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  process_ = -1;
  return access(device_path_.c_str(), F_OK) != 0;
}

}  // namespace rolu_bench
