// Any bytes in any pieces, with the line left idle now and then: the lines that the port's reader and
// the line assembler make of them.
#include <fcntl.h>
#include <unistd.h>

#include "fuzz/input.h"
#include "mcu/line_assembler.h"
#include "mcu/link_state.h"
#include "tests/support/wire_model.h"

namespace {

using rolu_fuzz::Input;
using rolu_fuzz::Require;

// The same in plain words: what was received since the last line end, and whether a line that is too
// long is still being skipped after it was given up.
class Model {
 public:
  // The line that the byte ended, or nothing.
  std::string Take(char byte) {
    if (byte != '\r' && byte != '\n') {
      line_ += byte;
      return "";
    }
    const std::vector<std::string> lines = rolu_test::WholeLines(line_ + '\n');
    line_.clear();
    return lines.empty() ? "" : lines.front();
  }
  void Abandon() {
    if (line_.size() < 64) line_.clear();
  }

 private:
  std::string line_;
};

class Port {
 public:
  Port() {
    Require(pipe2(ends_, O_NONBLOCK) == 0, "no pipe");
    vpm_port = ends_[0];
    ResetPortReader();
  }
  ~Port() {
    close(ends_[0]);
    close(ends_[1]);
  }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;

  void Receive(const std::string& bytes) {
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(write(ends_[1], bytes.data(), bytes.size()) == size, "the pipe is full");
  }

 private:
  int ends_[2];
};

void Compare(LineAssembler& assembler, Model& model, unsigned char byte) {
  const bool complete = assembler.Take(byte);
  const std::string expected = model.Take(static_cast<char>(byte));
  Require(complete == !expected.empty(), "a line ends where none does, or does not where one does");
  if (!complete) return;
  Require(std::string(assembler.text(), assembler.length()) == expected, "another line was received");
  Require(assembler.text()[assembler.length()] == '\0', "the line is not terminated");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Port port;
  LineAssembler assembler;
  Model model;
  while (!input.empty()) {
    const size_t kind = input.Byte();
    if (kind == 0) {
      assembler.Abandon();
      model.Abandon();
      continue;
    }
    const std::string piece = input.Text(kind);
    port.Receive(piece);
    for (const char sent : piece) {
      unsigned char byte = 0;
      Require(recvbyte_vpm(&byte, 0) == 0, "a byte is missing");
      Require(byte == static_cast<unsigned char>(sent), "another byte was received");
      Compare(assembler, model, byte);
    }
    unsigned char byte = 0;
    Require(recvbyte_vpm(&byte, 0) == -2, "a byte too many was received");
  }
  return 0;
}
