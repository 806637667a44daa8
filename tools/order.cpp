#include "tools/order.h"

#include <fmt/format.h>

#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

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

void AddOrderCommand(CLI::App& app, Invocation& invocation, const Order& order) {
  CLI::App* const command =
      NewCommand(app, order.name, order.help, fmt::format("  rolu {0}\n  rolu -y {0}", order.name));
  OnRun(command, invocation, [order](const CommonOptions& common) { return Give(order, common); });
}

}  // namespace rolu
