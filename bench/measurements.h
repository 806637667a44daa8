#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "bench/io_thread_load.h"
#include "bench/loaded_size.h"

namespace rolu_bench {

// Times in microseconds.
class Samples {
 public:
  void Add(double microseconds) { values_.push_back(microseconds); }
  std::size_t count() const { return values_.size(); }

  // The value that `percent` of the samples do not exceed; nothing when there are none.
  std::optional<double> Percentile(std::size_t percent) const {
    if (values_.empty()) return std::nullopt;
    std::vector<double> sorted = values_;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t rank = (sorted.size() * percent + 99) / 100;
    return sorted[std::max<std::size_t>(rank, 1) - 1];
  }

 private:
  std::vector<double> values_;
};

// What the benchmarks found; what did not run stays empty.
struct Measurements {
  Samples bare_round_trip;
  Samples bare_round_trip_back_to_back;
  Samples empty_poll;
  Samples query_on_quiet_line;
  Samples query_back_to_back;
  Samples last_close;
  std::optional<double> allocations_per_query;
  std::optional<double> allocations_per_line;
  std::optional<IoThreadLoad> idle_link;
  std::optional<IoThreadLoad> hung_up_port;
  std::optional<LoadedSize> loaded;
  bool attempted = false;  // a benchmark ran
  bool failed = false;     // one could not measure
};

}  // namespace rolu_bench
