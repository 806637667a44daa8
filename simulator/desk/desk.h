#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>

#include "simulator/board.h"
#include "simulator/desk/board_faults.h"
#include "simulator/desk/replay.h"
#include "simulator/desk/trace.h"
#include "simulator/desk/verb.h"
#include "simulator/line/answer_faults.h"

namespace rolu_sim {

struct DeskOptions {
  std::string root_directory;  // one that is there; empty: a private one
  bool paced = false;
  std::uint32_t seed = 0;          // of random faults
  std::unique_ptr<Replay> replay;  // answers in place of the model where it can; may be null
  Trace::Listener listener;        // hears the trace from its first record; may be empty
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
  const Replay* replay() const { return replay_.get(); }
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
  const std::unique_ptr<Replay> replay_;
  bool seed_announced_ = false;
  Board board_;
  BoardFaults board_faults_;
  RegisterDevices register_devices_;
};

// What a verb does, by a handler that takes what it uses: the MCU's model and the values, the desk and the
// values, or the desk alone. A handler that gives nothing has no remark.
template <typename Handler>
std::function<std::string(Desk&, const Arguments&)> Doing(Handler handler) {
  return [handler](Desk& desk, const Arguments& given) {
    const auto run = [&](auto&... used) -> std::string {
      if constexpr (std::is_void_v<std::invoke_result_t<const Handler&, decltype(used)...>>) {
        handler(used...);
        return {};
      } else {
        return handler(used...);
      }
    };
    if constexpr (std::is_invocable_v<const Handler&, McuModel&, const Arguments&>) {
      return desk.board().mcu().WithModel([&](McuModel& mcu) { return run(mcu, given); });
    } else if constexpr (std::is_invocable_v<const Handler&, Desk&, const Arguments&>) {
      return run(desk, given);
    } else {
      return run(desk);
    }
  };
}

}  // namespace rolu_sim
