#ifndef SOAK_OPERATIONS_H
#define SOAK_OPERATIONS_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "include/kavo_rolu.h"
#include "soak/lane.h"
#include "soak/promises.h"

namespace rolu_soak {

enum FamilyNumber : std::size_t { kVpm, kWatchdog, kSensor, kPeripherals, kFamilies };

struct Outcome {
  ROLU_STATUS status;
  bool right;  // after success
};

// A function of the interface as the soak calls it.
struct Operation {
  const char* name;  // without "KAVO_ROLU_"
  FamilyNumber family;
  std::size_t lane;
  Promise promise;
  std::function<Outcome(Lane&)> call;
  std::string_view ignored_code = {};
  bool has_state = true;  // false: answers the same when the family is down
};

struct FamilyCalls {
  const char* name;
  std::size_t lane;  // who brings it up and down
  Operation initialize;
  Operation deinitialize;
};

// The number of the last G-sensor message that was sent; the samples that come out have to be of such
// messages, in their order.
extern std::atomic<std::uint32_t> last_alarm_sent;
std::string AlarmMessage(std::uint32_t number);

std::vector<Operation> VpmOperations();

const std::vector<FamilyCalls>& Families();
const std::vector<Operation>& Operations();

}  // namespace rolu_soak

#endif  // SOAK_OPERATIONS_H
