#include <fmt/format.h>

#include <array>

#include "tools/command.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

ExitStatus RunReadPins(const CommonOptions& common) {
  Session session(common);
  return ReadAndPrint(session, "pins.inputs", common);
}

// Preparing the lines sets their directions again, which drives the outputs low. So a read does not prepare
// the lines, although it needs them.
void PreparePins() {
  ThrowUnlessDone(KAVO_ROLU_DIO_Initialize(), "prepare the lines");
}

ExitStatus RunPrepare(const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kCore);
  PreparePins();
  KAVO_ROLU_DIO_Deinitialize();
  if (!common.json) Out("the lines are prepared, both outputs are low\n");
  if (common.json) PrintJson({{"pins.prepared", true}});
  return kDone;
}

ExitStatus RunDrive(const std::vector<std::string>& levels, const CommonOptions& common) {
  std::array<unsigned char, 2> pins{};
  for (std::size_t i = 0; i < pins.size(); ++i) pins[i] = levels[i] == "high" || levels[i] == "1" ? 1 : 0;
  Session session(common);
  session.Require(Family::kCore);
  ROLU_STATUS status = KAVO_ROLU_DIO_WriteDOPin(pins.data());
  if (status == ROLU_STATUS_DEVICE_OPEN_FAILED) {
    PreparePins();
    status = KAVO_ROLU_DIO_WriteDOPin(pins.data());
    KAVO_ROLU_DIO_Deinitialize();
  }
  ThrowUnlessDone(status, "drive the outputs");
  Report report;
  const auto word = [&](std::size_t i) { return pins[i] == 1 ? "high" : "low"; };
  report.AddValue("pins.outputs", Value(pins), fmt::format("{} {}", word(0), word(1)));
  report.Print(common.json);
  return kDone;
}

}  // namespace

void AddPinsCommand(CLI::App& app, Invocation& invocation) {
  auto levels = std::make_shared<std::vector<std::string>>();
  CLI::App* const pins = NewCommand(app, "pins", "Read the digital inputs and drive the outputs",
                                    "  rolu pins\n  rolu pins drive high low");
  pins->require_subcommand(0, 1);
  OnRun(pins, invocation, RunReadPins);
  OnRun(NewCommand(*pins, "read", "Read the two inputs, as 'rolu pins' does", ""), invocation, RunReadPins);
  OnRun(NewCommand(*pins, "prepare", "Make the lines available; both outputs go low", ""), invocation,
        RunPrepare);
  CLI::App* const drive = NewCommand(*pins, "drive", "Drive the two outputs, which keep their levels",
                                     "  rolu pins drive high low");
  drive->add_option("LEVEL", *levels, "Of output 1 and of output 2")
      ->required()
      ->expected(2)
      ->check(CLI::IsMember({"high", "low", "1", "0"}));
  OnRun(drive, invocation, RunDrive, levels);
}

}  // namespace rolu
