#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/background_thread.h"
#include "simulator/mcu/mcu_model.h"
#include "simulator/mcu/pseudo_terminal.h"
#include "simulator/mcu/reply_script.h"
#include "simulator/mcu/wire_log.h"

namespace rolu_sim {

// Lets the model carry out the command in hand, once at most, and gives its answer.
using AskModel = std::function<Reply()>;

// Decides what is sent for a command that no scripted reply answers. Called on the MCU's thread; it
// must not call the McuSerial that calls it.
using AnswerRoute = std::function<Reply(std::string_view command, const AskModel& ask_model)>;

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
// Any thread may call any member at any time, except HangUp, Reopen and the destructor, which
// belong to the owner.
class McuSerial {
 public:
  explicit McuSerial(McuSerialOptions options = {});
  ~McuSerial();
  McuSerial(const McuSerial&) = delete;
  McuSerial& operator=(const McuSerial&) = delete;

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

  // What passed the wire.
  WireLog& Log() { return log_; }
  std::vector<std::string> CommandsReceived() const { return log_.Commands(); }
  bool WaitForCommand(std::string_view command, std::chrono::milliseconds timeout,
                      std::size_t count = 1) const {
    return log_.WaitForCommand(command, timeout, count);
  }

 private:
  struct ReceivedByte {
    TimePoint arrival;
    char byte;
  };

  // Holds the lock, with a model that is up to date before and after.
  class ModelAccess {
   public:
    explicit ModelAccess(McuSerial& serial);
    ~ModelAccess();
    ModelAccess(const ModelAccess&) = delete;
    ModelAccess& operator=(const ModelAccess&) = delete;

   private:
    McuSerial& serial_;
    std::lock_guard<std::mutex> lock_;
  };

  void StartThread();
  void StopThread();
  void Run();

  // With mutex_ held.
  void ReceiveBytes();
  void FollowHost();
  void HandleArrivedBytes();
  void HandleArrivedByte(const ReceivedByte& received);
  void AnswerCommand(std::string_view command);
  Reply AnswerOfModel(std::string_view command);
  void FollowModel();
  void SendFromOtherThread();
  void SendDueBytes();
  std::size_t SendableBytes(TimePoint now) const;
  void SendBytes(std::size_t count);
  std::optional<TimePoint> NextDue() const;

  const std::chrono::nanoseconds byte_time_;
  const AnswerRoute answer_route_;
  const std::function<void(const McuEvent&)> event_listener_;
  WireLog log_;
  WakeupEvent wakeup_;

  mutable std::mutex mutex_;
  std::condition_variable host_closed_;
  mutable std::condition_variable event_told_;
  PseudoTerminal terminal_;
  McuModel model_;
  std::size_t events_told_ = 0;
  ReplyScript script_;
  bool stopping_ = false;
  bool silent_ = false;
  bool reading_stopped_ = false;
  bool host_open_ = false;

  std::deque<ReceivedByte> received_;  // on the line, not yet at the MCU
  TimePoint receive_line_free_{};
  std::string command_;

  std::multimap<TimePoint, std::string> scheduled_;  // chunks by the time at which they leave
  std::deque<std::string> outgoing_;                 // chunks that are leaving
  bool port_full_ = false;
  TimePoint send_line_free_{};
  std::string sent_line_;

  std::thread thread_;
};

}  // namespace rolu_sim
