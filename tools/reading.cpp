#include "tools/reading.h"

#include <fmt/format.h>

#include "tools/interrupt.h"
#include "tools/settings_table.h"
#include "tools/status_words.h"

namespace rolu {

ROLU_STATUS ReadInto(Session& session, const Setting& setting, Report& report, Outcome& outcome) {
  interrupt::ThrowIfRequested();
  Value value;
  const ROLU_STATUS status = session.Read(setting, value);
  if (status == ROLU_STATUS_SUCCESS) report.AddValue(setting, value);
  outcome.Add(WordsOf(status).exit_status);
  return status;
}

ExitStatus ReadAndPrint(Session& session, const std::string& name, const CommonOptions& common) {
  Report report;
  for (const Setting* const setting : SettingsNamed({name})) {
    Value value;
    ThrowUnlessDone(session.Read(*setting, value), fmt::format("read {}", setting->name));
    report.AddValue(*setting, value);
  }
  report.Print(common.json);
  return kDone;
}

}  // namespace rolu
