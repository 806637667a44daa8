#include <errno.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

#include "cli/messages.h"
#include "tools/calibration.h"
#include "tools/command.h"
#include "tools/digital_lines.h"
#include "tools/interrupt.h"
#include "tools/port_owner.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr unsigned kQuestions = 50;

struct Finding {
  const char* word;  // in JSON
  const char* mark;
  const char* colour;
};
constexpr Finding kGood = {"good", "ok  ", "\033[32m"};
constexpr Finding kNote = {"note", "note", "\033[33m"};
constexpr Finding kBad = {"bad", "BAD ", "\033[31m"};

struct Check {
  std::string subject;
  Finding finding;
  std::string text;
};

struct DeviceFile {
  const char* path;
  const char* subject;
  int access;  // the access that the library needs
};

constexpr DeviceFile kDeviceFiles[] = {
    {"/dev/i2c-3", "I2C bus (reset, i2c)", R_OK | W_OK},
    {"/sys/devices/omapdss/display0/backlight/vorn512p/brightness", "backlight", R_OK | W_OK},
    {"/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux",
     "light sensor", R_OK},
    {"/sys/class/gpio/export", "GPIO lines", W_OK},
};

// What to do, said by the doctor itself.
const char* Advice(ROLU_STATUS status) {
  switch (status) {
    case ROLU_STATUS_VPM_NO_REPLY:
      return "; it may be off or busy, or the port may not be the MCU's";
    case ROLU_STATUS_VPM_OPEN_FAILED:
      return "; it is there, but cannot be used as a serial line";
    default:
      return "";
  }
}

// Shows the progress of the questions on a terminal. When `done` equals `total`, it clears the line.
void ShowProgress(unsigned done, unsigned total) {
  constexpr unsigned kWidth = 40;
  if (isatty(STDERR_FILENO) != 1) return;
  const unsigned filled = kWidth * done / total;
  fmt::print(stderr, "\r\033[K");
  if (done < total) {
    fmt::print(stderr, "asking the MCU [{:#>{}}{:.>{}}] {}/{}", "", filled, "", kWidth - filled, done, total);
  }
  std::fflush(stderr);
}

// How fast the MCU answers.
struct Latency {
  std::vector<double> answers_ms;  // sorted, the shortest first
  std::size_t lost = 0;

  std::size_t asked() const { return answers_ms.size() + lost; }

  // The time within which `percent` per cent of the answers came (nearest rank); 0 gives the shortest time.
  // There must be at least one answer.
  double Percentile(unsigned percent) const {
    const std::size_t rank = (answers_ms.size() * percent + 99) / 100;
    return answers_ms[std::max<std::size_t>(rank, 1) - 1];
  }
};

