#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/report.h"
#include "tools/session.h"
#include "tools/setting.h"

namespace rolu {

// A new value for one setting, and what became of it.
struct Change {
  const Setting* setting = nullptr;
  Value wanted;
  std::optional<Value> before{};     // as it was read before; empty if that failed
  std::optional<Value> read_back{};  // as it was read after
  ExitStatus result = kDone;
  std::string problem{};  // why the setting differs from `wanted`; empty when it does not
};

// A change of this setting switches off the protections, which IsProtection names.
inline constexpr std::string_view kBatteryMode = "battery.mode";
bool IsProtection(const Setting& setting);

bool HasChangeOf(const std::vector<Change>& changes, std::string_view name);

// The change of the setting `name` to what `text` says. Throws CommandError(kWrongUse).
Change ParseChange(const std::string& name, std::string_view text);

// What the user must confirm before these are applied.
std::vector<std::string> ConsequencesOf(const std::vector<Change>& changes);

// Reads the setting, writes it, reads it back and compares; the results are in `change`. Keeps a
// `before` that `change` has already.
void Apply(Session& session, Change& change);

// Applies one after another, and hands each to `tell` once it is done. A signal that asks for an end
// stops this; but after a change of the battery mode the protections are still set.
void ApplyAll(Session& session, std::vector<Change>& changes, const std::function<void(const Change&)>& tell);

// "battery.mode = 24V (was 12V)" on standard output, or the problem on standard error.
void PrintChange(const Change& change);

// Applies all and prints what became of each, as lines or as one JSON object.
ExitStatus ApplyAndPrint(Session& session, std::vector<Change>& changes, bool json);

// {"wanted": ..., "before": ..., "value": ..., "error": ...}, without what the change lacks.
Document ChangeAsJson(const Change& change);

}  // namespace rolu
