#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "include/kavo_rolu.h"
#include "soak/findings.h"
#include "tests/oracle/made_call.h"

namespace rolu_soak {

// A command that reached the MCU, and the line that answers it; nothing where no such line comes.
struct Exchange {
  std::string command;
  std::optional<std::string> reply;
};

// A call that has returned, and the circumstances.
struct CallFacts {
  const rolu_test::CallRow* row = nullptr;
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  rolu_test::OutputMemory output = rolu_test::MemoryWith({});
  std::vector<Exchange> exchanges = {};
  bool family_was_up = true;
  bool port_was_dead = false;  // for some of the time
  bool link_was_busy = false;  // an Initialize waited for the link as long as it promises
};

// Why the call must not have ended like this: the tests' own reading of what the MCU answered is what counts.
// Threads that waited for a processor explain an answer, or a link, that was missed without a cause; they
// never explain a wrong one.
Fault FaultIn(const CallFacts& facts);

// The tables behind it have their whole size from then on: what the process holds is compared.
void PrepareJudgement();

// "VPM_NO_REPLY".
std::string StatusText(ROLU_STATUS status);

// So many of the calls may be excused. Each one that is says nothing about the library, and a machine that
// gives the threads too little time for more than a thousandth is none to judge it on. A moment without a
// processor meets as many calls as there are threads: a short run has to stand one.
std::uint64_t ExcusableCalls(std::uint64_t calls);

}  // namespace rolu_soak
