#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/nearest_name.h"
#include "tools/command.h"
#include "tools/digital_lines.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using Levels = std::array<unsigned char, 2>;  // as the library takes and gives them
using Lines = std::array<DigitalLine, 2>;

struct PinsOptions {
  std::vector<std::string> levels;       // of both outputs
  std::vector<std::string> assignments;  // "out1=high"
};

const char* Word(unsigned char level) {
  return level == 1 ? "high" : "low";
}

void Print(const CommonOptions& common, const std::vector<std::pair<Lines, Levels>>& pins) {
  Document document = Document::object();
  for (const auto& [lines, levels] : pins) {
    const std::string name(lines == kInputLines ? kInputPins : "pins.outputs");
    document[name] = {{"value", levels}, {"lines", {lines[0].line, lines[1].line}}};
    for (std::size_t i = 0; i < lines.size() && !common.json; ++i) {
      Out(fmt::format("{:<4}  {:<4}  {}\n", lines[i].pin, Word(levels[i]), lines[i].line));
    }
  }
  if (common.json) PrintJson(document);
}

// The outputs as the kernel drives them: the library only writes them. Throws CommandError.
Levels ReadOutputs() {
  Levels levels{};
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const std::optional<bool> level = kOutputLines[i].Level();
    if (!level) {
      throw CommandError(kNoAnswer, LinesAreUnprepared() ? std::string(kLinesAreUnprepared)
                                                         : "could not read " + kOutputLines[i].ValueFile());
    }
    levels[i] = *level ? 1 : 0;
  }
  return levels;
}

ExitStatus RunReadPins(const CommonOptions& common) {
  Session session(common);
  Value inputs;
  const Setting& setting = SettingNamed(kInputPins);
  const ROLU_STATUS status = session.Read(setting, inputs);
  if (status != ROLU_STATUS_SUCCESS) {
    throw CommandError(WordsOf(status).exit_status,
                       "could not read the pins: " + WhyNotRead(setting, status));
  }
  Print(common, {{kInputLines, inputs.get<Levels>()}, {kOutputLines, ReadOutputs()}});
  return kDone;
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

// Drives both outputs, because the library has no call for one alone.
ExitStatus Drive(Levels levels, const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kCore);
  ROLU_STATUS status = KAVO_ROLU_DIO_WriteDOPin(levels.data());
  if (status == ROLU_STATUS_DEVICE_OPEN_FAILED) {
    PreparePins();
    status = KAVO_ROLU_DIO_WriteDOPin(levels.data());
    KAVO_ROLU_DIO_Deinitialize();
  }
  ThrowUnlessDone(status, "drive the outputs");
  // The library does not see a write that fails.
  const Levels now = ReadOutputs();
  Print(common, {{kOutputLines, now}});
  if (now == levels) return kDone;
  throw CommandError(kRefused, "the outputs were driven, but read back differently");
}

unsigned char ParseLevel(const std::string& text) {
  if (text == "high" || text == "1" || text == "on") return 1;
  if (text == "low" || text == "0" || text == "off") return 0;
  throw CommandError(kWrongUse, fmt::format("a level must be high or low, 1 or 0, not \"{}\"", text));
}

ExitStatus RunDrive(const PinsOptions& options, const CommonOptions& common) {
  return Drive({ParseLevel(options.levels[0]), ParseLevel(options.levels[1])}, common);
}

// Drives the named outputs and leaves the other one as it is.
ExitStatus RunAssign(const PinsOptions& options, const CommonOptions& common) {
  std::array<std::optional<unsigned char>, 2> wanted;
  for (const std::string& text : options.assignments) {
    const std::size_t equals = text.find('=');
    const std::string pin = text.substr(0, equals);
    const auto output = std::ranges::find(kOutputLines, pin, &DigitalLine::pin);
    if (output == kOutputLines.end() || equals == std::string::npos) {
      throw CommandError(kWrongUse,
                         fmt::format("\"{}\" is neither a command nor out1=LEVEL or out2=LEVEL{}", text,
                                     Suggestion(pin, {"read", "prepare", "drive", "out1", "out2"})));
    }
    wanted[static_cast<std::size_t>(output - kOutputLines.begin())] = ParseLevel(text.substr(equals + 1));
  }
  // Lines that are not prepared yet begin low.
  const Levels now = LinesAreUnprepared() ? Levels{} : ReadOutputs();
  return Drive({wanted[0].value_or(now[0]), wanted[1].value_or(now[1])}, common);
}

ExitStatus RunPins(const PinsOptions& options, const CommonOptions& common) {
  return options.assignments.empty() ? RunReadPins(common) : RunAssign(options, common);
}

}  // namespace

void AddPinsCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<PinsOptions>();
  CLI::App* const pins = NewCommand(app, "pins", "Show the digital pins and drive the outputs",
                                    "  rolu pins\n  rolu pins out1=high\n  rolu pins drive high low");
  pins->require_subcommand(0, 1);
  CLI::Option* const assignments =
      pins->add_option("OUTPUT=LEVEL", options->assignments,
                       "Drive out1 or out2 high or low (1 or 0); the other one stays as it is");
  OnRun(pins, invocation, RunPins, options);
  OnRun(NewCommand(*pins, "read", "Show all four pins, as 'rolu pins' does", ""), invocation, RunReadPins);
  OnRun(NewCommand(*pins, "prepare", "Make the lines available; both outputs go low", ""), invocation,
        RunPrepare);
  CLI::App* const drive = NewCommand(*pins, "drive", "Drive the two outputs, which keep their levels",
                                     "  rolu pins drive high low");
  drive->add_option("LEVEL", options->levels, "Of output 1 and of output 2, high or low")
      ->required()
      ->expected(2);
  OnRun(drive, invocation, RunDrive, options);
  for (CLI::App* const subcommand : pins->get_subcommands({})) subcommand->excludes(assignments);
}

}  // namespace rolu
