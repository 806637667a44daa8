#include "tools/session.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <chrono>

#include "cli/messages.h"
#include "cli/silenced_output.h"
#include "tools/digital_lines.h"
#include "tools/guard.h"
#include "tools/port_owner.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

struct FamilyWords {
  const char* name;
  ROLU_STATUS (*take_down)();
};

// Indexed by Family.
constexpr FamilyWords kFamilyWords[] = {
    {"the core", KAVO_ROLU_CORE_DeInit},
    {"the vehicle power management", KAVO_ROLU_VPM_Deinitialize},
    {"the watchdog", KAVO_ROLU_WD_Deinitialize},
    {"the G-sensor", KAVO_ROLU_GSENSOR_Deinitialize},
    {"the peripherals", KAVO_ROLU_PERIPHERALCTRL_Deinitialize},
};

std::size_t IndexOf(Family family) {
  return static_cast<std::size_t>(family);
}

// Bringing the peripherals up sets the direction of the GPS receiver's power line again, and the kernel then
// drives the line low. A receiver that is on loses its power for a moment. This function switches it on again
// without the library, which may have failed to come up.
ROLU_STATUS BringUpPeripherals() {
  const bool was_on = kGpsPowerLine.Level() == true;
  const ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_Initialize();
  const int file = was_on ? open(kGpsPowerLine.ValueFile().c_str(), O_WRONLY | O_CLOEXEC) : -1;
  if (file < 0) return status;
  [[maybe_unused]] const ssize_t written = write(file, "1", 1);
  close(file);
  return status;
}

ROLU_STATUS BringUpVpm() {
  const SilencedOutput silenced;
  return KAVO_ROLU_VPM_Initialize(0);
}

}  // namespace

ROLU_STATUS Session::Use(Family family) {
  std::optional<ROLU_STATUS>& state = states_[IndexOf(family)];
  if (!state) {
    if (family != Family::kCore && !port_checked_) RequireFreePort(options_);
    port_checked_ = port_checked_ || family != Family::kCore;
    state = BringUp(family);
    guard::NoteAnswer();
  }
  return *state;
}

void Session::Require(Family family) {
  ThrowUnlessDone(Use(family), fmt::format("bring up {}", kFamilyWords[IndexOf(family)].name));
}

void RequireFreePort(const CommonOptions& options) {
  if (options.force) return;
  const PortSearch search = FindPortOwner();
  if (search.owner.empty()) return;
  throw CommandError(kBusy, fmt::format("the MCU's port {} is in use by {}; two programs would take each "
                                        "other's answers. End that process, or go on with --force",
                                        kMcuPort, search.owner));
}

ROLU_STATUS Session::BringUp(Family family) {
  if (family != Family::kCore && McuIsSilent()) return ROLU_STATUS_VPM_NO_REPLY;
  switch (family) {
    case Family::kCore:
      return KAVO_ROLU_CORE_Init();
    case Family::kVpm: {
      const ROLU_STATUS status = BringUpVpm();
      // The MCU did not answer the greeting.
      if (status == ROLU_STATUS_VPM_NO_REPLY) unanswered_ = patience_;
      return status;
    }
    case Family::kWatchdog:
      return BringUpWatchdog();
    case Family::kGsensor:
      return KAVO_ROLU_GSENSOR_Initialize(0);
    default:
      return BringUpPeripherals();
  }
}

// The watchdog family only sends the greeting, and comes up even without an answer. Only the time that this
// took shows that there was no answer.
ROLU_STATUS Session::BringUpWatchdog() {
  constexpr std::chrono::milliseconds kNoAnswer{2900};  // of the 3 s that the library waits
  const auto start = std::chrono::steady_clock::now();
  const ROLU_STATUS status = KAVO_ROLU_WD_Initialize(0);
  const bool took_all_the_time = std::chrono::steady_clock::now() - start >= kNoAnswer;
  if (status == ROLU_STATUS_SUCCESS && took_all_the_time) ++unanswered_;
  return status;
}

ROLU_STATUS Session::McuProblem() const {
  if (McuIsSilent()) return ROLU_STATUS_VPM_NO_REPLY;
  for (const std::optional<ROLU_STATUS>& state : states_) {
    if (state == ROLU_STATUS_VPM_OPEN_FAILED) return ROLU_STATUS_VPM_OPEN_FAILED;
  }
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS Session::Ask(Family family, const std::function<ROLU_STATUS()>& question) {
  const ROLU_STATUS up = Use(family);
  if (up != ROLU_STATUS_SUCCESS) return up;
  if (family == Family::kCore) return question();
  if (McuIsSilent()) return ROLU_STATUS_VPM_NO_REPLY;
  const ROLU_STATUS status = question();
  guard::NoteAnswer();
  unanswered_ = status == ROLU_STATUS_VPM_NO_REPLY ? unanswered_ + 1 : 0;
  return status;
}

ROLU_STATUS Session::Read(const Setting& setting, Value& value) {
  return Ask(setting.family, [&] { return setting.read(value); });
}

ROLU_STATUS Session::Write(const Setting& setting, const Value& value) {
  return Ask(setting.family, [&] { return setting.write(value); });
}

ExitStatus Session::Close() {
  ExitStatus result = kDone;
  for (std::size_t i = kFamilies; i-- > 0;) {
    const bool is_up = states_[i] == ROLU_STATUS_SUCCESS;
    states_[i].reset();
    if (!is_up) continue;
    const ROLU_STATUS status = kFamilyWords[i].take_down();
    guard::NoteAnswer();
    if (status == ROLU_STATUS_SUCCESS) continue;
    SayProblem(fmt::format("could not take down {}: {}", kFamilyWords[i].name, Describe(status)));
    result = WordsOf(status).exit_status;
  }
  return result;
}

}  // namespace rolu
