#include "tools/settings_file.h"

#include <errno.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

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
  if (!document.is_object() || document.value("format", Value()) != kFormat) {
    Refuse(path, {"was not written by 'rolu save'"});
  }
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

// What is wrong with the entry; empty when nothing is wrong.
std::string ProblemWith(const std::string& name, const Value& entry) {
  const Setting* const setting = FindSetting(name);
  if (setting == nullptr) return NoSetting(name);
  if (!setting->IsSaved()) return fmt::format("{} cannot be loaded", name);
  if (!entry.is_object() || !entry.contains("value")) return fmt::format("{} has no value", name);
  for (const auto& [key, value] : entry.items()) {
    if (key != "value" && key != "unit") return fmt::format("{} has an unknown part \"{}\"", name, key);
  }
  const auto unit = entry.find("unit");
  if (unit != entry.end() && *unit != setting->unit) {
    return fmt::format("{} is in {}, not in \"{}\"", name, unit->dump(), setting->unit);
  }
  return WhyNotTaken(*setting, entry["value"]);
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

std::vector<SavedSetting> ReadSettingsFile(const std::string& path) {
  const Value document = ParseJson(path, ReadWhole(path));
  CheckFrame(path, document);
  const Value& entries = document["settings"];
  Problems problems;
  for (const auto& [name, entry] : entries.items()) {
    const std::string problem = ProblemWith(name, entry);
    if (!problem.empty()) problems.push_back(problem);
  }
  if (!problems.empty()) Refuse(path, problems);
  std::vector<SavedSetting> settings;
  for (const Setting& setting : Settings()) {
    const auto entry = entries.find(setting.name);
    if (entry != entries.end()) settings.push_back({&setting, (*entry)["value"]});
  }
  if (settings.empty()) Refuse(path, {"has no settings"});
  return settings;
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
