#include <fmt/format.h>

#include <iostream>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "simulator/desk/control_client.h"
#include "simulator/desk/trace.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/command.h"

namespace rolu_sim {
namespace {

struct TraceOptions {
  BoardChoice board;
  bool json = false;
  bool follow = false;
  std::chrono::milliseconds length{0};  // for how long to follow the trace; 0: without end
};

int ShowTrace(const TraceOptions& options) {
  const std::string directory = BoardDirectory(options.board.directory);
  ControlClient client(directory, options.board.patience);
  client.Ask({{"trace", options.follow ? "follow" : "past"}});
  std::optional<ControlClient::TimePoint> deadline;
  if (options.length.count() > 0) deadline = std::chrono::steady_clock::now() + options.length;
  const TraceFormat format = options.json ? TraceFormat::kJson : TraceFormat::kText;
  while (const auto line = client.ReadLine(deadline)) {
    std::cout << FormatLine(TraceRecordFromJson(Json::parse(*line)), format) << std::flush;
    if (!std::cout) return rolu::kPartlyDone;
  }
  if (options.follow && !client.TimedOut()) {
    rolu::Say(fmt::format("the board at {} went down", directory));
  }
  return 0;
}

}  // namespace

void AddTraceCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const trace =
      NewCommand(app, "trace", "Shows each line on the wire of a board that is up, in plain words",
                 "rolu-sim trace [OPTIONS]");
  const auto options = std::make_shared<TraceOptions>();
  trace->add_flag("--json", options->json, "Print lines of JSON, as run --replay reads them");
  trace->add_flag("--follow", options->follow, "Go on as the lines come, until the board goes down");
  rolu::AddDurationOption(*trace, "--for", options->length, "End after this time",
                          std::chrono::milliseconds(0), kLongestTime);
  AddBoardChoice(*trace, options->board);
  OnRun(trace, invocation, [=] { return ShowTrace(*options); });
}

}  // namespace rolu_sim
