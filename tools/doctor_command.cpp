#include <errno.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/port_owner.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr unsigned kQuestions = 50;

enum class Finding { kGood, kNote, kBad };

struct Check {
  std::string subject;
  Finding finding = Finding::kGood;
  std::string text;
};

struct DeviceFile {
  const char* path;
  const char* subject;
  int access;  // what the library needs of it
};

constexpr DeviceFile kDeviceFiles[] = {
    {"/dev/i2c-3", "I2C bus (reset, i2c)", R_OK | W_OK},
    {"/sys/devices/omapdss/display0/backlight/vorn512p/brightness", "backlight", R_OK | W_OK},
    {"/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux",
     "light sensor", R_OK},
    {"/sys/class/gpio/export", "GPIO lines", W_OK},
};

// Lines are there once a program has prepared them.
constexpr DeviceFile kLines[] = {
    {"/sys/class/gpio/gpio37/value", "digital input 1", F_OK},
    {"/sys/class/gpio/gpio36/value", "digital input 2", F_OK},
    {"/sys/class/gpio/gpio35/value", "digital output 1", F_OK},
    {"/sys/class/gpio/gpio34/value", "digital output 2", F_OK},
    {"/sys/class/gpio/gpio45/value", "GPS power", F_OK},
};

constexpr std::size_t kLossesToGiveUp = 2;

class ProgressBar {
 public:
  explicit ProgressBar(unsigned total) : total_(total), visible_(isatty(STDERR_FILENO) == 1) {}
  ~ProgressBar() {
    if (visible_) fmt::print(stderr, "\r\033[K");
  }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(unsigned done) const {
    constexpr unsigned kWidth = 40;
    if (!visible_) return;
    const unsigned filled = kWidth * done / total_;
    fmt::print(stderr, "\rasking the MCU [{:#>{}}{:.>{}}] {}/{}", "", filled, "", kWidth - filled, done,
               total_);
    std::fflush(stderr);
  }

 private:
  unsigned total_;
  bool visible_;
};

// How fast the MCU answers.
class Latency {
 public:
  void AddAnswer(std::chrono::microseconds time) { times_.push_back(time); }
  void AddLoss() { ++lost_; }

  std::size_t answered() const { return times_.size(); }
  std::size_t lost() const { return lost_; }

  // The time within which `percent` per cent of the answers came (nearest rank); 0 is the shortest. There
  // must be answers.
  double Milliseconds(unsigned percent) const {
    std::vector<std::chrono::microseconds> sorted = times_;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t rank = (sorted.size() * percent + 99) / 100;
    return static_cast<double>(sorted[std::max<std::size_t>(rank, 1) - 1].count()) / 1000.0;
  }

 private:
  std::vector<std::chrono::microseconds> times_;
  std::size_t lost_ = 0;
};

// Asks the MCU `questions` times for its platform's name. Gives up after some losses in a row.
Latency MeasureLatency(unsigned questions) {
  using Clock = std::chrono::steady_clock;
  const ProgressBar progress(questions);
  Latency latency;
  std::size_t lost_in_a_row = 0;
  for (unsigned asked = 0; asked < questions && lost_in_a_row < kLossesToGiveUp; ++asked) {
    interrupt::ThrowIfRequested();
    progress.Show(asked);
    std::array<char, 16> name{};
    const Clock::time_point start = Clock::now();
    const ROLU_STATUS status = KAVO_ROLU_VPM_GetPlatformName(name.data());
    if (status == ROLU_STATUS_SUCCESS) {
      latency.AddAnswer(std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start));
      lost_in_a_row = 0;
    } else {
      latency.AddLoss();
      ++lost_in_a_row;
    }
  }
  return latency;
}

class Examination {
 public:
  explicit Examination(const CommonOptions& common) : common_(common), session_(common) {}

  ExitStatus Run() {
    if (PortIsThere() && PortIsFree() && McuAnswers()) AskForLatency();
    session_.Close();
    LookForDevices();
    return Conclude();
  }

 private:
  void Add(std::string subject, Finding finding, std::string text) {
    if (!common_.json) PrintCheck(subject, finding, text);
    checks_.push_back({std::move(subject), finding, std::move(text)});
  }

  // The gravest status of those that were found; the order of finding is that of gravity.
  void AddBad(std::string subject, std::string text, ExitStatus status) {
    Add(std::move(subject), Finding::kBad, std::move(text));
    if (status_ == kDone) status_ = status;
  }

  static void PrintCheck(const std::string& subject, Finding finding, const std::string& text) {
    const bool colour = MayColour(STDOUT_FILENO);
    const char* const mark = finding == Finding::kGood ? "ok  " : finding == Finding::kNote ? "note" : "BAD ";
    const char* const paint = finding == Finding::kGood   ? "\033[32m"
                              : finding == Finding::kNote ? "\033[33m"
                                                          : "\033[31m";
    OutNow(fmt::format("{}{}{}  {:<22}  {}\n", colour ? paint : "", mark, colour ? "\033[0m" : "", subject,
                       text));
  }

