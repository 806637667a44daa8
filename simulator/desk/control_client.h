#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

#include "simulator/desk/json.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// No board answers, or the board went away.
class NoBoardError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A connection to a board's control socket. It sends one request at a time.
class ControlClient {
 public:
  // Waits up to `patience` for the board to come up. Throws NoBoardError.
  ControlClient(std::string board_directory, std::chrono::milliseconds patience);

  // Throws NoBoardError when the board goes away before it answers.
  Json Ask(const Json& request);

  // The next line, without its line end. Nothing at the end of the connection, or when `deadline` passes (see
  // TimedOut).
  using TimePoint = std::chrono::steady_clock::time_point;
  std::optional<std::string> ReadLine(std::optional<TimePoint> deadline = std::nullopt);
  bool TimedOut() const { return timed_out_; }

 private:
  std::string directory_;
  UniqueFd socket_;
  std::string received_;
  bool timed_out_ = false;
};

}  // namespace rolu_sim
