// Sends the link's I/O thread any bytes in any pieces, leaves the line idle now and then, queues commands and
// lets callers wait. Checks which lines are kept as replies, which are the MCU's own messages and what these
// do, and which are discarded.
//
// The thread's body runs on the fuzzer's thread. It stops whenever it polls its port, and once where it
// lets a caller take a reply: there the functions at the end of this file stand in for those of the C
// library.
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "fuzz/input.h"
#include "fuzz/unsolicited_model.h"
#include "mcu/link.h"
#include "mcu/link_state.h"
#include "tests/oracle/plain_reading.h"

namespace {

using rolu_fuzz::Input;
using rolu_fuzz::Require;

pthread_cond_t reply_event = PTHREAD_COND_INITIALIZER;

// A signal and, if it tells of a reply, the line that the link stored, with its NUL.
using Effect = std::pair<pthread_cond_t*, std::string>;

// `found` is the line at the time of the signal. What an earlier, longer line left behind its NUL does not
// matter.
bool IsEffect(const Effect& found, const Effect& due) {
  return found.first == due.first && found.second.starts_with(due.second);
}

std::string StoredReply() REQUIRES(io_op_lock) {
  return {last_command_result, sizeof last_command_result};
}

// A plain model of the thread.
struct Model {
  void Receive(const std::string& bytes) {
    for (const char byte : bytes) Take(byte);
  }

  // A poll that ended without a byte.
  void Idle() {
    written += queue;
    queue.clear();
    if (++idle_polls < 100) return;
    idle_polls = 0;
    line.clear();
  }

  bool Queue(const std::string& command) {
    if (queue.size() + command.size() > 511) return false;
    queue += command;
    has_reply = false;
    return true;
  }

  // A waiting caller takes the reply if there is one.
  bool TakeReply() {
    if (has_reply) waits = false;
    return std::exchange(has_reply, false);
  }

  void Take(char byte) {
    line += byte;
    if (byte != '\r' && byte != '\n') return;
    const std::vector<std::string> lines = rolu_test::WholeLines(std::exchange(line, ""));
    if (lines.empty()) return;
    idle_polls = 0;
    if (rolu_test::IsBracketed(lines.front())) {
      pthread_cond_t* const event = messages.Take(lines.front());
      if (event != nullptr) effects.emplace_back(event, "");
    } else {
      Store(lines.front());
    }
  }

  void Store(const std::string& answer) {
    // A waiting caller takes its reply before the next one replaces it.
    if (waits && TakeReply() && !next_command.empty()) Queue(next_command);
    // The MCU cannot have answered a command that it has not seen.
    if (!queue.empty()) return;
    reply = answer + '\0';
    has_reply = true;
    effects.emplace_back(&reply_event, reply);
  }

