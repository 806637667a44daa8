// Makes any calls of the families that talk to the MCU, one after another. The MCU answers mostly as it
// should, and now and then with anything. Checks each status, the callers' memory, what the MCU receives, the
// post-delays, that nothing hangs, and that nothing is left open at the end.
#include <pthread.h>

#include <atomic>

#include "fuzz/input.h"
#include "fuzz/stand_ins.h"
#include "mcu/link.h"
#include "simulator/board.h"
#include "simulator/preloaded.h"
#include "tests/oracle/made_call.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/plain_reading.h"
#include "tests/support/link_state.h"
#include "tests/support/process_state.h"

namespace {

using rolu_fuzz::FailIf;
using rolu_fuzz::Input;
using rolu_fuzz::Require;
using rolu_sim::Reply;
using rolu_test::CallRow;
using rolu_test::Made;
using rolu_test::OddAnswer;

constexpr size_t kMostCalls = 16;

struct Operation {
  size_t family;
  const CallRow* row;
};

// All operations, and the calls that take a family down without a command.
std::vector<Operation> AllOperations() {
  std::vector<Operation> operations;
  for (size_t i = 0; i < rolu_test::McuFamilies().size(); ++i) {
    const rolu_test::McuFamily& family = rolu_test::McuFamilies()[i];
    for (const CallRow& row : family.operations) operations.push_back({i, &row});
    for (const CallRow& row : rolu_test::SilentOperations()) {
      if (row.name == family.prefix + "Deinitialize") operations.push_back({i, &row});
    }
  }
  return operations;
}

// How many more commands the MCU receives until the library's wait for an answer is over.
std::atomic<int> commands_until_time_is_up{0};

void HearLine(const rolu_sim::WireEvent& line) {
  if (line.direction != rolu_sim::Direction::kToMcu || commands_until_time_is_up == 0) return;
  if (--commands_until_time_is_up > 0) return;
  rolu_fuzz::time_is_up = true;
  const ScopedLock lock(*io_op_lock);
  if (vpm_resp_event != nullptr) pthread_cond_signal(vpm_resp_event);
}

// The board, the library, and what is known of the families' states.
class Session {
 public:
  explicit Session(rolu_sim::Board& board) : board_(board) {}

  void Step(Input& input) {
    static const std::vector<Operation> operations = AllOperations();
    const Operation& operation = operations[input.Below(operations.size())];
    const CallRow& row = *operation.row;
    const bool takes_down = row.name.ends_with("_Deinitialize");
    if (up_[operation.family] == row.brings_up) {
      const ROLU_STATUS due = row.brings_up ? ROLU_STATUS_ALREADY_INITIALIZED : ROLU_STATUS_NOT_INITIALIZED;
      FailIf(row.name + " in the wrong state", FaultOf(Make(row), due, {}, ""));
    } else if (row.answers.empty()) {
      FailIf(row.name, FaultOf(Make(row), row.status, row.output, row.wire));
      up_[operation.family] = !takes_down;
    } else {
      const ROLU_STATUS status = CallWithOddAnswer(row, input);
      if (status != ROLU_STATUS_SUCCESS) return;
      if (row.brings_up) up_[operation.family] = true;
      if (takes_down) up_[operation.family] = false;
      if (row.name == "VPM_Initialize") RestoreScales(row);
      if (row.undo)
        Require(Make({row.name, row.undo}).status == ROLU_STATUS_SUCCESS, "what cannot be undone");
    }
  }

  // Each family that is up still works, and goes down.
  void End() {
    for (size_t i = 0; i < rolu_test::McuFamilies().size(); ++i) {
      const rolu_test::McuFamily& family = rolu_test::McuFamilies()[i];
      if (!up_[i]) continue;
      const CallRow& row = family.operations.back();
      FailIf(row.name + " at the end", FaultOf(Make(row), row.status, row.output, row.wire));
      board_.mcu().ClearScript();
      if (family.switches.deinitialize() != ROLU_STATUS_SUCCESS) FailIf(family.prefix, "does not go down");
    }
    // The board opens its line for a moment when it sees the library's end closed.
    Require(board_.mcu().WaitForHostClosed(kGenerous), "the port is still open");
  }

