#include "soak/report.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "soak/judgement.h"

namespace rolu_soak {
namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;

double Milliseconds(microseconds time) {
  return static_cast<double>(time.count()) / 1000.0;
}

std::string Endings(const CallBook& book) {
  std::string text = fmt::format("{:<16}{:<24}{:>10}\n", "family", "ended with", "calls");
  for (const auto& [key, calls] : book.endings()) {
    text += fmt::format("{:<16}{:<24}{:>10}\n", Families().at(key.first).name, StatusText(key.second), calls);
  }
  return text;
}

std::string Durations(const CallBook& book) {
  std::string text = fmt::format("{:<56}{:>9}{:>13}{:>13}{:>13}\n", "kind of call, by what it promises",
                                 "calls", "promise ms", "alone ms", "with turns");
  for (const auto& [statement, figures] : book.durations()) {
    const std::string promise = figures.own_ms == kNoLimit ? "no limit" : fmt::format("{}", figures.own_ms);
    text += fmt::format("{:<56}{:>9}{:>13}{:>13.1f}{:>13.1f}\n", statement, figures.calls, promise,
                        Milliseconds(figures.longest_alone), Milliseconds(figures.longest));
  }
  return text + fmt::format(
                    "The longest of each. On top of a promise come the commands of other threads, and {} ms "
                    "for the machine's scheduling.\n",
                    kSchedulingSlack.count());
}

std::string Faults(const AnsweringMcu& mcu) {
  return fmt::format(
      "{} commands: {} delayed, {} lost, {} answered too late ({} of those answers sent), {} refused, {} "
      "garbled, "
      "{} shortened, {} too long\n",
      mcu.commands(), mcu.strikes(Strike::kDelay), mcu.strikes(Strike::kSilence), mcu.strikes(Strike::kLate),
      mcu.late_answers_sent(), mcu.strikes(Strike::kError), mcu.strikes(Strike::kGarble),
      mcu.strikes(Strike::kDrop), mcu.strikes(Strike::kLongLine));
}

std::string Held(const Soak& soak) {
  if (!soak.first_usage()) return "the process was not measured\n";
  const ProcessUsage& first = *soak.first_usage();
  const ProcessUsage& last = soak.last_usage();
  std::string text = fmt::format("{:<32}{:>14}{:>14}\n", "held while all is down", "first rest", "last rest");
  const auto row = [&text](const char* what, std::size_t start, std::size_t end) {
    text += fmt::format("{:<32}{:>14}{:>14}\n", what, start, end);
  };
  row("descriptors", first.descriptors, last.descriptors);
  row("threads", first.threads, last.threads);
  row("heap, bytes", first.heap_bytes, last.heap_bytes);
  row("resident memory, KiB", first.resident_bytes / 1024, last.resident_bytes / 1024);
  return text;
}

std::string Verdict(const Soak& soak) {
  const Violations& violations = soak.violations();
  std::string starved;
  if (soak.starved_calls() > 0) {
    starved = fmt::format(
        "{} calls not judged: a thread of theirs, or of a call just before, waited {} ms or more for a "
        "processor\n",
        soak.starved_calls(), kStarved.count());
  }
  if (violations.count() == 0) return starved + "no violation\n";
  std::string text = starved + fmt::format("{} violations, the first of them:\n", violations.count());
  for (const std::string& violation : violations.Kept()) text += fmt::format("  {}\n", violation);
  return text;
}

}  // namespace

std::string Report(const Soak& soak) {
  return fmt::format(
      "seed {}, {} s, {} calls, {} openings of families, {} hang-ups, {} unsolicited messages, {} signals "
      "sent ({} "
      "handled)\n{}\n{}\n{}\n{}\n{}",
      soak.options().seed, duration_cast<std::chrono::seconds>(soak.elapsed()).count(), soak.book().calls(),
      soak.openings(), soak.hang_ups(), soak.disturbances().messages(), soak.disturbances().signals_sent(),
      Disturbances::SignalsHandled(), Faults(soak.mcu()), Endings(soak.book()), Durations(soak.book()),
      Held(soak), Verdict(soak));
}

std::string ListOfPromises() {
  std::string text;
  const auto add = [&text](const Operation& operation) {
    text += fmt::format("KAVO_ROLU_{} | {} | {}\n", operation.name, operation.promise.statement,
                        operation.promise.own_ms);
  };
  for (const FamilyCalls& family : Families()) {
    add(family.initialize);
    add(family.deinitialize);
  }
  for (const Operation& operation : Operations()) add(operation);
  return text;
}

}  // namespace rolu_soak
