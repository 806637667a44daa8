#include "soak/longest_calls.h"

#include <algorithm>
#include <string_view>

#include "soak/answering_mcu.h"

namespace rolu_soak {
namespace {

using std::chrono::milliseconds;

// An answer that is only just in time: a post-delay or another command may follow.
constexpr milliseconds kInTime{2700};
constexpr milliseconds kNever = AnsweringMcu::kNever;

const Operation& Named(std::string_view name, const Promise& promise) {
  const auto& all = Operations();
  return *std::find_if(all.begin(), all.end(), [&](const Operation& operation) {
    return operation.name == name && operation.promise.own_ms == promise.own_ms;
  });
}

}  // namespace

const std::vector<LongestCall>& LongestCalls() {
  const auto& families = Families();
  static const std::vector<LongestCall> calls = {
      {Named("WD_GetTime", kCommand), {{"WDTG", kNever}}, milliseconds(3000)},
      {Named("VPM_SetLBPLowDelay", kCommand50), {{"MCUS0", kInTime}}, milliseconds(2750)},
      {families[kWatchdog].initialize, {{"Hello", kNever}}, milliseconds(3000)},
      {Named("VPM_GetCarBatteryVoltage", kTwoCommands),
       {{"MCBG", kInTime}, {"MCVG", kNever}},
       milliseconds(5700)},
      {Named("VPM_SetAlarmTime", kCommand150), {{"RTAS", kInTime}}, milliseconds(2850)},
      {Named("VPM_SetATMode", kTwoCommands50), {{"MCAG", kInTime}, {"MCAS", kInTime}}, milliseconds(5450)},
      {Named("PERIPHERALCTRL_SetPeripheralControl", kCommand500), {{"MCS", kInTime}}, milliseconds(3200)},
      {Named("VPM_SetCurrentCarBatteryMode", kTwoCommands100),
       {{"MCCS", kInTime}, {"MCBS", kInTime}},
       milliseconds(5500)},
      {Named("VPM_LoadDefaultValue", kCommand1250), {{"EEDF", kInTime}}, milliseconds(3950)},
      {families[kSensor].deinitialize, {{"ARGI", kInTime}, {"GSF", kInTime}}, milliseconds(5400)},
      {families[kSensor].initialize, {{"Hello", kNever}, {"GSO", kNever}}, milliseconds(6000)},
      {Named("VPM_SetRTCTime", kClockSetting), {{"RTCS", kInTime}}, milliseconds(2750)},
      {families[kVpm].initialize,
       {{"Hello", kNever},
        {"ATF0", kInTime},
        {"MCVU2", kNever},
        {"MCVU3", kNever},
        {"MCPR3", kInTime},
        {"MCPR2", kNever}},
       milliseconds(17400)},
  };
  return calls;
}

}  // namespace rolu_soak
