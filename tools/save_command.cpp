#include <fmt/format.h>
#include <unistd.h>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/session.h"
#include "tools/settings_file.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

std::vector<SavedSetting> ReadUnit(Session& session, Outcome& outcome) {
  std::vector<SavedSetting> settings;
  for (const Setting& setting : Settings()) {
    if (!setting.IsSaved()) continue;
    interrupt::ThrowIfRequested();
    Value value;
    const ROLU_STATUS status = session.Read(setting, value);
    if (status != ROLU_STATUS_SUCCESS) {
      outcome.Add(WordsOf(status).exit_status);
      SayProblem(fmt::format("{} is not in the file: {}", setting.name, Describe(status, Act::kRead)));
    } else if (WhyNotTaken(setting, value).empty()) {
      outcome.Add(kDone);
      settings.push_back({&setting, value});
    } else {
      Say(fmt::format("{} is not in the file: it is {}, which cannot be set again", setting.name,
                      ValueText(setting, value)));
    }
  }
  return settings;
}

ExitStatus RunSave(const std::string& path, const CommonOptions& common) {
  const bool replaces = path != "-" && access(path.c_str(), F_OK) == 0;
  if (replaces) Confirm(common, {fmt::format("replaces the file {}", path)});
  Session session(common);
  Outcome outcome;
  const std::vector<SavedSetting> settings = ReadUnit(session, outcome);
  Value firmware = "";
  session.Read(SettingNamed("mcu.firmware"), firmware);
  const ROLU_STATUS problem = session.McuProblem();
  session.Close();
  if (problem != ROLU_STATUS_SUCCESS) {
    throw CommandError(kNoAnswer, fmt::format("nothing was saved: {}", DescribeWithHint(problem)));
  }
  if (settings.empty()) throw CommandError(outcome.Result(), "nothing was saved");
  WriteSettingsFile(path, firmware.get<std::string>(), settings);
  if (common.json && path != "-") {
    PrintJson({{"file", path}, {"saved", settings.size()}});
  } else if (path != "-") {
    Out(fmt::format("{} settings saved in {}\n", settings.size(), path));
  }
  return outcome.Result();
}

}  // namespace

void AddSaveCommand(CLI::App& app, Invocation& invocation) {
  auto path = std::make_shared<std::string>();
  CLI::App* const command =
      NewCommand(app, "save", "Write all settings of the unit into a file",
                 "  rolu save unit-17.json\n  rolu save - | ssh depot 'cat > unit-17.json'");
  command->add_option("FILE", *path, "The file, written whole or not at all; - is standard output")
      ->required();
  OnRun(command, invocation, RunSave, path);
}

}  // namespace rolu
