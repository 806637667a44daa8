#ifndef SOAK_JUDGEMENT_H
#define SOAK_JUDGEMENT_H

#include <string>
#include <string_view>
#include <vector>

#include "include/kavo_rolu.h"
#include "soak/fault.h"
#include "soak/lane.h"

namespace rolu_soak {

// A call that has returned, and the circumstances.
struct CallFacts {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  bool right = true;  // after success: the caller got the values, or the MCU the order, of this call
  std::vector<Exchange> exchanges;
  std::string_view ignored_code;  // the call goes on however this command ends
  bool family_was_up = true;
  bool port_was_dead = false;  // for some of the time
  bool link_was_busy = false;  // an Initialize waited for the link as long as it promises
};

// Why the call must not have ended like this. Threads that waited for a processor explain an answer, or a
// link, that was missed without a cause; they never explain a wrong one.
Fault FaultIn(const CallFacts& facts);

std::string StatusText(ROLU_STATUS status);

}  // namespace rolu_soak

#endif  // SOAK_JUDGEMENT_H
