#include "soak/operations.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <stdexcept>

#include "protocol/commands.h"
#include "tests/oracle/operations.h"

namespace rolu_soak {
namespace {

using rolu_test::CallRow;

constexpr int kCommandMs = 3000;
constexpr int kClosingMs = 3000;

constexpr std::array<std::size_t, kFamilies> kLeaders = {kLaneDelays, kLaneWatchdog, kLaneSensor,
                                                         kLanePeripherals};

// The longest of these that a command begins with tells who sends it.
constexpr struct {
  std::string_view begin;
  std::size_t lane;
} kOwners[] = {
    {"Hello", kAnyLane},       {"A", kLaneModes},         {"ATF0", kLaneDelays}, {"ARGI", kLaneSensor},
    {"B", kLaneClock},         {"E", kLaneClock},         {"G", kLaneSensor},    {"GSI", kLaneThresholds},
    {"GSW", kLaneThresholds},  {"I", kLaneModes},         {"M", kLaneModes},     {"MCB", kLaneBattery},
    {"MCC", kLaneBattery},     {"MCG", kLanePeripherals}, {"MCP", kLaneBattery}, {"MCPR", kLaneDelays},
    {"MCS", kLanePeripherals}, {"MCU", kLaneDelays},      {"MCV", kLaneBattery}, {"MCVU", kLaneDelays},
    {"R", kLaneClock},         {"S", kLaneClock},         {"W", kLaneClock},     {"WD", kLaneWatchdog},
};

bool IsDeinitialize(const CallRow& row) {
  return row.name.ends_with("_Deinitialize");
}

std::size_t FamilyOf(const CallRow& row) {
  std::size_t family = 0;
  while (!row.name.starts_with(rolu_test::McuFamilies().at(family).prefix)) ++family;
  return family;
}

// What the commands of a call promise together.
Promise PromiseOfCommands(const std::vector<std::string>& commands) {
  Promise promise{fmt::format("{} command{}", commands.size(), commands.size() == 1 ? "" : "s"), 0};
  int first_delay_ms = 0;
  int delay_ms = 0;
  int lines = 1;
  for (const std::string& command : commands) {
    const rolu_protocol::Command& known = *rolu_protocol::FindCommand(command);
    lines = known.answer_lines;
    delay_ms = known.post_delay_ms;
    if (&command == &commands.front()) first_delay_ms = delay_ms;
    promise.own_ms += lines * kCommandMs + delay_ms;
  }
  if (delay_ms == 0) return promise;
  if (commands.size() == 1) {
    promise.statement += lines == 1 ? " with" : fmt::format(" with {} answer lines and", lines);
  } else {
    promise.statement += first_delay_ms == 0 ? ", the second with" : ", each with";
  }
  promise.statement += fmt::format(" a post-delay of {} ms", delay_ms);
  return promise;
}

Promise PromiseOf(const CallRow& row) {
  const std::vector<std::string> commands = rolu_test::CommandsOf(row.wire);
  if (commands.empty() && IsDeinitialize(row)) return {"a closing", kClosingMs, false};
  if (commands.empty()) return {row.name.ends_with("Event") ? "the inner lock" : "Does not block", 0, false};
  Promise promise = PromiseOfCommands(commands);
  if (row.brings_up) {
    promise.statement = "the link, then " + promise.statement;
    promise.own_ms += kLinkMs;
  }
  const bool start_up_can_fail = row.brings_up && row.indifferent.size() < commands.size();
  if (IsDeinitialize(row) || start_up_can_fail) {
    promise.statement += ", then a closing";
    promise.own_ms += kClosingMs;
  }
  return promise;
}

Operation OperationFor(const CallRow& row, Promise promise) {
  const std::size_t family = FamilyOf(row);
  std::size_t lane = kLeaders.at(family);
  for (const std::string& command : rolu_test::CommandsOf(row.wire)) {
    if (LaneOf(command) != kAnyLane) lane = LaneOf(command);
  }
  const std::string name = row.name.substr(0, row.name.find(' '));
  const bool has_state =
      row.status != ROLU_STATUS_NOT_SUPPORTED && name != "WD_GetRange" && name != "VPM_GetLBPThresholdInfo";
  return {name,
          family,
          lane,
          std::move(promise),
          &row,
          has_state,
          name.ends_with("_Initialize") || IsDeinitialize(row)};
}

// Switches a peripheral and reads its state back. No other call switches it.
rolu_test::Call SwitchesAndReads(PERIPHERAL_TYPE type, char state) {
  return [type, state](void* output) {
    const ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(type, state);
    if (status != ROLU_STATUS_SUCCESS) return status;
    return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(type, static_cast<char*>(output));
  };
}

constexpr unsigned int kAxisBits = 15;
constexpr std::uint32_t kAxisMask = (1U << kAxisBits) - 1;

std::uint32_t RawAxis(std::int32_t scaled) {
  constexpr double kGravityUnit = 3.90625;
  return static_cast<std::uint32_t>(std::llround(scaled / kGravityUnit)) & 0xFFFFU;
}

// Writes 1 when there is no sample, or when the sample's message is newer than all before it.
ROLU_STATUS TakeAlarmSample(void* output) {
  static std::uint32_t newest = 0;  // used by one thread only
  ROLU_GSENSOR_DATA sample{};
  const ROLU_STATUS status = KAVO_ROLU_GSENSOR_GetAlarmData(&sample);
  bool right = status == ROLU_STATUS_GSENSOR_NO_ALARM_DATA;
  if (status == ROLU_STATUS_SUCCESS) {
    const std::uint32_t high = RawAxis(sample.x);
    const std::uint32_t low = RawAxis(sample.y);
    const std::uint32_t number = high << kAxisBits | low;
    right = RawAxis(sample.z) == (high ^ low) && number > newest && number <= last_alarm_sent;
    newest = number;
  }
  if (!right && status != ROLU_STATUS_SUCCESS) return status;
  *static_cast<char*>(output) = right ? 1 : 0;
  return ROLU_STATUS_SUCCESS;
}

// The calls that no row of the tests describes.
std::vector<Operation> OwnOperations() {
  using rolu_test::Gives;
  using rolu_test::Written;
  static std::deque<CallRow> rows;
  std::vector<Operation> operations;
  const auto add = [&operations](std::string name, rolu_test::Call call, char output, Promise promise) {
    rows.push_back(Gives(std::move(name), std::move(call), {}, Written(output)));
    operations.push_back(OperationFor(rows.back(), std::move(promise)));
  };
  add("GSENSOR_GetAlarmData", TakeAlarmSample, 1, {"the inner lock, at most 1000 ms", 1000, false});
  for (const char state : {'\0', '\1'}) {
    add("PERIPHERALCTRL_GetPeripheralControl GPS", SwitchesAndReads(PERIPHERAL_TYPE_GPS, state), state,
        {"device files", 0, false});
    add("PERIPHERALCTRL_GetPeripheralControl WLAN", SwitchesAndReads(PERIPHERAL_TYPE_WLAN, state), state,
        {"the shell command, without a limit", kNoLimit, false});
  }
  return operations;
}

}  // namespace

std::atomic<std::uint32_t> last_alarm_sent{0};

std::string AlarmMessage(std::uint32_t number) {
  const std::uint32_t high = number >> kAxisBits & kAxisMask;
  const std::uint32_t low = number & kAxisMask;
  return fmt::format("[GI:{:04X}{:04X}{:04X}]\r\n", high, low, high ^ low);
}

std::size_t LaneOf(std::string_view command) {
  std::size_t longest = 0;
  std::size_t lane = kAnyLane;
  for (const auto& owner : kOwners) {
    if (owner.begin.size() <= longest || !command.starts_with(owner.begin)) continue;
    longest = owner.begin.size();
    lane = owner.lane;
  }
  return lane;
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> all = OwnOperations();
    for (const rolu_test::Operation& operation : rolu_test::AllOperations()) {
      all.push_back(OperationFor(*operation.row, PromiseOf(*operation.row)));
    }
    // Leaves out what the board does not provide: the library refuses it at once, without the MCU.
    for (const CallRow& row : rolu_test::SilentOperations()) {
      if (row.status == ROLU_STATUS_SUCCESS) all.push_back(OperationFor(row, PromiseOf(row)));
    }
    return all;
  }();
  return operations;
}

const std::vector<FamilyCalls>& Families() {
  static const std::vector<FamilyCalls> families = [] {
    std::vector<FamilyCalls> all;
    for (const rolu_test::McuFamily& family : rolu_test::McuFamilies()) {
      all.push_back({OperationOf(family.prefix + "Initialize"), OperationOf(family.prefix + "Deinitialize")});
    }
    return all;
  }();
  return families;
}

const Operation& OperationOf(std::string_view row_name) {
  for (const Operation& operation : Operations()) {
    if (operation.row->name == row_name) return operation;
  }
  throw std::out_of_range(std::string(row_name));
}

std::string ListOfPromises() {
  std::string text;
  for (const Operation& operation : Operations()) {
    text += fmt::format("KAVO_ROLU_{} | {} | {}\n", operation.name, operation.promise.statement,
                        operation.promise.own_ms);
  }
  return text;
}

}  // namespace rolu_soak
