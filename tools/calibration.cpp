#include "tools/calibration.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <chrono>

#include "cli/messages.h"
#include "tools/board_watcher.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using Clock = std::chrono::steady_clock;

// Someone must have the time to turn the ignition on again.
constexpr long kLeastUnitsLeft = 10;

// In MCU units, from ignition off.
struct Delays {
  long warning;
  long power_cut;
};

Value ReadOrThrow(Session& session, std::string_view name) {
  Value value;
  const ROLU_STATUS status = session.Read(SettingNamed(name), value);
  if (status == ROLU_STATUS_SUCCESS) return value;
  throw CommandError(WordsOf(status).exit_status,
                     fmt::format("could not read {}: {}", name, DescribeWithHint(status, Act::kRead)));
}

// Throws CommandError when the state of the unit does not allow the measurement.
Delays ReadDelays(const CommonOptions& common) {
  Session session(common);
  if (ReadOrThrow(session, "ignition.state") != true) {
    throw CommandError(kRefused, "the ignition is off; the measurement begins with the ignition on");
  }
  if (ReadOrThrow(session, "poweroff.warning") != true) {
    throw CommandError(kRefused, "the MCU does not warn before a power-off; 'rolu set poweroff.warning=on'");
  }
  const long warning = ReadOrThrow(session, "ignition.off-event-delay");
  const long hard_off = ReadOrThrow(session, "ignition.hard-off-delay");
  const long after_warning = ReadOrThrow(session, "poweroff.warning-delay");
  const long power_cut = std::min(hard_off, warning + after_warning);
  // As long again as the warning took is what the person at the ignition can estimate.
  if (power_cut - warning >= std::max(warning, kLeastUnitsLeft)) return {warning, power_cut};
  throw CommandError(
      kRefused,
      fmt::format("the power may be cut {} MCU units after the warning, which comes after {}: too soon "
                  "to turn the ignition on again. Make ignition.hard-off-delay and "
                  "poweroff.warning-delay longer first",
                  power_cut - warning, warning));
}

// The events of the ignition, with the time at which they were seen.
class IgnitionWatch {
 public:
  explicit IgnitionWatch(const CommonOptions& common)
      : watcher_({.common = common, .interval = std::chrono::milliseconds(20)}) {}

  // Waits for the event. Throws CommandError when a signal asks for an end, the MCU falls silent, or the
  // ignition changes otherwise.
  Clock::time_point WaitFor(EventKind wanted) {
    while (true) {
      const std::optional<Event> event = watcher_.Take();
      if (event && event->kind == wanted) return Clock::now();
      if (event && event->kind == EventKind::kIgnitionOn) {
        throw CommandError(kPartlyDone, "the ignition came back before the warning, so nothing was measured");
      }
      if (watcher_.IsOver() || (event && event->kind == EventKind::kMcuSilent)) {
        throw CommandError(kNoAnswer, "the MCU does not answer any more");
      }
      if (event) continue;
      pollfd ends[] = {{watcher_.Descriptor(), POLLIN, 0}, {interrupt::Descriptor(), POLLIN, 0}};
      poll(ends, 2, -1);
      interrupt::ThrowIfRequested();
    }
  }

 private:
  BoardWatcher watcher_;
};

std::chrono::duration<double> TimeToWarning(IgnitionWatch& watch) {
  watch.WaitFor(EventKind::kState);
  Say("turn the ignition off now");
  const Clock::time_point off = watch.WaitFor(EventKind::kIgnitionOff);
  guard::SetLastWords("turn the ignition on again");
  Say("the ignition is off; the warning must come now");
  return watch.WaitFor(EventKind::kIgnitionWarning) - off;
}

}  // namespace

ExitStatus CalibrateMcuUnit(const CommonOptions& common) {
  const Delays delays = ReadDelays(common);
  Confirm(common,
          {fmt::format("has you turn the ignition off and on again. The MCU warns {} of its units after "
                       "ignition off and may cut the power after {}, unless the ignition is on again",
                       delays.warning, delays.power_cut)});
  IgnitionWatch watch(common);
  const double seconds = TimeToWarning(watch).count();
  const double unit = seconds / static_cast<double>(delays.warning);
  if (common.json) {
    PrintJson(
        {{"mcu_unit_seconds", unit}, {"measured_units", delays.warning}, {"measured_seconds", seconds}});
  } else {
    OutNow(fmt::format(
        "an MCU unit is about {:.3g} s: the warning came {:.2f} s after ignition off, which are {} "
        "units\n",
        unit, seconds, delays.warning));
  }
  Say("turn the ignition on again now");
  watch.WaitFor(EventKind::kIgnitionOn);
  return kDone;
}

}  // namespace rolu
