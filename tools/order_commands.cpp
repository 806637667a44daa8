// The commands that give the board one order, which cannot be taken back.

#include <fmt/format.h>

#include "tools/command.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

struct Order {
  const char* name;
  const char* help;
  const char* consequence;  // completes "this ..."
  Family family;
  ROLU_STATUS (*give)();
  const char* done;
};

constexpr Order kOrders[] = {
    {"defaults", "Restore all of the MCU's default settings; asks first",
     "replaces all settings of the MCU by its defaults ('rolu save FILE' keeps them)", Family::kVpm,
     KAVO_ROLU_VPM_LoadDefaultValue, "the MCU has restored its defaults"},
    {"reset", "Reset the board; asks first", "resets the board at once", Family::kCore, KAVO_ROLU_CORE_Reset,
     "the board has the order to reset"},
    {"force-shutdown", "Have the MCU cut the computer's power; asks first",
     "cuts the computer's power at once, without a shutdown", Family::kVpm, KAVO_ROLU_VPM_ForceShutdown,
     "the MCU has the order to cut the power"},
};

ExitStatus Give(const Order& order, const CommonOptions& common) {
  Confirm(common, {order.consequence});
  Session session(common);
  session.Require(order.family);
  ThrowUnlessDone(order.give(), fmt::format("give the order \"{}\"", order.name));
  if (common.json) {
    PrintJson({{"order", order.name}, {"given", true}});
  } else {
    OutNow(fmt::format("{}\n", order.done));
  }
  return kDone;
}

}  // namespace

void AddOrderCommands(CLI::App& app, Invocation& invocation) {
  for (const Order& order : kOrders) {
    OnRun(NewCommand(app, order.name, order.help, fmt::format("  rolu {0}\n  rolu -y {0}", order.name)),
          invocation, [&order](const CommonOptions& common) { return Give(order, common); });
  }
}

}  // namespace rolu
