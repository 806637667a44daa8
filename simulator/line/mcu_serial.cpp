#include "simulator/line/mcu_serial.h"

#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "simulator/system/background_thread.h"

namespace rolu_sim {
namespace {

// A byte is ten bits on the line (8N1).
constexpr std::chrono::nanoseconds kByteTime115200{10 * 1'000'000'000LL / 115200};

// Every command of the protocol is far shorter. A longer command is cut, so that a program that never sends a
// CR cannot fill the memory.
constexpr std::size_t kMaxCommandCharacters = 1024;

timespec ToTimespec(std::chrono::nanoseconds duration) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
  timespec result{};
  result.tv_sec = static_cast<time_t>(seconds.count());
  result.tv_nsec = static_cast<long>((duration - seconds).count());
  return result;
}

}  // namespace

McuSerial::McuSerial(McuSerialOptions options)
    : byte_time_(options.paced ? kByteTime115200 : std::chrono::nanoseconds(0)),
      answer_route_(std::move(options.answer_route)),
      event_listener_(std::move(options.event_listener)),
      log_(std::move(options.line_listener)) {
  model_.clock.Set(options.clock_start, model_.time.At(std::chrono::steady_clock::now()));
  const BlockedSignals blocked;
  thread_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

std::string McuSerial::DevicePath() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return terminal_.device_path();
}

std::vector<McuEvent> McuSerial::Events() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return model_.Events();
}

bool McuSerial::WaitForEvent(McuEventKind kind, std::chrono::milliseconds timeout, std::size_t count) const {
  return WaitUntil(timeout, [&] {
    return std::cmp_greater_equal(std::ranges::count(model_.Events(), kind, &McuEvent::kind), count);
  });
}

void McuSerial::Script(CommandMatch match, Reply reply, int times) {
  const std::lock_guard<std::mutex> lock(mutex_);
  script_.push_back({std::move(match), std::move(reply), times});
}

void McuSerial::ClearScript() {
  const std::lock_guard<std::mutex> lock(mutex_);
  script_.clear();
}

void McuSerial::SendRaw(std::string bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (terminal_.master() < 0) return;
  unsent_.emplace(std::chrono::steady_clock::now(), std::move(bytes));
  SendFromOtherThread();
}

void McuSerial::SetSilent(bool silent) {
  const std::lock_guard<std::mutex> lock(mutex_);
  silent_ = silent;
}

void McuSerial::StopReading(bool stopped) {
  const std::lock_guard<std::mutex> lock(mutex_);
  reading_stopped_ = stopped;
  wakeup_.Signal();
}

void McuSerial::HangUp() {
  const std::lock_guard<std::mutex> lock(mutex_);
  terminal_.Close();
  received_.clear();
  command_.clear();
  unsent_.clear();
  sent_line_.clear();
  port_full_ = false;
  host_open_ = false;
  changed_.notify_all();
}

void McuSerial::Reopen() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (terminal_.master() < 0) terminal_.Reopen();
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
  return WaitUntil(timeout, [this] {
    FollowHost();
    return !host_open_;
  });
}

void McuSerial::TakeWhatWasSent() {
  // The line needs 100 ms for more than 1000 bytes. The end of a command without its CR is not heard of.
  constexpr std::chrono::milliseconds kLineTime(100);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ReceiveBytes();
    HandleArrivedBytes();
    SendFromOtherThread();
  }
  WaitUntil(kLineTime, [this] { return received_.empty(); });
}

std::vector<std::string> McuSerial::CommandsReceived() const {
  std::vector<std::string> commands;
  for (const WireEvent& line : log_.Lines()) {
    if (line.direction == Direction::kToMcu) commands.push_back(line.bytes);
  }
  return commands;
}

bool McuSerial::WaitForCommand(std::string_view command, std::chrono::milliseconds timeout,
                               std::size_t count) const {
  return WaitUntil(timeout, [&] {
    return std::cmp_greater_equal(std::ranges::count(CommandsReceived(), command), count);
  });
}