// Asks the MCU for its platform's name again and again. Gives up after two lost answers in a row.
Latency MeasureLatency() {
  Latency latency;
  unsigned lost_in_a_row = 0;
  for (unsigned asked = 0; asked < kQuestions && lost_in_a_row < 2; ++asked) {
    ShowProgress(asked, kQuestions);
    if (interrupt::Signal() != 0) break;
    std::array<char, 16> name{};
    const auto start = std::chrono::steady_clock::now();
    if (KAVO_ROLU_VPM_GetPlatformName(name.data()) == ROLU_STATUS_SUCCESS) {
      latency.answers_ms.push_back(
          std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
      lost_in_a_row = 0;
    } else {
      ++latency.lost;
      ++lost_in_a_row;
    }
  }
  ShowProgress(kQuestions, kQuestions);
  interrupt::ThrowIfRequested();
  std::sort(latency.answers_ms.begin(), latency.answers_ms.end());
  return latency;
}

class Examination {
 public:
  explicit Examination(const CommonOptions& common) : common_(common), session_(common) {}

  ExitStatus Run() {
    if (PortIsThere() && PortIsFree() && McuAnswers()) {
      AskForLatency();
      AskEverything();
    }
    session_.Close();
    LookForDevices();
    return Conclude();
  }

 private:
  void Add(std::string subject, Finding finding, std::string text) {
    if (!common_.json) {
      const bool colour = MayColour(STDOUT_FILENO);
      OutNow(fmt::format("{}{}{}  {:<22}  {}\n", colour ? finding.colour : "", finding.mark,
                         colour ? "\033[0m" : "", subject, text));
    }
    checks_.push_back({std::move(subject), finding, std::move(text)});
  }

  // The first bad finding decides the exit status: the checks run in the order of gravity.
  void AddBad(std::string subject, std::string text, ExitStatus status) {
    Add(std::move(subject), kBad, std::move(text));
    if (status_ == kDone) status_ = status;
  }

  bool PortIsThere() {
    struct stat port {};
    if (stat(kMcuPort, &port) != 0) {
      AddBad("MCU port", fmt::format("{}: {}", kMcuPort, ErrnoText(errno)), kNoAnswer);
    } else if (!S_ISCHR(port.st_mode)) {
      AddBad("MCU port", fmt::format("{} is not a character device", kMcuPort), kNoAnswer);
    } else if (access(kMcuPort, R_OK | W_OK) != 0) {
      AddBad("MCU port", fmt::format("{}: {}; root may open it", kMcuPort, ErrnoText(errno)), kNoAnswer);
    } else {
      Add("MCU port", kGood, fmt::format("{} is there", kMcuPort));
      return true;
    }
    return false;
  }

  bool PortIsFree() {
    const PortSearch search = FindPortOwner();
    if (!search.owner.empty()) {
      AddBad("MCU port's owner", "in use by " + search.owner, kBusy);
      return common_.force;
    }
    if (search.hidden_processes > 0) {
      Add("MCU port's owner", kNote,
          fmt::format("none was found, but {} processes belong to other users; only root can look at them",
                      search.hidden_processes));
    } else {
      Add("MCU port's owner", kGood, "no other process uses it");
    }
    return true;
  }

  bool McuAnswers() {
    const ROLU_STATUS status = session_.Use(Family::kVpm);
    if (status != ROLU_STATUS_SUCCESS) {
      AddBad("MCU", Describe(status) + Advice(status), WordsOf(status).exit_status);
      return false;
    }
    Value firmware;
    if (session_.Read(SettingNamed("mcu.firmware"), firmware) == ROLU_STATUS_SUCCESS)
      firmware_ = firmware.get<std::string>();
    Add("MCU", kGood, "answers; firmware " + firmware_);
    return true;
  }

  void AskForLatency() {
    latency_ = MeasureLatency();
    const std::size_t answered = latency_.answers_ms.size();
    if (answered == 0) {
      AddBad("MCU's answers", "none came", kNoAnswer);
      return;
    }
    const std::string text = fmt::format(
        "{} of {}: minimum {:.1f} ms, median {:.1f} ms, 99th percentile {:.1f} ms", answered,
        latency_.asked(), latency_.Percentile(0), latency_.Percentile(50), latency_.Percentile(99));
    if (latency_.lost == 0) {
      Add("MCU's answers", kGood, text);
    } else {
      AddBad("MCU's answers", text + "; some were lost", kPartlyDone);
    }
  }

  // Asks for everything that the MCU tells without being changed: not the G-sensor, which would be switched
  // on, nor the peripherals.
  void AskEverything() {
    unsigned asked = 0;
    std::string unanswered;
    for (const Setting& setting : Settings()) {
      const bool is_asked = setting.family == Family::kVpm || setting.family == Family::kWatchdog;
      // The latency was measured with this question.
      if (!is_asked || setting.name == "mcu.platform") continue;
      interrupt::ThrowIfRequested();
      ++asked;
      Value value;
      const ROLU_STATUS status = session_.Read(setting, value);
      if (status == ROLU_STATUS_SUCCESS) continue;
      if (session_.McuIsSilent()) {
        return AddBad("MCU's settings", fmt::format("the MCU fell silent at {}", setting.name), kNoAnswer);
      }
      unanswered += fmt::format("{}{}: {}", unanswered.empty() ? "" : "; ", setting.name,
                                WordsOf(status, Act::kRead).words);
    }
    if (unanswered.empty()) {
      Add("MCU's settings", kGood, fmt::format("all {} can be read", asked));
    } else {
      AddBad("MCU's settings", unanswered, kPartlyDone);
    }
  }

  void LookForDevices() {
    for (const DeviceFile& device : kDeviceFiles) {
      if (access(device.path, device.access) == 0) {
        Add(device.subject, kGood, fmt::format("{} is there", device.path));
      } else {
        AddBad(device.subject, fmt::format("{}: {}", device.path, ErrnoText(errno)), kPartlyDone);
      }
    }
    // A line's files appear when a program prepares the line.
    for (const DigitalLine& line :
         {kInputLines[0], kInputLines[1], kOutputLines[0], kOutputLines[1], kGpsPowerLine}) {
      const bool is_there = access(line.ValueFile().c_str(), F_OK) == 0;
      Add(fmt::format("{}{} ({})", line.pin == kGpsPowerLine.pin ? "" : "digital ", line.pin, line.line),
          is_there ? kGood : kNote, is_there ? "prepared" : "not prepared yet");
    }
  }

  std::string Verdict() const {
    switch (status_) {
      case kDone:
        return "the unit is in order";
      case kBusy:
        return "another process uses the MCU's port; end that process, or go on with --force";
      case kPartlyDone:
        return "the MCU answers, but not all is in order";
      default:
        return "the MCU cannot be used";
    }
  }

  ExitStatus Conclude() const {
    if (common_.json) {
      PrintJson(AsJson());
    } else {
      Out(fmt::format("Verdict: {}.\n", Verdict()));
    }
    return status_;
  }

  Document AsJson() const {
    Document checks = Document::array();
    for (const Check& check : checks_) {
      checks.push_back({{"subject", check.subject}, {"finding", check.finding.word}, {"text", check.text}});
    }
    Document document = {
        {"in_order", status_ == kDone}, {"verdict", Verdict()}, {"checks", std::move(checks)}};
    if (!firmware_.empty()) document["firmware"] = firmware_;
    if (!latency_.answers_ms.empty()) {
      document["latency"] = {{"asked", latency_.asked()},
                             {"answered", latency_.answers_ms.size()},
                             {"minimum_ms", latency_.Percentile(0)},
                             {"median_ms", latency_.Percentile(50)},
                             {"p99_ms", latency_.Percentile(99)}};
    }
    return document;
  }

  const CommonOptions& common_;
  Session session_;
  std::vector<Check> checks_;
  Latency latency_;
  std::string firmware_;
  ExitStatus status_ = kDone;
};

}  // namespace

void AddDoctorCommand(CLI::App& app, Invocation& invocation) {
  auto calibrate = std::make_shared<bool>(false);
  CLI::App* const command = NewCommand(
      app, "doctor", "Find out what is wrong: port, MCU, device files; ends with a verdict",
      "  rolu doctor\n  rolu doctor --json\n  rolu doctor --calibrate --timeout 10min\n"
      "Exit status: 0 all in order, 1 something is missing or refused, 4 no MCU, 5 its port is in use.");
  command->add_flag(
      "--calibrate", *calibrate,
      "Measure how long an MCU unit is instead: have the ignition turned off and on; asks first");
  OnRun(
      command, invocation,
      [](bool calibrates, const CommonOptions& common) {
        return calibrates ? CalibrateMcuUnit(common) : Examination(common).Run();
      },
      calibrate);
}

}  // namespace rolu
