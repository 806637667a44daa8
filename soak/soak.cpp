#include "soak/soak.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <thread>

#include "simulator/devices/board_paths.h"
#include "simulator/system/unique_fd.h"
#include "soak/judgement.h"
#include "tests/support/process_state.h"

namespace rolu_soak {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// What an open link adds: the port, the wake-up event and the I/O thread.
constexpr std::size_t kLinkDescriptors = 2;
constexpr std::size_t kLinkThreads = 1;

// A dead port holds each call for 3 s, one after another: a short run has time for one hang-up.
constexpr milliseconds kShortRun{30000};

rolu_sim::BoardOptions AnsweredBy(AnsweringMcu& mcu) {
  rolu_sim::BoardOptions options;
  options.serial.answer_route = [&mcu](std::string_view command, const rolu_sim::AskModel& ask_model) {
    return mcu.Answer(command, ask_model);
  };
  return options;
}

// The board logs what passed the wire and what was done with device files. A log that is emptied keeps the
// memory of its greatest length.
void FillLogs(rolu_sim::Board& board) {
  rolu_sim::WireLog& wire = board.mcu().Log();
  for (std::size_t i = 0; i < rolu_sim::WireLog::kCapacity; ++i) {
    wire.RecordChunk(rolu_sim::Direction::kToMcu, {}, {});
    wire.RecordLine(rolu_sim::Direction::kToMcu, {}, {});
  }
  // More than all threads do between two clearings of the log.
  constexpr int kOpenings = 2000;
  for (int i = 0; i < kOpenings; ++i) {
    const rolu_sim::UniqueFd file(open(rolu_sim::kLuxPath, O_RDONLY | O_CLOEXEC));
  }
}

// A call and the answers that make it last nearly as long as it may.
struct LongestCall {
  std::string_view operation;
  std::vector<PlannedAnswer> answers;
  milliseconds lasts;  // at least
};

const std::vector<LongestCall>& LongestCalls() {
  // An answer that is only just in time: a post-delay or another command may follow.
  constexpr milliseconds kInTime{2700};
  constexpr milliseconds kNever = AnsweringMcu::kNever;
  static const std::vector<LongestCall> calls = {
      {"WD_GetTime", {{"WDTG", kNever}}, milliseconds(3000)},
      {"VPM_SetLBPLowDelay", {{"MCUS0", kInTime}}, milliseconds(2750)},
      {"WD_Initialize", {{"Hello", kNever}}, milliseconds(3000)},
      {"VPM_GetCarBatteryVoltage 12V", {{"MCBG", kInTime}, {"MCVG", kNever}}, milliseconds(5700)},
      {"VPM_SetAlarmTime", {{"RTAS", kInTime}}, milliseconds(2850)},
      {"VPM_SetATMode", {{"MCAG", kInTime}, {"MCAS", kInTime}}, milliseconds(5450)},
      {"PERIPHERALCTRL_SetPeripheralControl", {{"MCS", kInTime}}, milliseconds(3200)},
      {"VPM_SetCurrentCarBatteryMode 12V", {{"MCCS", kInTime}, {"MCBS", kInTime}}, milliseconds(5500)},
      {"VPM_LoadDefaultValue", {{"EEDF", kInTime}}, milliseconds(3950)},
      {"GSENSOR_Deinitialize", {{"ARGI", kInTime}, {"GSF", kInTime}}, milliseconds(5400)},
      {"GSENSOR_Initialize", {{"Hello", kNever}, {"GSO", kNever}}, milliseconds(6000)},
      {"VPM_SetRTCTime", {{"RTCS", kInTime}}, milliseconds(2750)},
      {"VPM_Initialize",
       {{"Hello", kNever},
        {"ATF0", kInTime},
        {"MCVU2", kNever},
        {"MCVU3", kNever},
        {"MCPR3", kInTime},
        {"MCPR2", kNever}},
       milliseconds(17400)},
  };
  return calls;
}

}  // namespace

Soak::Soak(const SoakOptions& options)
    : options_(options),
      start_(steady_clock::now()),
      mcu_(options.seed, violations_),
      board_(AnsweredBy(mcu_)),
      callers_((board_.AttachThisProcess(), options.seed), mcu_, book_, violations_, excuses_),
      disturbances_(board_.mcu(), callers_.Threads(), options.seed) {}

milliseconds Soak::elapsed() const {
  return duration_cast<milliseconds>(steady_clock::now() - start_);
}

bool Soak::Run() {
  // Measured before any device file is opened, since the board's end of it closes a moment later.
  before_ = MeasureProcess();
  PrepareJudgement();
  FillLogs(board_);
  ClearLogs();
  const milliseconds period = std::clamp(options_.time / 20, milliseconds(2000), milliseconds(20000));
  const auto work = [&] { WorkFor(std::clamp(options_.time - elapsed(), milliseconds(0), period)); };
  SwitchAll(true);
  do {
    work();
    if (!Rest()) return false;
    work();
    if (hang_ups_ * 3 < driven_ && !HangUpAndReplug()) return false;
  } while (elapsed() < options_.time);
  if (!Rest()) return false;
  SwitchAll(false);
  const std::uint64_t excusable = ExcusableCalls(book_.calls());
  if (excuses_.count() > excusable) {
    violations_.Add(
        fmt::format("{} calls were excused; {} of {} may be", excuses_.count(), excusable, book_.calls()));
  }
  return true;
}

