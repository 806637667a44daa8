#include <map>

#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/vpm_calls.h"

namespace rolu_test {
namespace {

struct Delay {
  const char* subject;
  ROLU_STATUS (*set)(unsigned short);
  ROLU_STATUS (*get)(unsigned short*);
  const char* set_code;  // four digits follow
  const char* get_command;
};

constexpr Delay kDelays[] = {
    {"LBPLowDelay", KAVO_ROLU_VPM_SetLBPLowDelay, KAVO_ROLU_VPM_GetLBPLowDelay, "MCUS0", "MCUG0\r"},
    {"LBPLowHardDelay", KAVO_ROLU_VPM_SetLBPLowHardDelay, KAVO_ROLU_VPM_GetLBPLowHardDelay, "MCUS1",
     "MCUG1\r"},
    {"IgnOnDelay", KAVO_ROLU_VPM_SetIgnOnDelay, KAVO_ROLU_VPM_GetIgnOnDelay, "MCUS2", "MCUG2\r"},
    {"IgnOffEventDelay", KAVO_ROLU_VPM_SetIgnOffEventDelay, KAVO_ROLU_VPM_GetIgnOffEventDelay, "MCUS3",
     "MCUG3\r"},
    {"IgnHardOffDelay", KAVO_ROLU_VPM_SetIgnHardOffDelay, KAVO_ROLU_VPM_GetIgnHardOffDelay, "MCUS4",
     "MCUG4\r"},
    {"IgnSuspendHardOffDelay", KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay,
     KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay, "MCUS6", "MCUG6\r"},
    {"PrePowerOffAlarmDelay", KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay, KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay,
     "MCUS7", "MCUG7\r"},
    {"ForceShutDownDelay", KAVO_ROLU_VPM_SetForceShutDownDelay, KAVO_ROLU_VPM_GetForceShutDownDelay, "MSDS",
     "MSDG\r"},
};

std::vector<CallRow> MakePowerOffDelayOperations() {
  std::vector<CallRow> rows = {
      Orders("VPM_SetForceShutDown on", With(KAVO_ROLU_VPM_SetForceShutDown, 1), {"OK"}, "MSSS1\r"),
      Orders("VPM_SetForceShutDown off", With(KAVO_ROLU_VPM_SetForceShutDown, 0), {"OK"}, "MSSS0\r"),
      Asks("VPM_GetForceShutDown", KAVO_ROLU_VPM_GetForceShutDown, "1", '\1', "MSSG\r"),
      Orders("VPM_ForceShutdown", Plain(KAVO_ROLU_VPM_ForceShutdown), {"OK"}, "ATPO\r", 0),
  };
  for (const Delay& delay : kDelays) {
    const std::string set_wire = std::string(delay.set_code) + "003C\r";
    rows.push_back(Orders(std::string("VPM_Set") + delay.subject, With(delay.set, 60), {"OK"}, set_wire));
    rows.push_back(Asks(std::string("VPM_Get") + delay.subject, delay.get, "012C", 300, delay.get_command));
  }
  return rows;
}

// Asks for one switch of a line of switches.
CallRow GivesSwitch(std::string name, Call call, const char* answer, size_t position, std::string wire) {
  const auto state = static_cast<char>(answer[position] - '0');
  return Reads(Gives(std::move(name), std::move(call), {answer}, Written(state), std::move(wire)),
               {Switch(position)}, ROLU_STATUS_VPM_INVALID_REPLY);
}

bool Ignition(const std::string& reply, Course& course) {
  const std::string state = reply.substr(0, 2);
  return (state == "ON" || state == "OF") && course.Write(static_cast<char>(state == "ON" ? 1 : 0));
}

bool IgnitionMode(const std::string& reply, Course& course) {
  const char digit = CharacterOf(reply, 0);
  return (digit == '1' || digit == '2') && course.Write(static_cast<IGNITION_MODE>(digit - '0'));
}

// The keep-alive mode and the AT mode, one digit each. A missing mode is 0.
std::pair<int, int> ModesOf(const std::string& reply) {
  Pieces pieces(reply);
  const int keep_alive = pieces.Number(10, 1).value_or(0);
  return {keep_alive, pieces.Number(10, 1).value_or(0)};
}

bool KeepAliveMode(const std::string& reply, Course& course) {
  return course.Write(static_cast<char>(ModesOf(reply).first));
}

bool AtMode(const std::string& reply, Course& course) {
  return course.Write(static_cast<char>(ModesOf(reply).second));
}

bool ChangesKeepAliveMode(const std::string& reply, Course& course) {
  course.next_command = "MCAS1" + std::to_string(ModesOf(reply).second) + "\r";
  return true;
}

bool ChangesAtMode(const std::string& reply, Course& course) {
  course.next_command = "MCAS" + std::to_string(ModesOf(reply).first) + "0\r";
  return true;
}

bool WakeupSource(const std::string& reply, Course& course) {
  static const std::map<uint16_t, int32_t> sources = {{0x00, -1}, {0x01, 1}, {0x02, 1}, {0x03, 1},
                                                      {0x10, 0},  {0x20, 4}, {0x21, 5}, {0x30, 6},
                                                      {0x40, 10}, {0x50, 3}, {0x60, 2}};
  const auto known = sources.find(static_cast<uint16_t>(NumberOf(reply, 16)));
  return known != sources.end() && course.Write(known->second);
}

}  // namespace

const std::vector<CallRow>& PowerOffDelayOperations() {
  static const std::vector<CallRow> operations = MakePowerOffDelayOperations();
  return operations;
}

const std::vector<CallRow>& IgnitionAndModeOperations() {
  constexpr ROLU_STATUS kUnknown = ROLU_STATUS_VPM_ERROR_REPLY;
  const Call get_ignition = Into(KAVO_ROLU_VPM_GetIgnitionStatus);
  static const std::vector<CallRow> operations = {
      Reads(Gives("VPM_GetIgnitionStatus on", get_ignition, {"ON"}, Written('\1'), "IGNG\r"), {Ignition},
            kUnknown),
      Reads(Gives("VPM_GetIgnitionStatus off", get_ignition, {"OFF"}, Written('\0'), "IGNG\r"), {Ignition},
            kUnknown),
      Orders("VPM_SetIgnitionMode 1", With(KAVO_ROLU_VPM_SetIgnitionMode, 1), {"OK"}, "IGMS1\r"),
      Orders("VPM_SetIgnitionMode 2", With(KAVO_ROLU_VPM_SetIgnitionMode, 2), {"OK"}, "IGMS2\r"),
      Reads(Gives("VPM_GetIgnitionMode", Into(KAVO_ROLU_VPM_GetIgnitionMode), {"2"}, Written(IGNITION_MODE_2),
                  "IGMG\r"),
            {IgnitionMode}, kUnknown),
      Orders("VPM_SetPrePowerOffAlarm on", With(KAVO_ROLU_VPM_SetPrePowerOffAlarm, 7), {"OK"}, "MPAS1\r"),
      Orders("VPM_SetPrePowerOffAlarm off", With(KAVO_ROLU_VPM_SetPrePowerOffAlarm, 0), {"OK"}, "MPAS0\r"),
      Asks("VPM_GetPrePowerOffAlarm", KAVO_ROLU_VPM_GetPrePowerOffAlarm, "1", '\1', "MPAG\r"),
      Reads(Orders("VPM_SetKeepAliveMode", With(KAVO_ROLU_VPM_SetKeepAliveMode, 1), {"01", "OK"},
                   "MCAG\rMCAS11\r"),
            {ChangesKeepAliveMode}),
      Reads(Orders("VPM_SetATMode", With(KAVO_ROLU_VPM_SetATMode, 0), {"01", "OK"}, "MCAG\rMCAS00\r"),
            {ChangesAtMode}),
      Reads(Gives("VPM_GetKeepAliveMode", Into(KAVO_ROLU_VPM_GetKeepAliveMode), {"10"}, Written('\1'),
                  "MCAG\r"),
            {KeepAliveMode}),
      Reads(Gives("VPM_GetATMode", Into(KAVO_ROLU_VPM_GetATMode), {"10"}, Written('\0'), "MCAG\r"), {AtMode}),
      // The MCU is busy while it restores its defaults.
      Orders("VPM_LoadDefaultValue", Plain(KAVO_ROLU_VPM_LoadDefaultValue), {"OK"}, "EEDF\r", 1250),
  };
  return operations;
}

const std::vector<CallRow>& PowerSourceOperations() {
  static const std::vector<CallRow> operations = {
      Orders("VPM_SetShutdownSourceControlStatus 1on", SetShutdown(1, 7), {"OK"}, "SDMS11\r"),
      Orders("VPM_SetShutdownSourceControlStatus 0off", SetShutdown(0, 0), {"OK"}, "SDMS00\r"),
      GivesSwitch("VPM_GetShutdownSourceControlStatus 1", GetShutdown(1), "10", 1, "SDMG\r"),
      GivesSwitch("VPM_GetShutdownSourceControlStatus 0", GetShutdown(0), "10", 0, "SDMG\r"),
      Orders("VPM_SetWakeupSourceControlStatus 3on", SetWakeup(3, 1), {"OK"}, "WKMS31\r"),
      Orders("VPM_SetWakeupSourceControlStatus 10on", SetWakeup(10, 1), {"OK"}, "WKMS101\r"),
      GivesSwitch("VPM_GetWakeupSourceControlStatus", GetWakeup(6), "0000001", 6, "WKMG\r"),
      Reads(Gives("VPM_GetLastWakeupSource", Into(KAVO_ROLU_VPM_GetLastWakeupSource), {"30"},
                  Written(WAKEUP_SOURCE_RTC_ALARM), "WKSG\r"),
            {WakeupSource}, ROLU_STATUS_VPM_UNKNOWN_VALUE),
      Orders("VPM_SetAlarmActive", With(KAVO_ROLU_VPM_SetAlarmActive, 1), {"OK"}, "WKMS61\r"),
      GivesSwitch("VPM_GetAlarmActive", Into(KAVO_ROLU_VPM_GetAlarmActive), "11111101111", 6, "WKMG\r"),
  };
  return operations;
}

}  // namespace rolu_test
