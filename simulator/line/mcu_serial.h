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
  // Bytes take the time of a 115200 bit/s line, 8N1 (86.8 us each), in both directions. Without
  // it they pass at once.
  bool paced = false;
  WireLog::LineListener line_listener;
  AnswerRoute answer_route{};  // empty: the model answers
  // Hears each event on the thread that brought it about; must not call the McuSerial.
  std::function<void(const McuEvent&)> event_listener;
  // What the MCU's clock shows when it starts to run.
  ClockTime clock_start = ClockState::kFactoryTime;
};

// The MCU at the far end of a serial line: a pseudo-terminal, and a thread that reads commands up
// to their CR, lets the script or else the model answer, and writes the answer at once.
//
// As on a real port, what the MCU sends while no program has the port open is lost, and a program
// that opens the port does not find bytes meant for its predecessor: they go when that one's close is
// noticed, which takes some ten microseconds unless FollowPrograms is called.
//
// Any thread may call any member at any time, except the destructor, which belongs to the owner.
class McuSerial {
 public:
  explicit McuSerial(McuSerialOptions options = {});

  // The device that a program opens, "/dev/pts/7". Changes with Reopen.
  std::string DevicePath() const;

  // Runs `use(model)` under the lock that the MCU's thread holds for each command, and gives its
  // result. `use` calls nothing of this object. The model has done all that was due by then; lines
  // that `use` makes it send leave before WithModel returns (when paced: begin to).
  //   serial.WithModel([](McuModel& mcu) { mcu.SetBatteryVolts(11.2); });
  //   serial.WithModel([](McuModel& mcu) { mcu.ignition.on = false; });
  //   serial.WithModel([](McuModel& mcu) { return mcu.ShakeTo({600, 0, 256}); });
  template <typename Use>
  auto WithModel(Use&& use) {
    const ModelAccess access(*this);
    return std::forward<Use>(use)(model_);
  }

  // What the MCU did to the computer so far, and a wait until it has done `kind` `count` times since
  // the start (false after `timeout`).
  std::vector<McuEvent> Events() const;
  bool WaitForEvent(McuEventKind kind, std::chrono::milliseconds timeout, std::size_t count = 1) const;

  // The next `times` commands that match (kEveryTime: all) get `reply` in place of the model's
  // answer; the model does not see them. Earlier entries go first.
  //   serial.Script(CommandMatch::Exactly("MCVG"), Reply::Line("ERR-M08"));
  //   serial.Script(CommandMatch::StartingWith("WDT"), Reply::Silence(), kEveryTime);
  void Script(CommandMatch match, Reply reply, int times = 1);

  // Forgets all scripted replies; chunks of replies that were begun still leave.
  void ClearScript();

  // Sends bytes that no command asked for, as they are, before it returns (when paced: begins to).
  // Lost when the port has hung up.
  void SendRaw(std::string bytes);

  // A silent MCU still receives commands (they are logged) but answers none, and sends nothing by
  // itself; a command that came while it was silent stays unanswered. Scripted replies of that time
  // are not used up.
  void SetSilent(bool silent);

  // While reading is stopped the port accepts bytes until its buffers are full; then writes block.
  // Bytes that piled up are read once reading goes on.
  void StopReading(bool stopped);

  // The port dies: open descriptors read end of file and fail to write, the device path is gone. The
  // MCU lives on: its watchdog bites, its alarm comes.
  void HangUp();

  // After HangUp: a new port, with the model, the script and the log as they were.
  void Reopen();

  // Notices at once whether a program has closed the port.
  void FollowPrograms();

  // Whether a program has the port open, and a wait until none has (false after `timeout`). After the
  // wait, unread bytes are gone as well.
  bool IsOpenByHost() const;
  bool WaitForHostClosed(std::chrono::milliseconds timeout);

  // What passed the wire; the commands of it, and a wait until `command` has come `count` times since
  // the log was last cleared (false after `timeout`).
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

  // Holds the lock, with a model that is up to date before and after.
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

  // With mutex_ held.
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
  mutable std::condition_variable changed_;  // a command or an event has come, or no program is there
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

  std::multimap<TimePoint, std::string> unsent_;  // chunks by the time at which they leave
  TimePoint sent_until_{};                        // those that were due then are leaving
  bool port_full_ = false;
  TimePoint send_line_free_{};
  std::string sent_line_;

  std::jthread thread_;  // ends first
};

}  // namespace rolu_sim