void Soak::WorkFor(milliseconds time) {
  const SteadyTime end = steady_clock::now() + time;
  mcu_.SetFaults(true);
  callers_.Work();
  while (steady_clock::now() < end) {
    std::this_thread::sleep_for(
        std::min<steady_clock::duration>(end - steady_clock::now(), milliseconds(500)));
    ClearLogs();
    if (options_.show_progress) ShowProgress();
  }
}

void Soak::ClearLogs() {
  board_.mcu().Log().Clear();
  board_.devices().ClearAccesses();
}

void Soak::SwitchAll(bool on) {
  for (std::size_t family = 0; family < kFamilies; ++family) {
    on ? callers_.BringUp(family) : callers_.TakeDown(family);
  }
}

// Leaves the callers at rest and all families up.
bool Soak::Rest() {
  if (!callers_.Rest()) return false;
  mcu_.SetFaults(false);
  SwitchAll(true);
  ExpectHeld("while all families are up", kLinkDescriptors, kLinkThreads);
  DriveNextToTheLimit();
  SwitchAll(false);
  const std::unique_lock<std::mutex> pause = disturbances_.Pause();
  ClearLogs();
  last_usage_ = ExpectHeld("while all families are down", 0, 0);
  CompareMemory();
  SwitchAll(true);
  return true;
}

ProcessUsage Soak::ExpectHeld(const char* when, std::size_t more_descriptors, std::size_t more_threads) {
  const std::size_t descriptors = before_.descriptors + more_descriptors;
  const std::size_t threads = before_.threads + more_threads;
  ProcessUsage usage;
  // The board's end of a connection closes a moment after the library's.
  const bool is_held = WaitUntil([&] {
    usage = MeasureProcess();
    return usage.descriptors == descriptors && usage.threads == threads;
  });
  if (!is_held) {
    violations_.Add(fmt::format("{}: {} descriptors and {} threads, not {} and {}", when, usage.descriptors,
                                usage.threads, descriptors, threads));
  }
  return usage;
}

void Soak::CompareMemory() {
  if (!kMemoryIsMeasured) return;
  if (!first_usage_) first_usage_ = last_usage_;
  const auto compare = [this](const char* what, std::size_t ProcessUsage::*bytes) {
    if (last_usage_.*bytes <= (*first_usage_).*bytes + TolerableGrowth().*bytes) return;
    violations_.Add(
        fmt::format("{} grew from {} to {} bytes", what, (*first_usage_).*bytes, last_usage_.*bytes));
  };
  compare("the heap", &ProcessUsage::heap_bytes);
  compare("the resident memory", &ProcessUsage::resident_bytes);
}

// Makes the next call of the list, unless it would outlast the run.
void Soak::DriveNextToTheLimit() {
  const LongestCall& call = LongestCalls().at(driven_ % LongestCalls().size());
  ++driven_;
  if (elapsed() + call.lasts > options_.time) return;
  const Operation& operation = OperationOf(call.operation);
  if (operation.row->brings_up) callers_.TakeDown(operation.family);
  mcu_.Plan(call.answers);
  const std::size_t excused_before = excuses_.count();
  const SteadyTime start = steady_clock::now();
  callers_.Call(operation);
  const auto took = duration_cast<milliseconds>(steady_clock::now() - start);
  if (took < call.lasts && excuses_.count() == excused_before) {
    violations_.Add(fmt::format("{} took {} ms alone; its answers make it last {} ms", operation.name,
                                took.count(), call.lasts.count()));
  }
  mcu_.Plan({});
  SwitchAll(true);
}

// The G-sensor's family is down meanwhile: it goes down only when the MCU agrees, and a dead port brings no
// answer.
bool Soak::HangUpAndReplug() {
  if (!callers_.Rest()) return false;
  mcu_.SetFaults(false);
  SwitchAll(true);
  callers_.TakeDown(kSensor);
  callers_.FamiliesStay(true);
  callers_.Work(options_.time < kShortRun ? 1 : Gate::kAll);
  std::this_thread::sleep_for(milliseconds(30));

  callers_.PortIsDead(true);
  board_.RemoveSerialDevice();
  board_.mcu().HangUp();
  ++hang_ups_;
  std::this_thread::sleep_for(milliseconds(30));
  if (!callers_.Rest()) return false;
  SwitchAll(false);
  mcu_.ForgetLateAnswer();
  board_.ReplugSerialPort();
  ExpectHeld("after a hang-up", 0, 0);
  callers_.PortIsDead(false);
  callers_.FamiliesStay(false);
  SwitchAll(true);
  return true;
}

void Soak::ShowProgress() const {
  const auto seconds = [](milliseconds time) { return duration_cast<std::chrono::seconds>(time).count(); };
  fmt::print(stderr, "\r{:5} of {} s  {} calls  {} hang-ups  {} violations ", seconds(elapsed()),
             seconds(options_.time), book_.calls(), hang_ups_, violations_.count());
  std::fflush(stderr);
}

}  // namespace rolu_soak