  std::string line;
  int idle_polls = 0;
  std::string queue;
  std::string written;
  bool waits = false;
  // The caller queues this as soon as it has its reply.
  std::string next_command;
  std::string reply;
  bool has_reply = false;
  std::vector<Effect> effects;
  rolu_fuzz::UnsolicitedModel messages;
};

// One run of the thread, from the opening of its port.
class Session {
 public:
  explicit Session(Input& input) : input_(input) {
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends_) == 0, "no socket");
    const ScopedLock lock(*io_op_lock);
    vpm_port = ends_[0];
    vpm_tx_buffer = transmit_buffer_;
    vpm_resp_event = &reply_event;
    vpm_awaited_lines = 0;
    last_command_valid = false;
    tx_index = 0;
    ResetPortReader();
    rolu_fuzz::RegisterAnew();
    io_thread_active = true;
  }
  ~Session() {
    close(ends_[0]);
    close(ends_[1]);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void End() {
    Compare();
    model_.messages.CompareAllPops();
  }

  // The port is polled: true if there are bytes.
  bool Poll() {
    int bytes = 0;
    Require(ioctl(ends_[0], FIONREAD, &bytes) == 0, "the port cannot be asked");
    if (bytes > 0) return true;
    // The thread has dealt with all that came so far.
    Compare();
    while (idle_polls_to_come_ == 0) {
      if (input_.empty()) {
        io_thread_active = false;
        idle_polls_to_come_ = 1;
      } else if (Step()) {
        return true;
      }
    }
    --idle_polls_to_come_;
    model_.Idle();
    return false;
  }

  bool TakeFails() { return std::exchange(next_poll_fails_, false); }

  void HearSignal(pthread_cond_t* event) {
    const ScopedLock lock(*io_op_lock);
    effects_.emplace_back(event, event == &reply_event ? StoredReply() : "");
  }

  // The caller that waits runs, while the thread waits for it.
  void LetCallerRun() {
    const ScopedLock lock(*io_op_lock);
    Require(vpm_awaited_lines == 1 && last_command_valid, "the thread waits for nobody");
    last_command_valid = false;
    vpm_awaited_lines = 0;
    const std::string& command = model_.next_command;
    if (!command.empty()) send_vpm_command(command.data(), static_cast<int>(command.size()));
  }

 private:
  // What happens next; true if bytes arrived.
  bool Step() {
    const size_t kind = input_.Byte();
    switch (kind) {
      case 0:
        idle_polls_to_come_ = input_.Byte();
        return false;
      case 1:
        next_poll_fails_ = true;
        idle_polls_to_come_ = 1;
        return false;
      case 2:
        Queue(input_.Text(input_.Byte()));
        return false;
      case 3:
        WaitForReply();
        return false;
      case 4:
        model_.messages.ComparePop();
        return false;
      default:
        return Receive(input_.Text(kind - 4));
    }
  }

  bool Receive(const std::string& bytes) {
    if (bytes.empty()) return false;
    Require(write(ends_[1], bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
            "the line is full");
    model_.Receive(bytes);
    return true;
  }

  // Only one caller has a command under way: the previous one has its reply by now, or gave up.
  void Queue(const std::string& command) {
    SetWaiting(false);
    const bool queued = model_.Queue(command);
    Require(send_vpm_command(command.data(), static_cast<int>(command.size())) == (queued ? 0 : -2),
            "a command finds room where none is, or none where some is");
  }

  void WaitForReply() {
    model_.next_command = input_.Text(input_.Below(8));
    if (!model_.waits && !model_.has_reply) {
      SetWaiting(true);
    } else if (model_.TakeReply()) {
      const ScopedLock lock(*io_op_lock);
      last_command_valid = false;
      vpm_awaited_lines = 0;
    }
  }

  void SetWaiting(bool waits) {
    const ScopedLock lock(*io_op_lock);
    vpm_awaited_lines = waits ? 1 : 0;
    model_.waits = waits;
  }

  void Compare() {
    Require(std::ranges::equal(effects_, model_.effects, IsEffect),
            "other lines were kept, or other registrations signalled");
    effects_.clear();
    model_.effects.clear();
    char bytes[512];
    for (ssize_t count; (count = read(ends_[1], bytes, sizeof bytes)) > 0;) {
      written_.append(bytes, static_cast<size_t>(count));
    }
    Require(written_ == model_.written, "other bytes were written");
    const ScopedLock lock(*io_op_lock);
    Require(last_command_valid == model_.has_reply, "a reply is missing, or is one too many");
    Require(!last_command_valid || StoredReply().starts_with(model_.reply), "another reply is stored");
  }

  Input& input_;
  int ends_[2] = {-1, -1};  // the link's, and the MCU's
  char transmit_buffer_[kTxCapacity] = {};
  Model model_;
  size_t idle_polls_to_come_ = 0;
  bool next_poll_fails_ = false;
  std::vector<Effect> effects_;
  std::string written_;
};

Session* session = nullptr;

}  // namespace

extern "C" int select(int, fd_set* readable, fd_set*, fd_set*, timeval*) {
  Require(session != nullptr, "nobody polls");
  // After a failed poll the thread waits for the rest of its time, without the port.
  if (!FD_ISSET(vpm_port, readable)) return 0;
  if (session->Poll()) return 1;
  FD_ZERO(readable);
  return session->TakeFails() ? -1 : 0;
}

extern "C" int pthread_cond_signal(pthread_cond_t* event) noexcept {
  Require(session != nullptr, "nobody signals");
  session->HearSignal(event);
  return 0;
}

extern "C" int pthread_cond_timedwait(pthread_cond_t* event, pthread_mutex_t*, const timespec*) {
  Require(event == &vpm_resp_taken, "the thread waits for something else");
  session->LetCallerRun();
  return 0;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  if (io_op_lock == nullptr) io_op_lock = new CCriticalSection;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Session current(input);
  session = &current;
  VPMHandleThread(nullptr);
  current.End();
  session = nullptr;
  return 0;
}