void McuSerial::Run(const std::stop_token& stop) {
  prctl(PR_SET_TIMERSLACK, 1UL);
  const std::stop_callback wake(stop, [this] { wakeup_.Signal(); });
  std::unique_lock<std::mutex> lock(mutex_);
  while (!stop.stop_requested()) {
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

    // The order matters: the MCU answers a command only after it has noticed that the previous program closed
    // the port. A new program's command can be among these bytes, so the close is looked for after the read,
    // and nothing is answered in between.
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
  unsent_.erase(unsent_.begin(), unsent_.upper_bound(sent_until_));
  port_full_ = false;
  changed_.notify_all();
}

void McuSerial::HandleArrivedBytes() {
  while (!received_.empty() && received_.front().arrival <= std::chrono::steady_clock::now()) {
    const auto [arrival, byte] = received_.front();
    received_.pop_front();
    if (byte != '\r') {
      if (command_.size() < kMaxCommandCharacters) command_ += byte;
    } else if (!command_.empty()) {
      const std::string command = std::exchange(command_, {});
      log_.RecordLine(Direction::kToMcu, arrival, command);
      changed_.notify_all();
      if (!silent_) AnswerCommand(command);
    }
  }
}

void McuSerial::AnswerCommand(std::string_view command) {
  FollowModel();
  TimePoint due = std::chrono::steady_clock::now();
  const AskModel ask_model = [&] {
    return Reply::Lines(model_.Execute(command, std::chrono::steady_clock::now()));
  };
  Reply reply;
  const auto scripted =
      std::ranges::find_if(script_, [&](const ScriptedReply& entry) { return entry.match.Matches(command); });
  if (scripted == script_.end()) {
    reply = answer_route_ ? answer_route_(command, ask_model) : ask_model();
  } else {
    reply = scripted->reply;
    if (scripted->times_left != kEveryTime && --scripted->times_left == 0) script_.erase(scripted);
  }
  for (const ReplyChunk& chunk : reply.chunks()) {
    due += chunk.delay;
    unsent_.emplace(due, chunk.bytes);
  }
}

// Handles what the MCU has done on its own. Lines for a hung-up port are lost.
void McuSerial::FollowModel() {
  const TimePoint now = std::chrono::steady_clock::now();
  for (const std::string& line : model_.TakeDueLines(now)) {
    if (!silent_ && terminal_.master() >= 0) unsent_.emplace(now, std::string(line).append(kLineEnd));
  }
  const std::vector<McuEvent>& events = model_.Events();
  if (events_told_ == events.size()) return;
  for (; events_told_ < events.size(); ++events_told_) {
    if (event_listener_) event_listener_(events[events_told_]);
  }
  changed_.notify_all();
}

void McuSerial::SendFromOtherThread() {
  FollowHost();
  SendDueBytes();
  wakeup_.Signal();
}

// Bytes wait while a program does not read them. Bytes are lost when no program has the port open.
void McuSerial::SendDueBytes() {
  sent_until_ = std::chrono::steady_clock::now();
  port_full_ = false;
  while (!unsent_.empty() && unsent_.begin()->first <= sent_until_) {
    auto& [due, chunk] = *unsent_.begin();
    if (chunk.empty()) {
      unsent_.erase(unsent_.begin());
      continue;
    }
    send_line_free_ = std::max(send_line_free_, due);
    std::size_t count = chunk.size();
    if (byte_time_.count() != 0) {
      const auto elapsed = std::max(sent_until_ - send_line_free_, std::chrono::nanoseconds(0));
      count = std::min(count, static_cast<std::size_t>(elapsed / byte_time_));
      if (count == 0) return;
    }
    if (host_open_) {
      const ssize_t written = write(terminal_.master(), chunk.data(), count);
      port_full_ = written <= 0;
      if (port_full_) return;
      count = static_cast<std::size_t>(written);
    }
    send_line_free_ += byte_time_ * static_cast<std::int64_t>(count);
    RecordSent(chunk.substr(0, count));
    chunk.erase(0, count);
  }
}

void McuSerial::RecordSent(std::string_view bytes) {
  log_.RecordChunk(Direction::kFromMcu, sent_until_, bytes);
  for (const char byte : bytes) {
    if (kLineEnd.find(byte) == std::string_view::npos) {
      sent_line_ += byte;
    } else if (!sent_line_.empty()) {
      log_.RecordLine(Direction::kFromMcu, sent_until_, std::exchange(sent_line_, {}));
    }
  }
}

std::optional<TimePoint> McuSerial::NextDue() const {
  std::optional<TimePoint> due = model_.NextDue(std::chrono::steady_clock::now());
  if (!received_.empty()) due = Sooner(due, received_.front().arrival);
  if (!unsent_.empty() && !port_full_) {
    due = Sooner(due, std::max(unsent_.begin()->first, send_line_free_) + byte_time_);
  }
  return due;
}

}  // namespace rolu_sim
