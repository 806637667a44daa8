#include "soak/callers.h"

#include <fmt/format.h>

#include <algorithm>

#include "simulator/desk/trace.h"
#include "soak/judgement.h"

namespace rolu_soak {
namespace {

using std::chrono::milliseconds;

// Eight calls, each of which finds its port dead, and a start-up among them, take less.
constexpr std::chrono::seconds kPatience{120};

bool IsStartUp(const Operation& operation) {
  return &operation == &Families().at(operation.family).initialize;
}

// Of so many draws one is taken: what makes the others wait long, seldom.
std::uint32_t OneIn(const Promise& promise) {
  return promise.own_ms == kNoLimit ? 20 : 1 + static_cast<std::uint32_t>(promise.own_ms % 1000) / 10;
}

// The family that a lane leads; kFamilies for none.
std::size_t LedBy(std::size_t lane) {
  std::size_t family = 0;
  while (family < kFamilies && Families().at(family).lane != lane) ++family;
  return family;
}

std::vector<const Operation*> OperationsOf(std::size_t lane) {
  std::vector<const Operation*> operations;
  for (const Operation& operation : Operations()) {
    if (operation.lane == lane) operations.push_back(&operation);
  }
  return operations;
}

}  // namespace

Callers::Callers(const Lanes& lanes, CallBook& book, Findings& violations, Findings& excuses)
    : lanes_(lanes), book_(book), violations_(violations), excuses_(excuses) {
  gate_.Open(0);
  for (std::size_t lane = 0; lane < kLanes; ++lane) threads_.emplace_back([this, lane] { Run(lane); });
}

Callers::~Callers() {
  ending_ = true;
  gate_.Open();
  for (std::thread& thread : threads_) thread.join();
}

std::vector<pthread_t> Callers::Threads() {
  std::vector<pthread_t> handles;
  for (std::thread& thread : threads_) handles.push_back(thread.native_handle());
  return handles;
}

bool Callers::Rest() {
  return Empty(gate_);
}

bool Callers::Empty(Gate& gate) {
  const bool all_out = gate.Close(kPatience);
  if (!all_out) violations_.Add("calls that do not return: " + book_.Unfinished());
  return all_out;
}

void Callers::PortIsDead(bool dead) {
  if (dead != (port_changes_ % 2 == 1)) ++port_changes_;
}

void Callers::Run(std::size_t number) {
  Lane& lane = *lanes_.at(number);
  const std::vector<const Operation*> operations = OperationsOf(number);
  const std::size_t led = LedBy(number);
  while (!ending_) {
    const Inside inside(gate_);
    if (ending_) break;
    if (led != kFamilies && !families_stay_ && lane.Draw(families_.at(led).is_up ? 150 : 10) == 0) {
      TurnOffAndOn(led);
    } else {
      CallAny(lane, operations);
    }
  }
}

void Callers::CallAny(Lane& lane, const std::vector<const Operation*>& operations) {
  const Operation& operation = *operations.at(lane.Draw(static_cast<std::uint32_t>(operations.size())));
  if (lane.Draw(OneIn(operation.promise)) != 0) return;
  {
    const Inside family(families_.at(operation.family).gate);
    Call(operation, false);
  }
  // A line that is always busy is only one of the cases.
  if (lane.Draw(4) == 0) std::this_thread::sleep_for(std::chrono::microseconds(lane.Draw(20000)));
}

// In between the others find the family down.
void Callers::TurnOffAndOn(std::size_t number) {
  Gate& gate = families_.at(number).gate;
  if (!Empty(gate)) return;
  TakeDown(number, false);
  gate.Open();
  std::this_thread::sleep_for(milliseconds(lanes_.at(Families().at(number).lane)->Draw(30)));
  if (!Empty(gate)) return;
  BringUp(number, false);
  gate.Open();
}

void Callers::Call(const Operation& operation, bool alone) {
  Lane& lane = *lanes_.at(operation.lane);
  Family& family = families_.at(operation.family);
  const std::uint64_t changes_before = port_changes_;
  CallFacts facts;
  facts.row = operation.row;
  facts.family_was_up = family.is_up || IsStartUp(operation) || !operation.has_state;

  const ProcessorWaits waits_before = MeasureProcessorWaits();
  const std::string uncalled = lane.TakeUncalled();
  lane.BeginCall();
  book_.Begin(operation.lane, operation);
  facts.status = operation.row->call(facts.output.data());
  const CallBook::Duration duration = book_.End(operation.lane, facts.status, alone);
  facts.exchanges = lane.EndCall();

  facts.port_was_dead = changes_before % 2 == 1 || changes_before != port_changes_;
  facts.link_was_busy = duration.took >= milliseconds(kLinkMs);
  Fault uncalled_fault;
  if (!uncalled.empty()) {
    uncalled_fault.text = fmt::format("before it the MCU got \"{}\" when its call had ended", uncalled);
  }
  Report(operation, {FaultIn(facts), duration.fault, uncalled_fault}, waits_before);
  if (facts.status != ROLU_STATUS_SUCCESS) return;
  if (IsStartUp(operation)) family.is_up = true;
  if (&operation == &Families().at(operation.family).deinitialize) family.is_up = false;
}

// On a machine that gives the threads no processor calls miss their times, whatever the library does.
void Callers::Report(const Operation& operation, const std::vector<Fault>& faults,
                     const ProcessorWaits& before) {
  const auto is_fault = [](const Fault& fault) { return !fault.text.empty(); };
  if (std::none_of(faults.begin(), faults.end(), is_fault)) return;
  const auto waited_since = [&before] { return LongestWait(before, MeasureProcessorWaits()); };
  const auto waited = waited_since();
  std::string excused;
  for (const Fault& fault : faults) {
    if (!is_fault(fault)) continue;
    bool is_explained = waited >= fault.explained_by;
    // The kernel counts a wait when it is over, and whoever did not answer may be waiting still.
    if (!is_explained && fault.explained_by == kStarved) {
      std::this_thread::sleep_for(kStarved);
      is_explained = waited_since() >= kStarved;
    }
    // It may hold any bytes of the wire.
    const std::string text = rolu_sim::Printable(
        fmt::format("{}: {}; the longest wait of a thread for a processor: {} ms", operation.name, fault.text,
                    std::chrono::duration_cast<milliseconds>(waited).count()));
    if (is_explained) {
      excused = text;
    } else {
      violations_.Add(text);
    }
  }
  if (!excused.empty()) excuses_.Add(excused);
}

void Callers::BringUp(std::size_t number, bool alone) {
  if (families_.at(number).is_up) return;
  Call(Families().at(number).initialize, alone);
  if (families_.at(number).is_up) ++openings_;
}

void Callers::TakeDown(std::size_t number, bool alone) {
  if (families_.at(number).is_up) Call(Families().at(number).deinitialize, alone);
}

}  // namespace rolu_soak
