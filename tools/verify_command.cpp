#include <fmt/format.h>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/settings_file.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

// A setting of the unit that is not as the file says.
struct Difference {
  const Setting* setting;
  Value wanted;
  Value found;          // null when it could not be read
  std::string problem;  // why it could not be read
};

// Throws CommandError when the MCU cannot be asked.
std::vector<Difference> Compare(Session& session, const SettingsFile& file) {
  std::vector<Difference> differences;
  for (const SavedSetting& saved : file.settings) {
    interrupt::ThrowIfRequested();
    const Setting& setting = *saved.setting;
    Value found;
    const ROLU_STATUS status = session.Read(setting, found);
    if (session.McuIsUnreachable()) {
      throw CommandError(kNoAnswer, "nothing was compared: " + DescribeWithHint(session.McuProblem()));
    }
    if (status != ROLU_STATUS_SUCCESS) {
      differences.push_back({&setting, saved.value, nullptr, WhyNotRead(setting, status)});
    } else if (!IsSame(saved.value, found, setting.rounding)) {
      differences.push_back({&setting, saved.value, found, ""});
    }
  }
  return differences;
}

void Print(const Difference& difference) {
  const Setting& setting = *difference.setting;
  const std::string wanted = ValueText(setting, difference.wanted);
  if (difference.found.is_null()) {
    SayProblem(fmt::format("{} is {} in the file, but could not be read: {}", setting.name, wanted,
                           difference.problem));
  } else {
    Out(fmt::format("{}: {} in the file, {} on the unit\n", setting.name, wanted,
                    ValueText(setting, difference.found)));
  }
}

Document AsJson(const SettingsFile& file, const std::vector<Difference>& differences) {
  Document rows = Document::object();
  for (const Difference& difference : differences) {
    Document& row = rows[std::string(difference.setting->name)] = {{"wanted", difference.wanted}};
    if (difference.found.is_null()) {
      row["error"] = difference.problem;
    } else {
      row["found"] = difference.found;
    }
  }
  return {{"same", file.settings.size() - differences.size()},
          {"differences", std::move(rows)},
          {"left_out", file.left_out}};
}

ExitStatus RunVerify(const std::string& path, const CommonOptions& common) {
  const SettingsFile file = ReadSettingsFile(path);
  Session session(common);
  const std::vector<Difference> differences = Compare(session, file);
  if (common.json) {
    PrintJson(AsJson(file, differences));
  } else {
    SayWhatIsLeftOut(file);
    for (const Difference& difference : differences) Print(difference);
    Out(fmt::format("{} of {} settings are as the file says\n", file.settings.size() - differences.size(),
                    file.settings.size()));
  }
  return differences.empty() ? kDone : kPartlyDone;
}

}  // namespace

void AddVerifyCommand(CLI::App& app, Invocation& invocation) {
  auto path = std::make_shared<std::string>();
  CLI::App* const command = NewCommand(app, "verify", "Compare the unit's settings with a file",
                                       "  rolu verify unit-17.json\n"
                                       "The differences are named. Exit status: 0 no difference, 1 some.");
  command->add_option("FILE", *path, kSettingsFileHelp)->required();
  OnRun(command, invocation, RunVerify, path);
}

}  // namespace rolu
