#include "bench/report.h"

#include <cstdio>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace rolu_bench {
namespace {

using Figure = std::optional<double>;

// The limit of a query on a quiet line, in bare round trips.
constexpr double kQuietQueryFactor = 2.0;

// The limit of a query right after another one, in bare round trips after a poll: the line must have been
// quiet for one poll, which lasts as long as a select of 5 ms on this machine.
constexpr double kBusyQueryFactor = 1.5;

// A quiet line wakes no thread up.
constexpr double kIdleWakeupsPerSecond = 1.0;

// One wake-up for each 5 ms poll, and 2 % more for the edges of the measured time.
constexpr double kPollsPerSecond = 200.0 * 1.02;

constexpr double kHungUpProcessorPercent = 5.0;
constexpr double kLastCloseUs = 20000.0;

struct Row {
  std::string what;
  const char* unit;
  Figure measured;
  bool has_limit = false;
  Figure limit;  // missing when its reference was not measured
  std::string note;

  bool IsJudged() const { return has_limit && limit && measured; }
  bool IsOver() const { return IsJudged() && *measured > *limit; }
};

Row Reference(std::string what, const char* unit, Figure measured, std::string note = {}) {
  return {std::move(what), unit, measured, false, {}, std::move(note)};
}

Row Limited(std::string what, const char* unit, Figure measured, Figure limit, std::string note) {
  return {std::move(what), unit, measured, true, limit, std::move(note)};
}

std::string Fixed(double value, int decimals) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(decimals) << value;
  return text.str();
}

std::string Count(const Samples& samples) {
  return std::to_string(samples.count()) + " samples";
}

// The limit of a query is `offset_us` and `factor` bare round trips.
Row LimitedQuery(std::string what, const Samples& query, Figure bare, Figure offset_us, double factor) {
  const Figure measured = query.Percentile(50);
  std::string note = Count(query);
  if (!measured || !bare || !offset_us) return Limited(std::move(what), "us", measured, {}, std::move(note));
  note += ", " + (*offset_us > 0.0 ? Fixed(*offset_us, 0) + " us + " : "") +
          Fixed((*measured - *offset_us) / *bare, 2) + " x bare of at most " + Fixed(factor, 1);
  return Limited(std::move(what), "us", measured, *offset_us + factor * *bare, std::move(note));
}

void AddLatencies(const Measurements& found, std::vector<Row>& rows) {
  const Samples& bare = found.bare_round_trip;
  const Samples& bare_busy = found.bare_round_trip_back_to_back;
  const Samples& quiet = found.query_on_quiet_line;
  const Samples& busy = found.query_back_to_back;
  const Samples& poll = found.empty_poll;
  rows.push_back(Reference("bare round trip, quiet line, median", "us", bare.Percentile(50), Count(bare)));
  rows.push_back(Reference("bare round trip, quiet line, p99", "us", bare.Percentile(99)));
  rows.push_back(
      Reference("bare round trip, back to back, median", "us", bare_busy.Percentile(50), Count(bare_busy)));
  rows.push_back(Reference("select of 5 ms on nothing, median", "us", poll.Percentile(50), Count(poll)));
  rows.push_back(
      LimitedQuery("query, quiet line, median", quiet, bare.Percentile(50), 0.0, kQuietQueryFactor));
  rows.push_back(Reference("query, quiet line, p99", "us", quiet.Percentile(99)));
  rows.push_back(LimitedQuery("query, back to back, median", busy, bare.Percentile(50), poll.Percentile(50),
                              kBusyQueryFactor));
  rows.push_back(Reference("query, back to back, p99", "us", busy.Percentile(99)));
}

void AddLoads(const Measurements& found, std::vector<Row>& rows) {
  const auto wakeups = [](const std::optional<IoThreadLoad>& load) {
    return load ? Figure(load->wakeups_per_second) : std::nullopt;
  };
  const auto processor = [](const std::optional<IoThreadLoad>& load) {
    return load ? Figure(load->processor_percent) : std::nullopt;
  };
  rows.push_back(Limited("idle link, wake-ups", "/s", wakeups(found.idle_link), kIdleWakeupsPerSecond, ""));
  rows.push_back(Reference("idle link, processor", "%", processor(found.idle_link), "of one processor"));
  rows.push_back(Limited("hung-up port, wake-ups", "/s", wakeups(found.hung_up_port), kPollsPerSecond,
                         "one per 5 ms, 2 % slack"));
  rows.push_back(Limited("hung-up port, processor", "%", processor(found.hung_up_port),
                         kHungUpProcessorPercent, "of one processor"));
}

// The limit is the library's own size: it may need only the C library, which every program has loaded.
Row LoadedRow(const Measurements& found) {
  constexpr double kKiB = 1024.0;
  Row row = Limited("loaded with the library, in all", "KiB", std::nullopt, std::nullopt, "its own pages");
  if (!found.loaded) return row;
  row.measured = static_cast<double>(found.loaded->with_needed_bytes) / kKiB;
  row.limit = static_cast<double>(found.loaded->own_bytes) / kKiB;
  return row;
}

std::vector<Row> RowsOf(const Measurements& found) {
  std::vector<Row> rows;
  AddLatencies(found, rows);
  rows.push_back(Limited("heap allocations per query", "", found.allocations_per_query, 0.0, "both threads"));
  rows.push_back(
      Limited("heap allocations per received line", "", found.allocations_per_line, 0.0, "both threads"));
  AddLoads(found, rows);
  rows.push_back(LoadedRow(found));
  rows.push_back(Limited("close of the last user, idle link, median", "us", found.last_close.Percentile(50),
                         kLastCloseUs, Count(found.last_close)));
  return rows;
}

std::string FigureText(Figure figure, const char* unit) {
  if (!figure) return "-";
  return *unit == '\0' ? Fixed(*figure, 3) : Fixed(*figure, 1) + ' ' + unit;
}

void PrintRow(const Row& row) {
  const bool has_ratio = row.IsJudged() && *row.limit > 0.0;
  const char* verdict = "";
  if (row.IsJudged()) {
    verdict = row.IsOver() ? "OVER" : "ok";
  } else if (row.has_limit) {
    verdict = "not judged";
  }
  std::printf("%-42s %13s %13s %7s  %-10s  %s\n", row.what.c_str(),
              FigureText(row.measured, row.unit).c_str(),
              row.has_limit ? FigureText(row.limit, row.unit).c_str() : "",
              has_ratio ? Fixed(*row.measured / *row.limit, 2).c_str() : "", verdict, row.note.c_str());
}

}  // namespace

Verdict PrintReport(const Measurements& found) {
  const std::vector<Row> rows = RowsOf(found);
  std::printf(
      "\nThe MCU is a process of its own, pinned to no processor, that answers at once. A quiet line was\n"
      "left alone for more than 10 ms first; that time is not counted. The ratio is measured to limit.\n\n");
  std::printf("%-42s %13s %13s %7s  %-10s  %s\n", "", "measured", "limit", "ratio", "verdict", "");
  for (const Row& row : rows) PrintRow(row);
  std::printf("\n");
  Verdict verdict = Verdict::kAllKept;
  for (const Row& row : rows) {
    if (!row.IsOver()) continue;
    verdict = Verdict::kOver;
    std::printf("over: %s: %s, limit %s\n", row.what.c_str(), FigureText(row.measured, row.unit).c_str(),
                FigureText(row.limit, row.unit).c_str());
  }
  std::fflush(stdout);
  return verdict;
}

}  // namespace rolu_bench