  bool PortIsThere() {
    struct stat port {};
    if (stat(kMcuPort, &port) != 0) {
      AddBad("MCU port", fmt::format("{}: {}", kMcuPort, ErrnoText(errno)), kNoAnswer);
    } else if (!S_ISCHR(port.st_mode)) {
      AddBad("MCU port", fmt::format("{} is no character device", kMcuPort), kNoAnswer);
    } else {
      Add("MCU port", Finding::kGood, fmt::format("{} is there", kMcuPort));
      return true;
    }
    return false;
  }

  bool PortIsFree() {
    const PortSearch search = FindPortOwner();
    if (search.owner) {
      AddBad("MCU port's owner", fmt::format("in use by {}", OwnerText(*search.owner)), kBusy);
      return common_.force;
    }
    if (search.hidden_processes > 0) {
      Add("MCU port's owner", Finding::kNote,
          fmt::format("none seen, but {} processes of others could not be looked at; root can",
                      search.hidden_processes));
    } else {
      Add("MCU port's owner", Finding::kGood, "no other process uses it");
    }
    return true;
  }

  bool McuAnswers() {
    const ROLU_STATUS status = session_.Use(Family::kVpm);
    if (status != ROLU_STATUS_SUCCESS) {
      AddBad("MCU", DescribeWithHint(status), WordsOf(status).exit_status);
      return false;
    }
    VPM_FIRMWARE_INFO firmware{};
    KAVO_ROLU_VPM_GetFWVersion(&firmware);
    firmware_ = std::string(firmware.text, strnlen(firmware.text, sizeof firmware.text));
    Add("MCU", Finding::kGood, "answers; firmware " + firmware_);
    return true;
  }

  void AskForLatency() {
    latency_ = MeasureLatency(kQuestions);
    if (latency_->answered() == 0) {
      AddBad("MCU's answers", "none came", kNoAnswer);
      return;
    }
    const std::string text =
        fmt::format("{} of {}: minimum {:.1f} ms, median {:.1f} ms, 99th percentile {:.1f} ms",
                    latency_->answered(), latency_->answered() + latency_->lost(), latency_->Milliseconds(0),
                    latency_->Milliseconds(50), latency_->Milliseconds(99));
    if (latency_->lost() == 0) {
      Add("MCU's answers", Finding::kGood, text);
    } else {
      AddBad("MCU's answers", text + "; some were lost", kPartlyDone);
    }
  }

  void LookForDevices() {
    for (const DeviceFile& device : kDeviceFiles) {
      if (access(device.path, device.access) == 0) {
        Add(device.subject, Finding::kGood, fmt::format("{} is there", device.path));
      } else {
        AddBad(device.subject, fmt::format("{}: {}", device.path, ErrnoText(errno)), kPartlyDone);
      }
    }
    for (const DeviceFile& line : kLines) {
      const bool is_there = access(line.path, line.access) == 0;
      Add(line.subject, is_there ? Finding::kGood : Finding::kNote,
          is_there ? "prepared" : "not prepared yet");
    }
  }

  std::string Verdict() const {
    switch (status_) {
      case kDone:
        return "the unit is in order";
      case kBusy:
        return "another process owns the MCU; end it, or look past it with --force";
      case kPartlyDone:
        return "the MCU answers, but something is missing";
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
    constexpr const char* kFindings[] = {"good", "note", "bad"};
    Document checks = Document::array();
    for (const Check& check : checks_) {
      checks.push_back({{"subject", check.subject},
                        {"finding", kFindings[static_cast<std::size_t>(check.finding)]},
                        {"text", check.text}});
    }
    Document document = {
        {"in_order", status_ == kDone}, {"verdict", Verdict()}, {"checks", std::move(checks)}};
    if (!firmware_.empty()) document["firmware"] = firmware_;
    if (latency_ && latency_->answered() > 0) {
      document["latency"] = {{"asked", latency_->answered() + latency_->lost()},
                             {"answered", latency_->answered()},
                             {"minimum_ms", latency_->Milliseconds(0)},
                             {"median_ms", latency_->Milliseconds(50)},
                             {"p99_ms", latency_->Milliseconds(99)}};
    }
    return document;
  }

  const CommonOptions& common_;
  Session session_;
  std::vector<Check> checks_;
  std::optional<Latency> latency_;
  std::string firmware_;
  ExitStatus status_ = kDone;
};

}  // namespace

void AddDoctorCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const command =
      NewCommand(app, "doctor", "Find out what is wrong: port, MCU, device files; ends with a verdict",
                 "  rolu doctor\n  rolu doctor --json\n"
                 "Exit status: 0 all in order, 1 something is missing, 4 no MCU, 5 its port is in use.");
  OnRun(command, invocation, [](const CommonOptions& common) { return Examination(common).Run(); });
}

}  // namespace rolu
