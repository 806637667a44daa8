#include "simulator/mcu/mcu_serial.h"

#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "simulator/background_thread.h"

namespace rolu_sim {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// A byte of 8N1 is ten bits.
constexpr std::chrono::nanoseconds kByteTime115200{10 * 1'000'000'000LL / 115200};

// No command of the protocol comes near; a longer one is cut, so that a program that never sends a
// CR does not fill the memory.
constexpr std::size_t kMaxCommandCharacters = 1024;

timespec ToTimespec(std::chrono::nanoseconds duration) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
  timespec result{};
  result.tv_sec = static_cast<time_t>(seconds.count());
  result.tv_nsec = static_cast<long>((duration - seconds).count());
  return result;
}

bool IsLineEnd(char byte) {
  return byte == '\r' || byte == '\n';
}

}  // namespace

McuSerial::McuSerial(McuSerialOptions options)
    : byte_time_(options.paced ? kByteTime115200 : std::chrono::nanoseconds(0)),
      answer_route_(std::move(options.answer_route)),
      event_listener_(std::move(options.event_listener)),
      log_(std::move(options.line_listener)) {
  model_.clock.Set(options.clock_start, std::chrono::steady_clock::now());
  StartThread();
}

McuSerial::~McuSerial() {
  StopThread();
}

void McuSerial::StartThread() {
  stopping_ = false;
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

void McuSerial::StopThread() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  wakeup_.Signal();
  thread_.join();
}

std::string McuSerial::DevicePath() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return terminal_.device_path();
}

void McuSerial::Script(CommandMatch match, Reply reply, int times) {
  const std::lock_guard<std::mutex> lock(mutex_);
  script_.Add(std::move(match), std::move(reply), times);
}

void McuSerial::ClearScript() {
  const std::lock_guard<std::mutex> lock(mutex_);
  script_.Clear();
}

void McuSerial::SendRaw(std::string bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (terminal_.master() < 0) return;
  scheduled_.emplace(std::chrono::steady_clock::now(), std::move(bytes));
  SendFromOtherThread();
}

void McuSerial::SetSilent(bool silent) {
  const std::lock_guard<std::mutex> lock(mutex_);
  silent_ = silent;
}

void McuSerial::StopReading(bool stopped) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    reading_stopped_ = stopped;
  }
  wakeup_.Signal();
}

// The thread rests meanwhile: it must not wait for a descriptor that is another file's already.
void McuSerial::HangUp() {
  StopThread();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    terminal_.Close();
    received_.clear();
    command_.clear();
    scheduled_.clear();
    outgoing_.clear();
    sent_line_.clear();
    port_full_ = false;
    host_open_ = false;
    host_closed_.notify_all();
  }
  StartThread();
}

void McuSerial::Reopen() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (terminal_.master() >= 0) return;
    terminal_ = PseudoTerminal();
  }
  wakeup_.Signal();
}

std::vector<McuEvent> McuSerial::Events() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return model_.Events();
}

bool McuSerial::WaitForEvent(McuEventKind kind, std::chrono::milliseconds timeout, std::size_t count) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return event_told_.wait_for(lock, timeout, [&] {
    const std::vector<McuEvent>& events = model_.Events();
    const auto happened = std::count_if(events.begin(), events.end(),
                                        [&](const McuEvent& event) { return event.kind == kind; });
    return static_cast<std::size_t>(happened) >= count;
  });
}

McuSerial::ModelAccess::ModelAccess(McuSerial& serial) : serial_(serial), lock_(serial.mutex_) {
  serial_.FollowModel();
}

McuSerial::ModelAccess::~ModelAccess() {
  serial_.FollowModel();
  serial_.SendFromOtherThread();
}

void McuSerial::FollowPrograms() {
  const std::lock_guard<std::mutex> lock(mutex_);
  FollowHost();
}

bool McuSerial::IsOpenByHost() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return terminal_.IsOpenByHost();
}

bool McuSerial::WaitForHostClosed(std::chrono::milliseconds timeout) {
  std::unique_lock<std::mutex> lock(mutex_);
  return host_closed_.wait_for(lock, timeout, [this] {
    FollowHost();
    return !host_open_;
  });
}

void McuSerial::Run() {
  prctl(PR_SET_TIMERSLACK, 1UL);
  std::unique_lock<std::mutex> lock(mutex_);
  while (!stopping_) {
    terminal_.WantRoom(port_full_);
    std::array<pollfd, 2> sources{{{wakeup_.fd(), POLLIN, 0}, {terminal_.changes(), POLLIN, 0}}};
    timespec wait{};
    const std::optional<TimePoint> due = NextDue();
    if (due) {
      wait = ToTimespec(std::max(*due - std::chrono::steady_clock::now(), std::chrono::nanoseconds(0)));
    }
    lock.unlock();
    ppoll(sources.data(), sources.size(), due ? &wait : nullptr, nullptr);
    wakeup_.Take();
    lock.lock();
    terminal_.TakeChanges();

    // A new program's command can only be among the bytes that are read here if the close of its
    // predecessor is known after it: nothing is answered between the two.
    ReceiveBytes();
    FollowHost();
    HandleArrivedBytes();
    FollowModel();
    SendDueBytes();
  }
}

void McuSerial::ReceiveBytes() {
  if (reading_stopped_) return;
  std::array<char, 4096> buffer{};
  ssize_t length = 0;
  while ((length = read(terminal_.master(), buffer.data(), buffer.size())) > 0) {
    const TimePoint now = std::chrono::steady_clock::now();
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(length));
    log_.RecordChunk(Direction::kToMcu, now, bytes);
    receive_line_free_ = std::max(receive_line_free_, now);
    for (const char byte : bytes) {
      receive_line_free_ += byte_time_;
      received_.push_back({receive_line_free_, byte});
    }
  }
}

