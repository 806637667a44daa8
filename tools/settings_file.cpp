#include "tools/settings_file.h"

#include <errno.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>

#include "cli/messages.h"

namespace rolu {
namespace {

constexpr char kFormat[] = "rolu-settings";
constexpr int kVersion = 1;
constexpr std::size_t kLargestFile = std::size_t{1024} * 1024;

using Problems = std::vector<std::string>;

[[noreturn]] void Refuse(const std::string& path, const Problems& problems) {
  throw CommandError(kWrongUse,
                     fmt::format("{}: {}\nNothing was changed.", path, fmt::join(problems, "\n  ")));
}

std::string ReadWhole(const std::string& path) {
  std::ifstream file;
  if (path != "-") {
    errno = 0;
    file.open(path, std::ios::binary);
    if (!file) throw CommandError(kWrongUse, fmt::format("could not open {}: {}", path, ErrnoText(errno)));
  }
  std::istream& source = path == "-" ? std::cin : file;
  std::string text(kLargestFile + 1, '\0');
  source.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(source.gcount()));
  if (source.bad() || text.empty()) Refuse(path, {"is empty or cannot be read"});
  if (text.size() > kLargestFile) Refuse(path, {"is too large: a file of settings has at most 1 MiB"});
  return text;
}

// The parser keeps only the last of two equal keys. A file that has a key twice is ambiguous, so it is
// refused.
Value ParseJson(const std::string& path, const std::string& text) {
  std::vector<std::set<std::string>> keys;
  Problems twice;
  const auto watch_keys = [&](int /*depth*/, Value::parse_event_t event, Value& parsed) {
    if (event == Value::parse_event_t::object_start) keys.emplace_back();
    if (event == Value::parse_event_t::object_end) keys.pop_back();
    if (event == Value::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second) {
      twice.push_back(fmt::format("\"{}\" is there twice", parsed.get<std::string>()));
    }
    return true;
  };
  try {
    Value document = Value::parse(text, watch_keys);
    if (!twice.empty()) Refuse(path, twice);
    return document;
  } catch (const Value::exception& error) {
    const std::string what = error.what();
    Refuse(path, {"is broken: " + what.substr(what.find("] ") + 2)});
  }
}

void CheckFrame(const std::string& path, const Value& document) {
  if (document["format"] != kFormat) Refuse(path, {"was not written by 'rolu save'"});
  const auto version = document.find("version");
  if (version == document.end() || *version != kVersion) {
    Refuse(path, {fmt::format("has version {}; this program reads version {}",
                              version == document.end() ? "none" : version->dump(), kVersion)});
  }
  static const std::set<std::string> known = {"format", "version", "saved_at", "firmware", "settings"};
  Problems problems;
  for (const auto& [key, value] : document.items()) {
    if (known.count(key) == 0) problems.push_back(fmt::format("has an unknown part \"{}\"", key));
  }
  const auto settings = document.find("settings");
  if (settings == document.end() || !settings->is_object()) problems.emplace_back("has no settings");
  if (!problems.empty()) Refuse(path, problems);
}

// What is wrong with an entry of JSON; empty when nothing is wrong.

std::string ProblemWithUnit(const Setting& setting, const Value& entry) {
  const auto unit = entry.find("unit");
  if (unit == entry.end() || *unit == setting.unit) return "";
  return fmt::format("{} is in {}, not in \"{}\"", setting.name, unit->dump(), setting.unit);
}

std::string ProblemWithSaved(const std::string& name, const Value& entry) {
  const Setting* const setting = FindSetting(name);
  if (setting == nullptr) return NoSetting(name);
  if (!setting->IsSaved()) return fmt::format("{} cannot be loaded", name);
  if (!entry.is_object() || !entry.contains("value")) return fmt::format("{} has no value", name);
  for (const auto& [key, value] : entry.items()) {
    if (key != "value" && key != "unit") return fmt::format("{} has an unknown part \"{}\"", name, key);
  }
  const std::string problem = ProblemWithUnit(*setting, entry);
  return problem.empty() ? WhyNotTaken(*setting, entry["value"]) : problem;
}

std::string ProblemWithReading(const std::string& name, const Value& entry) {
  const Setting* const setting = FindSetting(name);
  if (setting == nullptr) return NoSetting(name);
  return entry.is_object() ? ProblemWithUnit(*setting, entry) : fmt::format("{} has no value", name);
}

void TakeSaved(const Value& entries, SettingsFile& file, Problems& problems) {
  for (const auto& [name, entry] : entries.items()) {
    const std::string problem = ProblemWithSaved(name, entry);
    if (!problem.empty()) {
      problems.push_back(problem);
    } else {
      const Setting& setting = SettingNamed(name);
      file.settings.push_back({&setting, Normalised(setting, entry["value"])});
    }
  }
}

// What was read from a unit may be more than what can be set: readings, problems, an alarm that was never
// set.
void TakeReadings(const Value& entries, SettingsFile& file, Problems& problems) {
  for (const auto& [name, entry] : entries.items()) {
    const std::string problem = ProblemWithReading(name, entry);
    if (!problem.empty()) {
      problems.push_back(problem);
      continue;
    }
    const Setting& setting = SettingNamed(name);
    const Value value = Normalised(setting, entry.value("value", Value()));
    if (setting.IsSaved() && WhyNotTaken(setting, value).empty()) {
      file.settings.push_back({&setting, value});
    } else {
      file.left_out.push_back(name);
    }
  }
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return "";
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// The value of a line without its unit and its quotes.
std::string_view BareValue(const Setting& setting, std::string_view text) {
  if (!setting.unit.empty() && text.ends_with(setting.unit)) {
    text = Trimmed(text.substr(0, text.size() - setting.unit.size()));
  }
  const bool is_quoted =
      text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
  return is_quoted ? text.substr(1, text.size() - 2) : text;
}

// Reads "NAME = VALUE". Throws CommandError.
SavedSetting ParseLine(std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) throw CommandError(kWrongUse, "this is not NAME = VALUE");
  const Setting& setting = SettingNamed(Trimmed(line.substr(0, equals)));
  if (!setting.IsSaved()) {
    throw CommandError(
        kWrongUse,
        fmt::format("{} {}", setting.name, setting.IsWritable() ? "cannot be loaded" : "can only be read"));
  }
  return {&setting, ParseValue(setting, BareValue(setting, Trimmed(line.substr(equals + 1))))};
}

void TakeLines(const std::string& text, SettingsFile& file, Problems& problems) {
  std::istringstream lines(text);
  std::string line;
  for (unsigned number = 1; std::getline(lines, line); ++number) {
    const std::string_view content = Trimmed(std::string_view(line).substr(0, line.find('#')));
    if (content.empty()) continue;
    try {
      const SavedSetting saved = ParseLine(content);
      if (std::ranges::count(file.settings, saved.setting, &SavedSetting::setting) > 0) {
        throw CommandError(kWrongUse, fmt::format("{} is there twice", saved.setting->name));
      }
      file.settings.push_back(saved);
    } catch (const CommandError& error) {
      problems.push_back(fmt::format("line {}: {}", number, error.what()));
    }
  }
}

// A new file beside `path`. It replaces `path` when it is complete; otherwise it is removed.
class Replacement {
 public:
  explicit Replacement(const std::string& path) : path_(path), name_(path + ".XXXXXX") {
    file_ = mkstemp(name_.data());
    if (file_ < 0) Fail();
  }
  ~Replacement() {
    if (file_ < 0) return;
    close(file_);
    unlink(name_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  void Write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t written = write(file_, text.data(), text.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) Fail();
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void TakePlace() {
    const mode_t mask = umask(0);
    umask(mask);
    if (fchmod(file_, 0666 & ~mask) != 0 || fsync(file_) != 0) Fail();
    if (rename(name_.c_str(), path_.c_str()) != 0) Fail();
    close(file_);
    file_ = -1;
  }

 private:
  [[noreturn]] void Fail() const {
    throw CommandError(kWrongUse, fmt::format("could not write {}: {}", path_, ErrnoText(errno)));
  }

  std::string path_;
  std::string name_;
  int file_ = -1;
};

}  // namespace

SettingsFile ReadSettingsFile(const std::string& path) {
  const std::string text = ReadWhole(path);
  SettingsFile file;
  Problems problems;
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos || (text[begin] != '{' && text[begin] != '[')) {
    TakeLines(text, file, problems);
  } else {
    const Value document = ParseJson(path, text);
    if (!document.is_object()) {
      Refuse(path, {"was not written by 'rolu save', 'rolu get --json' or 'rolu status --json'"});
    }
    if (document.contains("format")) {
      CheckFrame(path, document);
      TakeSaved(document["settings"], file, problems);
    } else {
      TakeReadings(document, file, problems);
    }
  }
  if (problems.empty() && file.settings.empty()) problems.emplace_back("has no settings");
  if (!problems.empty()) Refuse(path, problems);
  // All settings are rows of one vector, so the addresses give the order.
  std::ranges::sort(file.settings, {}, &SavedSetting::setting);
  return file;
}

void SayWhatIsLeftOut(const SettingsFile& file) {
  if (file.left_out.empty()) return;
  Say(fmt::format("values of the file that cannot be set: {}; they are left out", file.left_out.size()));
}

void WriteSettingsFile(const std::string& path, const std::string& firmware,
                       const std::vector<SavedSetting>& settings) {
  Document document = {{"format", kFormat},
                       {"version", kVersion},
                       {"saved_at", TimeStamp()},
                       {"firmware", firmware},
                       {"settings", Document::object()}};
  for (const SavedSetting& saved : settings) {
    Document& entry = document["settings"][std::string(saved.setting->name)] = {{"value", saved.value}};
    if (!saved.setting->unit.empty()) entry["unit"] = saved.setting->unit;
  }
  if (path == "-") return PrintJson(document);
  Replacement replacement(path);
  replacement.Write(document.dump(2) + "\n");
  replacement.TakePlace();
}

}  // namespace rolu
