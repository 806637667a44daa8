#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/line/pseudo_terminal.h"
#include "simulator/line/reply.h"
#include "simulator/line/wire_log.h"
#include "simulator/mcu/mcu_model.h"
#include "simulator/system/background_thread.h"

namespace rolu_sim {

struct McuSerialOptions {
  // Whether bytes take the time of a 115200 bit/s line, 8N1 (86.8 us each), in both directions. Otherwise
  // they take no time.
  bool paced = false;
  WireLog::LineListener line_listener;
  AnswerRoute answer_route{};  // empty: the model answers
  // Gets each event on the thread that caused it. It must not call the McuSerial.
  std::function<void(const McuEvent&)> event_listener;
  // What the MCU's clock shows at the start.
  ClockTime clock_start = ClockState::kFactoryTime;
};

// The MCU at the far end of a serial line: a pseudo-terminal and a thread. The thread reads commands up to
// their CR, gets the reply from the script or else from the model, and writes the reply at once.
//
// As on a real port, what the MCU sends while no program has the port open is lost. A program that opens the
// port does not find the bytes for the previous program: they are dropped when the MCU notices that program's
// close. That takes some ten microseconds unless FollowPrograms is called.
//
// Any thread may call any member at any time, except the destructor, which belongs to the owner.
class McuSerial {
 public:
  explicit McuSerial(McuSerialOptions options = {});

  // The path of the device that a program opens, for example "/dev/pts/7". Reopen changes it.
  std::string DevicePath() const;

  // Runs `use(model)` under the lock that the MCU's thread holds for each command, and returns its result.
  // `use` must not call this object. The model has done everything that was due before `use` runs. Lines that
  // the model sends because of `use` leave before WithModel returns (on a paced line: begin to leave).
  //   serial.WithModel([](McuModel& mcu) { mcu.SetBatteryVolts(11.2); });
  //   serial.WithModel([](McuModel& mcu) { mcu.ignition.on = false; });
  //   serial.WithModel([](McuModel& mcu) { return mcu.ShakeTo({600, 0, 256}); });
  template <typename Use>
  auto WithModel(Use&& use) {
    const ModelAccess access(*this);
    return std::forward<Use>(use)(model_);
  }

  // What the MCU has done to the computer so far. The second call waits until the MCU has done `kind` `count`
  // times since the start; it returns false after `timeout`.
  std::vector<McuEvent> Events() const;
  bool WaitForEvent(McuEventKind kind, std::chrono::milliseconds timeout, std::size_t count = 1) const;

  // The next `times` commands that match (kEveryTime: all) get `reply` instead of the model's answer; the
  // model does not see these commands. If several entries match, the oldest one applies.
  //   serial.Script(CommandMatch::Exactly("MCVG"), Reply::Line("ERR-M08"));
  //   serial.Script(CommandMatch::StartingWith("WDT"), Reply::Silence(), kEveryTime);
  void Script(CommandMatch match, Reply reply, int times = 1);

  // Forgets all scripted replies. Chunks of a reply that has begun are still sent.
  void ClearScript();

  // Sends bytes that no command asked for, unchanged, before it returns (on a paced line: begins to send
  // them). The bytes are lost when the port has hung up.
  void SendRaw(std::string bytes);

  // A silent MCU still receives and logs commands, but answers none of them and sends nothing on its own. A
  // command that came during the silence stays unanswered. The silence does not use up scripted replies.
  void SetSilent(bool silent);

  // While reading is stopped, the port accepts bytes until its buffers are full; then writes block. The MCU
  // reads the waiting bytes when reading starts again.
  void StopReading(bool stopped);

  // The port dies: reads on open descriptors find the end of the file, writes fail, and the device path is
  // gone. The MCU goes on: its watchdog bites, its alarm comes.
  void HangUp();

  // Makes a new port after HangUp. The model, the script and the log stay.
  void Reopen();

  // Checks at once whether a program has closed the port.
  void FollowPrograms();

  // Whether a program has the port open. The second call waits until no program has it open; it returns false
  // after `timeout`. After the wait, unread bytes are gone too.
  bool IsOpenByHost() const;
  bool WaitForHostClosed(std::chrono::milliseconds timeout);

  // The MCU takes everything that programs have sent so far, also what is still on a paced line.
  void TakeWhatWasSent();

  // The log of the wire and the commands in it. The wait ends when `command` has come `count` times since the
  // log was last cleared; it returns false after `timeout`.
  WireLog& Log() { return log_; }
  std::vector<std::string> CommandsReceived() const;
  bool WaitForCommand(std::string_view command, std::chrono::milliseconds timeout,
                      std::size_t count = 1) const;

 private:
  struct ScriptedReply {
    CommandMatch match;
    Reply reply;
    int times_left;
  };

  struct ReceivedByte {
    TimePoint arrival;
    char byte;
  };

  // Holds the lock and brings the model up to date, before and after the use.
  class ModelAccess {
   public:
    explicit ModelAccess(McuSerial& serial) : serial_(serial), lock_(serial.mutex_) { serial_.FollowModel(); }
    ~ModelAccess() {
      serial_.FollowModel();
      serial_.SendFromOtherThread();
    }

   private:
    McuSerial& serial_;
    std::lock_guard<std::mutex> lock_;
  };

  void Run(const std::stop_token& stop);

  template <typename Holds>
  bool WaitUntil(std::chrono::milliseconds timeout, Holds holds) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, timeout, holds);
  }

  // These need mutex_ to be held.
  void ReceiveBytes();
  void FollowHost();
  void HandleArrivedBytes();
  void AnswerCommand(std::string_view command);
  void FollowModel();
  void SendFromOtherThread();
  void SendDueBytes();
  void RecordSent(std::string_view bytes);
  std::optional<TimePoint> NextDue() const;

  const std::chrono::nanoseconds byte_time_;
  const AnswerRoute answer_route_;
  const std::function<void(const McuEvent&)> event_listener_;
  WireLog log_;
  WakeupEvent wakeup_;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;  // a command or an event has come, or the last program is gone
  PseudoTerminal terminal_;
  McuModel model_;
  std::size_t events_told_ = 0;
  std::vector<ScriptedReply> script_;
  bool silent_ = false;
  bool reading_stopped_ = false;
  bool host_open_ = false;

  std::deque<ReceivedByte> received_;  // on the line, not yet at the MCU
  TimePoint receive_line_free_{};
  std::string command_;

  std::multimap<TimePoint, std::string> unsent_;  // chunks by the time at which they are due
  TimePoint sent_until_{};                        // chunks that were due at this time are being sent
  bool port_full_ = false;
  TimePoint send_line_free_{};
  std::string sent_line_;

  std::jthread thread_;  // last member, so the thread ends before the others are destroyed
};

}  // namespace rolu_sim
