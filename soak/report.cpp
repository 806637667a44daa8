#include <fmt/format.h>

#include "soak/judgement.h"
#include "soak/soak.h"

namespace rolu_soak {
namespace {

using std::chrono::duration_cast;

// The longest of `of_calls` calls in milliseconds; "-" if there are none.
std::string Longest(std::chrono::duration<double, std::milli> longest, std::uint64_t of_calls) {
  return of_calls == 0 ? "-" : fmt::format("{:.1f}", longest.count());
}

std::string Listed(const Findings& findings) {
  std::string text;
  for (const std::string& finding : findings.Kept()) text += fmt::format("  {}\n", finding);
  return text;
}

}  // namespace

std::string Soak::Endings() const {
  std::string text = fmt::format("{:<16}{:<32}{:>10}\n", "family", "ended with", "calls");
  for (const auto& [key, calls] : book_.endings()) {
    const std::string& initialize = Families().at(key.first).initialize.name;
    text += fmt::format("{:<16}{:<32}{:>10}\n", initialize.substr(0, initialize.find('_')),
                        StatusText(key.second), calls);
  }
  return text;
}

std::string Soak::Durations() const {
  const auto row = [](auto... cells) {
    return fmt::format("{:<56}{:>11}{:>8}{:>10}{:>9}{:>10}{:>11}\n", cells...);
  };
  std::string text =
      row("kind of call, by what it promises", "promise ms", "alone", "ms", "beside", "ms", "with turns");
  for (const auto& [statement, figures] : book_.durations()) {
    if (figures.calls == 0) continue;
    const std::uint64_t calls_beside = figures.calls - figures.calls_alone;
    text += row(statement, figures.own_ms == kNoLimit ? "no limit" : fmt::format("{}", figures.own_ms),
                figures.calls_alone, Longest(figures.longest_alone, figures.calls_alone), calls_beside,
                Longest(figures.longest_less_others, calls_beside),
                Longest(figures.longest_beside, calls_beside));
  }
  return text +
         fmt::format(
             "The longest calls that ran alone, and the longest beside others: without the time that others "
             "had the\nline, if they take turns, and with it. A call may take {} ms "
             "more than it promises alone, and {} ms beside\nothers.\n",
             kSlackAlone.count(), kSlackBeside.count());
}

std::string Soak::Faults() const {
  return fmt::format(
      "{} commands: {} delayed, {} lost, {} answered too late ({} of those answers sent), {} refused, "
      "{} garbled, {} shortened, {} too long\n",
      mcu_.commands(), mcu_.strikes(Strike::kDelay), mcu_.strikes(Strike::kSilence),
      mcu_.strikes(Strike::kLate), mcu_.late_answers_sent(), mcu_.strikes(Strike::kError),
      mcu_.strikes(Strike::kGarble), mcu_.strikes(Strike::kDrop), mcu_.strikes(Strike::kLongLine));
}

std::string Soak::Held() const {
  if (!first_usage_) return "the process was not measured\n";
  std::string text = fmt::format("{:<32}{:>14}{:>14}{:>14}\n", "held while all is down", "first rest",
                                 "last rest", "may grow by");
  const auto row = [&](const char* what, std::size_t ProcessUsage::*held, std::size_t unit) {
    text += fmt::format("{:<32}{:>14}{:>14}{:>14}\n", what, (*first_usage_).*held / unit,
                        last_usage_.*held / unit, TolerableGrowth().*held / unit);
  };
  row("descriptors", &ProcessUsage::descriptors, 1);
  row("threads", &ProcessUsage::threads, 1);
  row("heap, bytes", &ProcessUsage::heap_bytes, 1);
  row("resident memory, KiB", &ProcessUsage::resident_bytes, 1024);
  return text;
}

std::string Soak::Verdict() const {
  const std::string excuses = fmt::format(
      "{} calls excused, since a thread waited for a processor meanwhile: {} ms for a missed answer, as "
      "long\nas the excess for an exceeded time; at most {} calls may be excused\n{}",
      excuses_.count(), kStarved.count(), ExcusableCalls(book_.calls()), Listed(excuses_));
  if (violations_.count() == 0) return excuses + "no violation\n";
  return fmt::format("{}{} violations, the first of them:\n{}", excuses, violations_.count(),
                     Listed(violations_));
}

std::string Soak::Report() const {
  return fmt::format(
      "seed {}, {} s, {} calls, {} openings of families, {} hang-ups, {} unsolicited messages, "
      "{} signals sent ({} handled)\n{}\n{}\n{}\n{}\n{}",
      options_.seed, duration_cast<std::chrono::seconds>(elapsed()).count(), book_.calls(),
      callers_.openings(), hang_ups_, disturbances_.messages(), disturbances_.signals_sent(),
      Disturbances::signals_handled(), Faults(), Endings(), Durations(), Held(), Verdict());
}

}  // namespace rolu_soak
