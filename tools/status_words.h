#pragma once

#include <string>

#include "cli/exit_status.h"
#include "kavo_rolu.h"

namespace rolu {

struct StatusWords {
  ROLU_STATUS status;
  const char* name;
  const char* words;
  const char* hint;  // what to do; may be empty
  ExitStatus exit_status;
};

// The words for a status code; for one that the library does not have, words that say so.
const StatusWords& WordsOf(ROLU_STATUS status);

// "the MCU did not answer within 3 s (ROLU_STATUS_VPM_NO_REPLY, 0xC048)".
std::string Describe(ROLU_STATUS status);

// The same with the hint after it: "...; 'rolu doctor' looks for the cause".
std::string DescribeWithHint(ROLU_STATUS status);

// "the MCU did not answer in time (0xC048)", for tables.
std::string DescribeShortly(ROLU_STATUS status);

// "0xC048".
std::string CodeText(ROLU_STATUS status);

// Throws CommandError with the words, unless `status` is a success. `doing` completes the sentence
// "could not ...".
void ThrowUnlessDone(ROLU_STATUS status, const std::string& doing);

}  // namespace rolu
