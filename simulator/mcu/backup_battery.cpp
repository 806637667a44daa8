#include "simulator/mcu/backup_battery.h"

#include <bitset>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

template <std::uint16_t BackupBatteryState::*kNumber>
AnswerLines ReadNumber(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {FormatHex(model.backup_battery.*kNumber, 4)};
}

AnswerLines ReadStatus(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {std::bitset<16>(model.backup_battery.status_bits).to_string()};
}

}  // namespace

std::vector<McuCommand> BackupBatteryCommands() {
  using State = BackupBatteryState;
  return {
      {"B03", 0, 0, ReadNumber<&State::temperature_tenths_kelvin>},
      {"B04", 0, 0, ReadNumber<&State::millivolts>},
      {"B05", 0, 0, ReadStatus},
      {"B08", 0, 0, ReadNumber<&State::remaining_capacity>},
      {"B09", 0, 0, ReadNumber<&State::info>},
      {"B11", 0, 0, ReadNumber<&State::remaining_time>},
      {"B12", 0, 0, ReadNumber<&State::time_to_full>},
      {"B22", 0, 0, ReadNumber<&State::percent>},
  };
}

}  // namespace rolu_sim
