#include "simulator/mcu/peripheral_switch.h"

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

// The number of the switch, of which there is only 0, and its state.
AnswerLines WriteSwitch(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  if (fields[0] != '0') return RefuseParameter();
  return SetFlag(model.peripheral_switch.on, fields[1]);
}

AnswerLines ReadSwitch(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatFlag(model.peripheral_switch.on)};
}

}  // namespace

std::vector<McuCommand> PeripheralSwitchCommands() {
  return {{"MCS", 2, 2, WriteSwitch}, {"MCG", 0, 0, ReadSwitch}};
}

}  // namespace rolu_sim
