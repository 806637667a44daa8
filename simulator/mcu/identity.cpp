#include "simulator/mcu/identity.h"

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

AnswerLines Greet(McuModel& /*model*/, std::string_view /*fields*/, TimePoint /*now*/) {
  return AnswerOk();
}

AnswerLines ReadFirmware(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {model.identity.firmware};
}

AnswerLines ReadPlatform(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  return {model.identity.platform};
}

}  // namespace

std::vector<McuCommand> IdentityCommands() {
  return {
      {"Hello", 0, 0, Greet},
      {"ATF0", 0, 0, ReadFirmware},
      {"ATF1", 0, 0, ReadPlatform},
  };
}

}  // namespace rolu_sim
