// The functions of the interface as the soak calls them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/oracle/call_row.h"

namespace rolu_soak {

// In the order of the tests' families.
enum FamilyNumber : std::size_t { kVpm, kWatchdog, kSensor, kPeripherals, kFamilies };

// Threads by what they own on the wire.
enum LaneNumber : std::size_t {
  kLaneDelays,
  kLaneModes,
  kLaneBattery,
  kLaneClock,
  kLaneWatchdog,
  kLaneSensor,
  kLaneThresholds,
  kLanePeripherals,
  kLanes
};
inline constexpr std::size_t kAnyLane = kLanes;

// Who sends the command; kAnyLane for the greeting, which all families send.
std::size_t LaneOf(std::string_view command);

inline constexpr int kNoLimit = -1;
inline constexpr int kLinkMs = 2000;

// How long a call may take, as the header says behind "Blocks: ". A test compares the two.
struct Promise {
  std::string statement;
  int own_ms;  // without what the commands of other threads take meanwhile
  bool takes_turns = true;
};

struct Operation {
  std::string name;  // of the export, without "KAVO_ROLU_"
  std::size_t family;
  std::size_t lane;
  Promise promise;
  const rolu_test::CallRow* row;
  bool has_state = true;         // false: it answers the same when the family is down
  bool switches_family = false;  // it is one of FamilyCalls
};

// The calls that bring a family up and down; one thread makes both.
struct FamilyCalls {
  const Operation& initialize;
  const Operation& deinitialize;
};

// The number of the last G-sensor message that was sent. The samples that come out must be those of sent
// messages, in the same order.
extern std::atomic<std::uint32_t> last_alarm_sent;
std::string AlarmMessage(std::uint32_t number);

const std::vector<Operation>& Operations();
const std::vector<FamilyCalls>& Families();

// Each operation with the statement that the header makes of how long it blocks.
std::string ListOfPromises();

// The operation whose row has this name.
const Operation& OperationOf(std::string_view row_name);

}  // namespace rolu_soak
