#pragma once

#include <span>
#include <stdexcept>
#include <string>

#include "cli/exit_status.h"
#include "kavo_rolu.h"

namespace rolu {

// Ends a command before its work is done. main prints the text and exits with the status.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

// The success of a command that has several parts.
class Outcome {
 public:
  void Add(ExitStatus status) {
    if (status == kDone) ++done_;
    if (first_failure_ == kDone) first_failure_ = status;
  }
  // The number of parts that succeeded.
  unsigned long done() const { return done_; }
  // kDone; kPartlyDone when some parts succeeded; else the status of the first failure.
  ExitStatus Result() const { return first_failure_ == kDone || done_ == 0 ? first_failure_ : kPartlyDone; }

 private:
  unsigned long done_ = 0;
  ExitStatus first_failure_ = kDone;
};

struct StatusWords {
  ROLU_STATUS status;
  const char* name;
  const char* words;
  const char* cause;  // a sentence
  const char* hint;   // what to do; may be empty
  ExitStatus exit_status;
};

// The words for all statuses, in the order of their codes.
std::span<const StatusWords> AllStatusWords();

// What was tried: a refused question needs other words than a refused value.
enum class Act { kRead, kChange };

// The words for a status code. An unknown code gets words that say so.
const StatusWords& WordsOf(ROLU_STATUS status, Act act = Act::kChange);

// What the user can do about it; may be empty. For a port that cannot be opened it looks why.
std::string HintOf(ROLU_STATUS status, Act act = Act::kChange);

// "the MCU did not answer in time (ROLU_STATUS_VPM_NO_REPLY, 0xC048)".
std::string Describe(ROLU_STATUS status, Act act = Act::kChange);

// The same, followed by the hint: "...; 'rolu doctor' looks for the cause".
std::string DescribeWithHint(ROLU_STATUS status, Act act = Act::kChange);

// "the MCU did not answer in time (0xC048)", for tables.
std::string DescribeShortly(ROLU_STATUS status, Act act = Act::kChange);

// "0xC048".
std::string CodeText(ROLU_STATUS status);

// Throws CommandError with the words for `status`, unless it is a success. `doing` completes the sentence
// "could not ...".
void ThrowUnlessDone(ROLU_STATUS status, const std::string& doing, Act act = Act::kChange);

}  // namespace rolu