 private:
  Made Make(const CallRow& row) {
    rolu_test::ScriptAnswers(board_.mcu(), row);
    rolu_fuzz::slept_ms = 0;
    Made made = rolu_test::MakeCall(row.call);
    // A longer call hangs, however busy the machine is.
    if (made.duration > kGenerous) FailIf(row.name, "took too long");
    made.traffic = rolu_test::TrafficTo(board_.mcu());
    return made;
  }

  // The rows' voltages are computed with the scales that the power manager reads in this start-up.
  void RestoreScales(const CallRow& start_up) {
    Require(KAVO_ROLU_VPM_Deinitialize() == ROLU_STATUS_SUCCESS, "the power manager does not go down");
    FailIf(start_up.name, FaultOf(Make(start_up), start_up.status, start_up.output, start_up.wire));
  }

  ROLU_STATUS CallWithOddAnswer(const CallRow& row, Input& input) {
    constexpr size_t kLate = 10;
    const size_t kind = input.Below(16);
    const size_t command = input.Below(row.answers.size());
    const std::string healthy = BytesOf(row.answers[command]);
    OddAnswer odd = {&row, command, kind == kLate ? "" : AnswerOf(kind, healthy, input)};
    // The library waits for two lines; one alone would come when nobody waits any more.
    if (odd.Status() == ROLU_STATUS_VPM_NO_REPLY) odd.sent = "";
    CallRow faulty = row;
    faulty.answers[command] = odd.sent.empty() ? Reply::Silence() : Reply::Bytes(odd.sent);
    commands_until_time_is_up = odd.sent.empty() ? static_cast<int>(command) + 1 : 0;
    const Made made = Make(faulty);
    FailIf(row.name + " answered '" + odd.sent + "'", FaultOf(made, odd));
    if (made.status == ROLU_STATUS_SUCCESS && rolu_fuzz::slept_ms != row.post_delay_ms) {
      FailIf(row.name, "has another post-delay");
    }
    if (kind == kLate && LinkUsers() > 0) {
      board_.mcu().SendRaw(healthy);
      Require(WaitUntil(IsReplyStored), "the late answer was not received");
    }
    return made.status;
  }

  // Whole lines only: an unfinished line would become the beginning of the next answer.
  static std::string AnswerOf(size_t kind, const std::string& healthy, Input& input) {
    switch (kind) {
      case 8:
        return healthy.substr(0, input.Below(healthy.size())) + input.Text(input.Below(70)) + "\r\n";
      case 11:
        return std::string(rolu_test::kErrorReplies[input.Below(rolu_test::kErrorReplies.size())]) + "\r\n";
      case 12:
        return input.Text(input.Below(70)) + "\r\n" + input.Text(input.Below(70)) + "\r\n";
      case 13:
        return input.Text(input.Byte()) + "\n" + healthy;
      case 14:
        return healthy + healthy + input.Text(input.Below(70)) + "\r\n";
      case 15:
        return "[GI:0001FFFF8000]\r\n" + healthy + "[0000]\r\n[0001]\r\n";
      default:
        return healthy;
    }
  }

  rolu_sim::Board& board_;
  bool up_[4] = {};
};

rolu_sim::Board& TheBoard() {
  static rolu_sim::Board board([] {
    rolu_sim::BoardOptions options;
    options.serial.line_listener = HearLine;
    return options;
  }());
  return board;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  rolu_sim::EnsurePreloaded(*argc, *argv);
  TheBoard().AttachThisProcess();
  // The power manager prints a line whenever it comes up.
  Require(freopen("/dev/null", "w", stdout) != nullptr, "no /dev/null");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Measured for each input, since libFuzzer starts threads of its own after the first one. The previous
  // input ended with the board at rest, see Session::End.
  const ProcessState at_rest;
  Input input(data, size);
  Session session(TheBoard());
  for (size_t calls = 0; calls < kMostCalls && !input.empty(); ++calls) session.Step(input);
  session.End();
  Require(LeftSince(at_rest).empty(), "something is still open, or runs");
  return 0;
}