void McuSerial::FollowHost() {
  const bool was_open = std::exchange(host_open_, terminal_.IsOpenByHost());
  if (!was_open || host_open_) return;
  terminal_.DiscardUnreadBytes();
  outgoing_.clear();
  port_full_ = false;
  host_closed_.notify_all();
}

void McuSerial::HandleArrivedBytes() {
  while (!received_.empty() && received_.front().arrival <= std::chrono::steady_clock::now()) {
    const ReceivedByte byte = received_.front();
    received_.pop_front();
    HandleArrivedByte(byte);
  }
}

void McuSerial::HandleArrivedByte(const ReceivedByte& received) {
  if (received.byte != '\r') {
    if (command_.size() < kMaxCommandCharacters) command_ += received.byte;
    return;
  }
  if (command_.empty()) return;
  const std::string command = std::exchange(command_, {});
  log_.RecordLine(Direction::kToMcu, received.arrival, command);
  if (!silent_) AnswerCommand(command);
}

void McuSerial::AnswerCommand(std::string_view command) {
  FollowModel();
  TimePoint due = std::chrono::steady_clock::now();
  const AskModel ask_model = [&] { return AnswerOfModel(command); };
  std::optional<Reply> reply = script_.Take(command);
  if (!reply) reply = answer_route_ ? answer_route_(command, ask_model) : ask_model();
  for (const ReplyChunk& chunk : reply->chunks()) {
    due += chunk.delay;
    scheduled_.emplace(due, chunk.bytes);
  }
}

Reply McuSerial::AnswerOfModel(std::string_view command) {
  std::string answer;
  for (const std::string& line : model_.Execute(command, std::chrono::steady_clock::now())) {
    answer.append(line).append(kLineEnd);
  }
  return answer.empty() ? Reply::Silence() : Reply::Bytes(std::move(answer));
}

// Takes what the MCU has done by itself. Lines for a port that has hung up are lost.
void McuSerial::FollowModel() {
  const TimePoint now = std::chrono::steady_clock::now();
  for (const std::string& line : model_.TakeDueLines(now)) {
    if (!silent_ && terminal_.master() >= 0) scheduled_.emplace(now, std::string(line).append(kLineEnd));
  }
  const std::vector<McuEvent>& events = model_.Events();
  if (events_told_ == events.size()) return;
  for (; events_told_ < events.size(); ++events_told_) {
    if (event_listener_) event_listener_(events[events_told_]);
  }
  event_told_.notify_all();
}

void McuSerial::SendFromOtherThread() {
  FollowHost();
  SendDueBytes();
  wakeup_.Signal();
}

void McuSerial::SendDueBytes() {
  const TimePoint now = std::chrono::steady_clock::now();
  while (!scheduled_.empty() && scheduled_.begin()->first <= now) {
    if (outgoing_.empty()) send_line_free_ = std::max(send_line_free_, now);
    outgoing_.push_back(std::move(scheduled_.begin()->second));
    scheduled_.erase(scheduled_.begin());
  }
  port_full_ = false;
  while (!port_full_ && !outgoing_.empty()) {
    const std::size_t count = SendableBytes(now);
    if (count == 0) return;
    SendBytes(count);
  }
}

// How much of the first chunk the line has had the time for.
std::size_t McuSerial::SendableBytes(TimePoint now) const {
  const std::size_t waiting = outgoing_.front().size();
  if (byte_time_.count() == 0) return waiting;
  const auto elapsed = std::max(now - send_line_free_, std::chrono::nanoseconds(0));
  return std::min(waiting, static_cast<std::size_t>(elapsed / byte_time_));
}

// Sends from the first chunk. What a program does not read in time waits; what is sent to a port
// that nobody has open is gone.
void McuSerial::SendBytes(std::size_t count) {
  std::string& chunk = outgoing_.front();
  const TimePoint now = std::chrono::steady_clock::now();
  if (host_open_) {
    const ssize_t written = write(terminal_.master(), chunk.data(), count);
    if (written <= 0) {
      port_full_ = true;
      return;
    }
    count = static_cast<std::size_t>(written);
  }
  const std::string sent = chunk.substr(0, count);
  chunk.erase(0, count);
  if (chunk.empty()) outgoing_.pop_front();
  send_line_free_ += byte_time_ * static_cast<std::int64_t>(count);

  log_.RecordChunk(Direction::kFromMcu, now, sent);
  for (const char byte : sent) {
    if (!IsLineEnd(byte)) {
      sent_line_ += byte;
    } else if (!sent_line_.empty()) {
      log_.RecordLine(Direction::kFromMcu, now, std::exchange(sent_line_, {}));
    }
  }
}

std::optional<TimePoint> McuSerial::NextDue() const {
  std::optional<TimePoint> due;
  const auto sooner = [&due](TimePoint time) { due = due ? std::min(*due, time) : time; };
  if (!received_.empty()) sooner(received_.front().arrival);
  if (!scheduled_.empty()) sooner(scheduled_.begin()->first);
  if (!outgoing_.empty() && !port_full_) sooner(send_line_free_ + byte_time_);
  if (const std::optional<TimePoint> model_due = model_.NextDue(std::chrono::steady_clock::now())) {
    sooner(*model_due);
  }
  return due;
}

}  // namespace rolu_sim
