#include "simulator/desk/desk.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <utility>

#include "simulator/desk/event_words.h"

namespace rolu_sim {

Desk::Desk(DeskOptions options)
    : start_(std::chrono::steady_clock::now()),
      trace_(start_),
      faults_(options.seed,
              [this](const std::string& words) { trace_.RecordEvent(TraceDirection::kDesk, words); }),
      replay_(std::move(options.replay)),
      on_divergence_(std::move(options.on_divergence)),
      board_(MakeBoardOptions(options)),
      board_faults_(board_),
      register_devices_{{Board::kRegisterDeviceAddress, &board_.register_device()}} {
  board_.mcu().WithModel([&](McuModel& mcu) {
    mcu.computer.survives_power_cut = options.survive_power_cut;
    mcu.computer.survives_bite = options.survive_bite;
  });
}

// Called before the board exists. The board's threads may call back at once: all that they use of the desk
// exists by then.
BoardOptions Desk::MakeBoardOptions(const DeskOptions& options) {
  if (options.listener) trace_.AddListener(options.listener);
  BoardOptions board;
  board.root_directory = options.root_directory;
  board.serial.paced = options.paced;
  board.serial.line_listener = [this](const WireEvent& line) { trace_.RecordLine(line); };
  board.serial.event_listener = [this](const McuEvent& event) { Hear(event); };
  board.port_conflict_listener = [this](const std::string& words) { Say(words); };
  board.serial.answer_route = [this](std::string_view command, const AskModel& ask_model) {
    return Answer(command, ask_model);
  };
  return board;
}

std::string Desk::Apply(const Action& action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  trace_.RecordEvent(TraceDirection::kDesk, Describe(action));
  return action.verb->apply(*this, action.arguments);
}

void Desk::OnEvent(EventListener listener) {
  const std::lock_guard<std::mutex> lock(listeners_mutex_);
  listeners_.push_back(std::move(listener));
}

int Desk::BiteCount() {
  return static_cast<int>(
      std::ranges::count(board_.mcu().Events(), McuEventKind::kWatchdogBite, &McuEvent::kind));
}

void Desk::AttachRegisterDevice(std::uint8_t address) {
  const auto device = std::make_shared<I2cRegisterDevice>();
  board_.i2c().Attach(address, device);
  register_devices_[address] = device.get();
}

void Desk::DetachRegisterDevice(std::uint8_t address) {
  register_devices_.erase(address);
  board_.i2c().Detach(address);
}

void Desk::Say(const std::string& text) {
  trace_.RecordEvent(TraceDirection::kBoard, text);
  // Each line is one write, because the program under test writes to standard error as well.
  std::cerr << fmt::format("rolu-sim: {}\n", text);
}

std::string Desk::AnnounceSeed() {
  std::string text = fmt::format("random faults use the seed {0}; --seed {0} repeats them", faults_.seed());
  if (!std::exchange(seed_announced_, true)) Say(text);
  return text;
}

// The model carries out a command even when the recording answers it, so that the board shows what the
// program did.
Reply Desk::Answer(std::string_view command, const AskModel& ask_model) {
  // A command counts as sent even when a fault keeps its answer from the program.
  std::optional<Reply> recorded;
  if (replay_) recorded = replay_->AnswerTo(command);
  if (replay_ && !recorded && replay_->rule() == ReplayRule::kStrict) TellDivergence(command);
  return faults_.Answer(command, [&] {
    Reply of_model = ask_model();
    return recorded ? std::move(*recorded) : std::move(of_model);
  });
}

// Only the first command that the recording does not have is worth a message: it may be the cause of others.
void Desk::TellDivergence(std::string_view command) {
  if (std::exchange(divergence_told_, true)) return;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  Say(fmt::format(
      "*** REPLAY DIVERGED at {:.3f} s: {} came, which the recording does not have or has no more; {} ***",
      seconds, Printable(command), replay_->Next()));
  if (on_divergence_) on_divergence_();
}

// Whoever waits for the words finds that the event has had its effects.
void Desk::Hear(const McuEvent& event) {
  {
    const std::lock_guard<std::mutex> lock(listeners_mutex_);
    for (const EventListener& listener : listeners_) listener(event);
  }
  const double seconds = std::chrono::duration<double>(event.time - start_).count();
  if (const std::string words = WordsFor(event, seconds); !words.empty()) Say(words);
}

}  // namespace rolu_sim
