#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "simulator/board.h"
#include "simulator/control/board_faults.h"
#include "simulator/control/verb.h"
#include "simulator/line/answer_faults.h"
#include "simulator/trace/replay.h"
#include "simulator/trace/trace.h"

namespace rolu_sim {

struct DeskOptions {
  std::string root_directory;  // one that is there; empty: a private one
  bool paced = false;
  std::uint32_t seed = 0;        // of random faults
  std::optional<Replay> replay;  // answers in place of the model where it can
  Trace::Listener listener;      // hears the trace from its first record; may be empty
};

// A board with all that steers and watches it: the trace, the faults, the verbs. What the board has
// to tell people it says on standard error. Any thread may call any member.
class Desk {
 public:
  explicit Desk(DeskOptions options);

  // Does what a verb says and gives its remark. Throws UsageError.
  std::string Apply(const Action& action);

  // Runs `use()` while no verb runs.
  template <typename Use>
  auto Locked(Use&& use) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::forward<Use>(use)();
  }

  Board& board() { return board_; }
  Trace& trace() { return trace_; }
  AnswerFaults& faults() { return faults_; }
  BoardFaults& board_faults() { return board_faults_; }
  Replay* replay() { return replay_ ? &*replay_ : nullptr; }
  TimePoint start() const { return start_; }

  // How often the watchdog has bitten.
  int BiteCount();

  // The register devices on the I2C bus, by their 7-bit addresses. For verbs and readings, which hold
  // the desk locked.
  using RegisterDevices = std::map<std::uint8_t, I2cRegisterDevice*>;
  const RegisterDevices& register_devices() const { return register_devices_; }
  void AttachRegisterDevice(std::uint8_t address);
  void DetachRegisterDevice(std::uint8_t address);

  // Tells the user, and notes in the trace.
  void Say(const std::string& text);

  // Says how random faults can be had again: once on standard error, and always as the remark.
  std::string AnnounceSeed();

 private:
  BoardOptions MakeBoardOptions(const DeskOptions& options);
  Reply Answer(std::string_view command, const AskModel& ask_model);
  void Hear(const McuEvent& event);

  const TimePoint start_;
  std::mutex mutex_;
  Trace trace_;
  AnswerFaults faults_;
  std::optional<Replay> replay_;
  bool seed_announced_ = false;
  Board board_;
  BoardFaults board_faults_;
  RegisterDevices register_devices_;
};

}  // namespace rolu_sim
