#include "soak/callers.h"

#include <fmt/format.h>

#include <algorithm>

#include "simulator/desk/trace.h"
#include "soak/judgement.h"

namespace rolu_soak {
namespace {

using std::chrono::milliseconds;

// Eight calls on a dead port, with a start-up among them, take less.
constexpr std::chrono::seconds kPatience{120};

// One draw in so many is taken: calls that make the others wait long are rare.
std::uint32_t OneIn(const Promise& promise) {
  return promise.own_ms == kNoLimit ? 20 : 1 + static_cast<std::uint32_t>(promise.own_ms % 1000) / 10;
}

}  // namespace

Callers::Callers(std::uint32_t seed, AnsweringMcu& mcu, CallBook& book, Findings& violations,
                 Findings& excuses)
    : mcu_(mcu), book_(book), violations_(violations), excuses_(excuses) {
  gate_.Open(0);
  for (std::uint32_t lane = 0; lane < kLanes; ++lane) {
    threads_.emplace_back([this, lane, seed] { Run(lane, seed * 100 + lane); });
  }
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

void Callers::Run(std::size_t lane, std::uint32_t seed) {
  Dice dice(seed);
  std::vector<const Operation*> operations;
  for (const Operation& operation : Operations()) {
    if (operation.lane == lane && !operation.switches_family) operations.push_back(&operation);
  }
  // The family that the thread leads; kFamilies for none.
  const std::size_t led = static_cast<std::size_t>(
      std::ranges::find_if(Families(),
                           [lane](const auto& family) { return family.initialize.lane == lane; }) -
      Families().begin());
  while (!ending_) {
    const std::lock_guard<Gate> inside(gate_);
    if (ending_) break;
    if (led != kFamilies && !families_stay_ && dice.Below(families_.at(led).is_up ? 150 : 10) == 0) {
      TurnOffAndOn(dice, led);
    } else {
      CallAny(dice, operations);
    }
  }
}

void Callers::CallAny(Dice& dice, const std::vector<const Operation*>& operations) {
  const Operation& operation = *operations.at(dice.Below(operations.size()));
  if (dice.Below(OneIn(operation.promise)) != 0) return;
  {
    const std::lock_guard<Gate> inside(families_.at(operation.family).gate);
    Call(operation, false);
  }
  // The line must also be quiet now and then.
  if (dice.Below(4) == 0) std::this_thread::sleep_for(std::chrono::microseconds(dice.Below(20000)));
}

// In between, the other threads find the family down.
void Callers::TurnOffAndOn(Dice& dice, std::size_t number) {
  Gate& gate = families_.at(number).gate;
  if (!Empty(gate)) return;
  TakeDown(number, false);
  gate.Open();
  std::this_thread::sleep_for(milliseconds(dice.Below(30)));
  if (!Empty(gate)) return;
  BringUp(number, false);
  gate.Open();
}

void Callers::Call(const Operation& operation, bool alone) {
  Family& family = families_.at(operation.family);
  const std::uint64_t changes_before = port_changes_;
  CallFacts facts;
  facts.row = operation.row;
  facts.family_was_up = family.is_up || operation.row->brings_up || !operation.has_state;

  const ProcessorWaits waits_before = MeasureProcessorWaits();
  const std::string uncalled = mcu_.BeginCall(operation.lane);
  book_.Begin(operation.lane, operation);
  facts.status = operation.row->call(facts.output.data());
  const CallBook::Duration duration = book_.End(operation.lane, facts.status, alone);
  facts.exchanges = mcu_.EndCall(operation.lane);

  facts.port_was_dead = changes_before % 2 == 1 || changes_before != port_changes_;
  facts.link_was_busy = duration.took >= milliseconds(kLinkMs);
  std::vector<Fault> faults = {FaultIn(facts), duration.fault};
  if (!uncalled.empty()) {
    faults.push_back({fmt::format("before it the MCU got \"{}\" when its call had ended", uncalled)});
  }
  std::erase_if(faults, [](const Fault& fault) { return fault.text.empty(); });
  if (!faults.empty()) Report(operation, faults, waits_before);
  const bool has_switched = operation.switches_family && facts.status == ROLU_STATUS_SUCCESS;
  if (has_switched) family.is_up = operation.row->brings_up;
}

// On a machine that gives the threads no processor calls miss their times, whatever the library does.
void Callers::Report(const Operation& operation, const std::vector<Fault>& faults,
                     const ProcessorWaits& before) {
  const auto waited_since = [&before] { return LongestWait(before, MeasureProcessorWaits()); };
  const auto waited = waited_since();
  std::string excused;
  for (const Fault& fault : faults) {
    bool is_explained = waited >= fault.explained_by;
    // The kernel counts a wait when it is over, and the thread that did not answer may still be waiting.
    if (!is_explained && fault.explained_by == kStarved) {
      std::this_thread::sleep_for(kStarved);
      is_explained = waited_since() >= kStarved;
    }
    // The text may hold any bytes of the wire.
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
