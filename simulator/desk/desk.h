#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include "simulator/board.h"
#include "simulator/desk/board_faults.h"
#include "simulator/desk/replay.h"
#include "simulator/desk/scenario_progress.h"
#include "simulator/desk/trace.h"
#include "simulator/desk/verb.h"
#include "simulator/line/answer_faults.h"

namespace rolu_sim {

struct DeskOptions {
  std::string root_directory;  // an existing directory; empty: a private one
  bool paced = false;
  std::uint32_t seed = 0;                 // of random faults
  std::unique_ptr<Replay> replay;         // answers in place of the model where it can; may be null
  std::function<void()> on_divergence{};  // called when a strict replay diverges; must not call the MCU
  Trace::Listener listener;               // hears the trace from its first record; may be empty
  bool survive_power_cut = false;         // cuts and resets by programs are reported only
  bool survive_bite = false;
};

// A board with everything that steers and watches it: the trace, the faults, the verbs. It writes its
// messages for people to standard error. Any thread may call any member.
class Desk {
 public:
  explicit Desk(DeskOptions options);

  // Does what a verb says and returns its remark. Throws UsageError.
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

  // `listener` gets each event of the board from now on, in order, on the thread that caused it, for as long
  // as the desk lives. It must not call the MCU, nor run a verb.
  using EventListener = std::function<void(const McuEvent& event)>;
  void OnEvent(EventListener listener);

  // How often the watchdog has bitten.
  int BiteCount();

  // The register devices on the I2C bus, by their 7-bit addresses. Verbs and readings use this while they
  // hold the desk's lock.
  using RegisterDevices = std::map<std::uint8_t, I2cRegisterDevice*>;
  const RegisterDevices& register_devices() const { return register_devices_; }
  void AttachRegisterDevice(std::uint8_t address);
  void DetachRegisterDevice(std::uint8_t address);

  // The scenario's player and the readings use this while they hold the desk's lock.
  ScenarioProgress& scenario_progress() { return scenario_progress_; }

  // Writes a message for the user and records it in the trace.
  void Say(const std::string& text);

  // Says how to repeat the random faults: on standard error the first time, and as the remark each time.
  std::string AnnounceSeed();

 private:
  BoardOptions MakeBoardOptions(const DeskOptions& options);
  Reply Answer(std::string_view command, const AskModel& ask_model);
  void TellDivergence(std::string_view command);
  void Hear(const McuEvent& event);

  const TimePoint start_;
  std::mutex mutex_;
  Trace trace_;
  AnswerFaults faults_;
  const std::unique_ptr<Replay> replay_;
  const std::function<void()> on_divergence_;
  bool divergence_told_ = false;  // guarded by the MCU's lock
  std::mutex listeners_mutex_;
  std::vector<EventListener> listeners_;
  bool seed_announced_ = false;
  Board board_;
  BoardFaults board_faults_;
  RegisterDevices register_devices_;
  ScenarioProgress scenario_progress_;
};

// What a verb does. The handler takes what it uses: the MCU's model and the values, the desk and the values,
// or the desk alone. A handler that returns nothing has no remark.
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
