#include "soak/report.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "soak/judgement.h"
#include "soak/process_usage.h"

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

// The longest of some calls, which may be none.
std::string Longest(microseconds longest, std::uint64_t of_calls) {
  return of_calls == 0 ? "-" : fmt::format("{:.1f}", Milliseconds(longest));
}

std::string Durations(const CallBook& book) {
  const auto row = [](auto... cells) {
    return fmt::format("{:<56}{:>11}{:>8}{:>10}{:>9}{:>10}{:>11}\n", cells...);
  };
  std::string text =
      row("kind of call, by what it promises", "promise ms", "alone", "ms", "beside", "ms", "with turns");
  for (const auto& [statement, figures] : book.durations()) {
    if (figures.calls == 0) continue;
    const std::uint64_t calls_beside = figures.calls - figures.calls_alone;
    text += row(statement, figures.own_ms == kNoLimit ? "no limit" : fmt::format("{}", figures.own_ms),
                figures.calls_alone, Longest(figures.longest_alone, figures.calls_alone), calls_beside,
                Longest(figures.longest_less_others, calls_beside),
                Longest(figures.longest_beside, calls_beside));
  }
  return text +
         fmt::format(
             "Calls that ran alone and calls beside others, the longest of each; of the latter without "
             "the time that others\nhad the line, if they take turns, and with it. A call may take {} ms "
             "more than it promises alone, and {} ms beside\nothers.\n",
             kSlackAlone.count(), kSlackBeside.count());
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
  std::string text = fmt::format("{:<32}{:>14}{:>14}{:>14}\n", "held while all is down", "first rest",
                                 "last rest", "may grow by");
  const auto row = [&text](const char* what, std::size_t start, std::size_t end, std::size_t tolerance) {
    text += fmt::format("{:<32}{:>14}{:>14}{:>14}\n", what, start, end, tolerance);
  };
  row("descriptors", first.descriptors, last.descriptors, 0);
  row("threads", first.threads, last.threads, 0);
  row("heap, bytes", first.heap_bytes, last.heap_bytes, Soak::heap_tolerance());
  row("resident memory, KiB", first.resident_bytes / 1024, last.resident_bytes / 1024,
      Soak::resident_tolerance() / 1024);
  return text;
}

std::string Listed(const Findings& findings) {
  std::string text;
  for (const std::string& finding : findings.Kept()) text += fmt::format("  {}\n", finding);
  return text;
}

std::string Verdict(const Soak& soak) {
  const std::string excuses = fmt::format(
      "{} calls excused, since a thread waited for a processor meanwhile: {} ms for an answer that was "
      "missed, "
      "as long as\nthe excess for a time that was; at most {} may be\n{}",
      soak.excuses().count(), kStarved.count(), ExcusableCalls(soak.book().calls()), Listed(soak.excuses()));
  const Findings& violations = soak.violations();
  if (violations.count() == 0) return excuses + "no violation\n";
  return fmt::format("{}{} violations, the first of them:\n{}", excuses, violations.count(),
                     Listed(violations));
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
