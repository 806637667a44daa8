#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/report.h"
#include "tools/session.h"
#include "tools/setting.h"

namespace rolu {

// A new value for one setting, and the result.
struct Change {
  const Setting* setting = nullptr;
  Value wanted;
  std::optional<Value> before{};     // the value before; empty if it could not be read
  std::optional<Value> read_back{};  // the value afterwards; empty if it could not be read
  ExitStatus result = kDone;
  std::string problem{};  // why the setting is not `wanted`; empty when it is
};

// A change of this setting switches the protections off (see IsProtection).
inline constexpr std::string_view kBatteryMode = "battery.mode";
bool IsProtection(const Setting& setting);

bool HasChangeOf(const std::vector<Change>& changes, std::string_view name);

// The change of the setting `name` to the value in `text`. Throws CommandError(kWrongUse).
Change ParseChange(const std::string& name, std::string_view text);

// What the user must confirm before the changes.
std::vector<std::string> ConsequencesOf(const std::vector<Change>& changes);

// Reads the setting, writes it, reads it back and compares; `change` gets the results. If `change` has a
// `before` already, that one stays.
void Apply(Session& session, Change& change);

// Applies the changes one after another, and passes each one to `tell` afterwards. A signal that asks for an
// end stops this. But if the battery mode has changed, the protections are still set.
void ApplyAll(Session& session, std::vector<Change>& changes, const std::function<void(const Change&)>& tell);

// Prints "battery.mode = 24V (was 12V)" on standard output, or the problem on standard error.
void PrintChange(const Change& change);

// Applies all changes and prints the results, as lines or as one JSON object.
ExitStatus ApplyAndPrint(Session& session, std::vector<Change>& changes, bool json);

// {"wanted": ..., "before": ..., "value": ..., "error": ...}; members that the change lacks are left out.
Document ChangeAsJson(const Change& change);

}  // namespace rolu
