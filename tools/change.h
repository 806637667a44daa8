#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/report.h"
#include "tools/session.h"
#include "tools/setting.h"

namespace rolu {

// One setting that shall get a value, and what became of it.
struct Change {
  const Setting* setting = nullptr;
  Value wanted;
  std::optional<Value> before{};     // as it was read before; nothing if it could not be
  std::optional<Value> read_back{};  // as it was read after
  ExitStatus result = kDone;
  std::string problem{};  // why it is not as wanted; empty when it is
};

// A change of this setting switches off the protections, which IsProtection names.
inline constexpr std::string_view kBatteryMode = "battery.mode";
bool IsProtection(const Setting& setting);

bool HasChangeOf(const std::vector<Change>& changes, std::string_view name);

// The change of the setting `name` to what `text` says. Throws CommandError(kWrongUse).
Change ParseChange(const std::string& name, std::string_view text);

// What must be confirmed before these are applied.
std::vector<std::string> ConsequencesOf(const std::vector<Change>& changes);

// Reads the setting, writes it, reads it back and compares; the results are in `change`. A `before`
// that is there already is kept.
void Apply(Session& session, Change& change);

// Applies one after another, and hands each to `tell` once it is done. When a signal asks for an end
// the rest is left, but once a change of the battery mode was sent the protections are put right.
void ApplyAll(Session& session, std::vector<Change>& changes, const std::function<void(const Change&)>& tell);

// "battery.mode = 24V (was 12V)" on standard output, or the problem on standard error.
void PrintChange(const Change& change);

// Applies all and prints what became of each, as lines or as one JSON object.
ExitStatus ApplyAndPrint(Session& session, std::vector<Change>& changes, bool json);

// {"wanted": ..., "before": ..., "value": ..., "error": ...}: what is there of it.
Document ChangeAsJson(const Change& change);

}  // namespace rolu
