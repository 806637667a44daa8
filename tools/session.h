#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <optional>

#include "cli/exit_status.h"
#include "tools/setting.h"

namespace rolu {

// The options that every command takes.
struct CommonOptions {
  bool json = false;
  bool force = false;
  bool yes = false;
  std::chrono::milliseconds timeout{0};  // 0: none
};

// Throws CommandError(kBusy) when another process holds the MCU's port and --force is not given.
void RequireFreePort(const CommonOptions& options);

// This program's use of the board. It brings families up when they are needed, and takes them down on every
// way out. It stops asking an MCU that does not answer: after some unanswered questions in a row, every
// further question gets ROLU_STATUS_VPM_NO_REPLY at once.
class Session {
 public:
  // `patience` is the number of these unanswered questions; each of them takes 3 s.
  explicit Session(const CommonOptions& options, int patience = 2) : options_(options), patience_(patience) {}
  ~Session() { Close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Brings a family up on the first call for it, and returns the status of that attempt. Throws
  // CommandError(kBusy) when another process holds the MCU's port and --force is not given.
  ROLU_STATUS Use(Family family);

  // The same, but throws CommandError when the family did not come up.
  void Require(Family family);

  // Read and write one setting, and bring up its family first.
  ROLU_STATUS Read(const Setting& setting, Value& value);
  ROLU_STATUS Write(const Setting& setting, const Value& value);

  // Whether the MCU is silent: it left the last questions of this session unanswered.
  bool McuIsSilent() const { return unanswered_ >= patience_; }

  // Whether the MCU is silent or its port could not be opened; McuProblem says which.
  bool McuIsUnreachable() const { return McuProblem() != ROLU_STATUS_SUCCESS; }
  ROLU_STATUS McuProblem() const;

  // Lets the next question go out even if the MCU was silent.
  void AskAgain() { unanswered_ = 0; }

  // Takes all families down in the reverse order. Says on standard error what failed, and returns the exit
  // status of the failure; otherwise kDone.
  ExitStatus Close();

 private:
  ROLU_STATUS BringUp(Family family);
  ROLU_STATUS BringUpWatchdog();
  ROLU_STATUS Ask(Family family, const std::function<ROLU_STATUS()>& question);

  const CommonOptions& options_;
  const int patience_;
  static constexpr std::size_t kFamilies = 5;
  std::array<std::optional<ROLU_STATUS>, kFamilies> states_;  // indexed by Family
  bool port_checked_ = false;
  int unanswered_ = 0;
};

}  // namespace rolu
