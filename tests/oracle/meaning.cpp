#include "tests/oracle/meaning.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>

#include "tests/oracle/operations.h"
#include "tests/oracle/plain_reading.h"
#include "tests/oracle/vpm_calls.h"
#include "tests/oracle/wire_model.h"

namespace rolu_test {
namespace {

// An operation in its course.
struct Course {
  Ending ending = {};
  // Replaces the table's command, if the last reply tells what to send.
  std::string next_command = {};
  // The volts of a step, once the battery system is known.
  float scale = 0.0F;
};

// What is made of one reply; false where it cannot be read.
using Reading = std::function<bool(const std::string& reply, Course& course)>;

template <typename... Values>
bool Write(Course& course, const Values&... values) {
  course.ending.output = MemoryWith(Written(values...));
  return true;
}

char CharacterOf(const std::string& reply, size_t position) {
  return position < reply.size() ? reply[position] : '\0';
}

bool Number(const std::string& reply, Course& course) {
  return Write(course, NumberOf(reply, 16));
}

bool Number16(const std::string& reply, Course& course) {
  return Write(course, static_cast<unsigned short>(NumberOf(reply, 16)));
}

// '1' is on, all else is off.
Reading Flag(size_t position) {
  return [=](const std::string& reply, Course& course) {
    return Write(course, static_cast<char>(CharacterOf(reply, position) == '1' ? 1 : 0));
  };
}

// '1' is on, '0' is off.
Reading Switch(size_t position) {
  return [=](const std::string& reply, Course& course) {
    const char state = CharacterOf(reply, position);
    return (state == '0' || state == '1') && Write(course, static_cast<char>(state - '0'));
  };
}

bool PlatformName(const std::string& reply, Course& course) {
  course.ending.output = MemoryWith(Characters(FieldOf(reply, 5, 12), 13));
  return true;
}

Reading Threshold(float scale) {
  return [=](const std::string& reply, Course& course) {
    return Write(course, static_cast<float>(static_cast<uint32_t>(NumberOf(reply, 16))) * scale);
  };
}

bool BatterySystem(const std::string& reply, Course& course) {
  const int32_t number = NumberOf(reply, 16);
  if (number != 2 && number != 3) return false;
  course.scale = number == 3 ? k12V : k24V;
  return true;
}

bool BatteryMode(const std::string& reply, Course& course) {
  return BatterySystem(reply, course) && Number(reply, course);
}

bool BatteryVoltage(const std::string& reply, Course& course) {
  return Write(course, static_cast<float>(NumberOf(reply, 16)) * course.scale);
}

// The MCU's flags go back to it with one of them changed.
Reading ChangesFlag(size_t position, char flag) {
  return [=](const std::string& reply, Course& course) {
    std::string flags = reply;
    flags.resize(std::max(flags.size(), position + 1));
    flags[position] = flag;
    course.next_command = "MCCS" + flags.substr(0, flags.find('\0')) + "\r";
    return true;
  };
}

bool BackupVoltage(const std::string& reply, Course& course) {
  const auto millivolts = static_cast<float>(NumberOf(reply, 16));
  return Write(course, static_cast<float>(static_cast<double>(millivolts) * 0.001));
}

bool BackupTemperature(const std::string& reply, Course& course) {
  const auto tenths_of_kelvin = static_cast<float>(NumberOf(reply, 16));
  return Write(course, static_cast<float>(static_cast<double>(tenths_of_kelvin) * 0.1 - 273.15));
}

// Writes only the flags that are set.
bool BackupFlags(const std::string& reply, Course& course) {
  constexpr struct {
    unsigned int bit;
    size_t place;
  } kFlags[] = {
      {0, offsetof(BACKUP_BATTERY_INFO, status_bit0)},   {1, offsetof(BACKUP_BATTERY_INFO, status_bit1)},
      {2, offsetof(BACKUP_BATTERY_INFO, status_bit2)},   {7, offsetof(BACKUP_BATTERY_INFO, status_bit7)},
      {8, offsetof(BACKUP_BATTERY_INFO, status_bit8)},   {9, offsetof(BACKUP_BATTERY_INFO, status_bit9)},
      {10, offsetof(BACKUP_BATTERY_INFO, status_bit10)}, {11, offsetof(BACKUP_BATTERY_INFO, status_bit11)},
      {14, offsetof(BACKUP_BATTERY_INFO, status_bit14)}, {15, offsetof(BACKUP_BATTERY_INFO, status_bit15)},
  };
  const auto word = static_cast<uint32_t>(NumberOf(reply, 2));
  for (const auto& flag : kFlags) {
    if ((word >> flag.bit) % 2 == 1) course.ending.output.at(flag.place) = 1;
  }
  return true;
}

bool Ignition(const std::string& reply, Course& course) {
  const std::string state = reply.substr(0, 2);
  return (state == "ON" || state == "OF") && Write(course, static_cast<char>(state == "ON" ? 1 : 0));
}

bool IgnitionMode(const std::string& reply, Course& course) {
  const char digit = CharacterOf(reply, 0);
  return (digit == '1' || digit == '2') && Write(course, static_cast<IGNITION_MODE>(digit - '0'));
}

// Keep-alive mode and AT mode, a digit each; one that is missing is 0.
std::pair<int, int> ModesOf(const std::string& reply) {
  Pieces pieces(reply);
  const int keep_alive = pieces.Number(10, 1).value_or(0);
  return {keep_alive, pieces.Number(10, 1).value_or(0)};
}

bool KeepAliveMode(const std::string& reply, Course& course) {
  return Write(course, static_cast<char>(ModesOf(reply).first));
}

bool AtMode(const std::string& reply, Course& course) {
  return Write(course, static_cast<char>(ModesOf(reply).second));
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
  return known != sources.end() && Write(course, known->second);
}

bool Clock(const std::string& reply, Course& course) {
  Pieces pieces(reply);
  unsigned char fields[7];
  for (unsigned char& field : fields) field = static_cast<unsigned char>(pieces.Number(16, 2).value_or(0));
  return Write(course, fields);
}

bool WakeupAlarm(const std::string& reply, Course& course) {
  unsigned int bytes[3];
  for (size_t i = 0; i < 3; ++i) bytes[i] = static_cast<uint32_t>(NumberOf(FieldOf(reply, 2 * i, 2), 16));
  const auto is_set = [](unsigned int byte, unsigned int bit) { return (byte >> bit) % 2 == 1; };
  const auto value = [](unsigned int byte) { return static_cast<unsigned char>(AlarmFieldOf(byte)); };
  ALARM_MODE mode = ALARM_MODE_NONE;
  if (is_set(bytes[2], 0)) mode = ALARM_MODE_HOURLY;
  if (is_set(bytes[1], 0)) mode = ALARM_MODE_DAILY;
  if (is_set(bytes[0], 0)) mode = ALARM_MODE_WEEKLY;
  // The hour's bit 1 tells the afternoon.
  const int hour = value(bytes[1]) - (is_set(bytes[1], 1) ? 40 : 0);
  return Write(course, mode,
               VPM_ALARM_TIME{value(bytes[0]), static_cast<unsigned char>(hour), value(bytes[2])});
}

bool Sample(const std::string& reply, Course& course) {
  if (CharacterOf(reply, 0) == 'I') {
    course.ending.status = ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE;
    return true;
  }
  Pieces pieces(reply);
  pieces.Character();
  int32_t axes[3];
  for (int32_t& axis : axes) {
    const std::optional<int> field = pieces.Number(16, 4);
    if (!field) return false;
    // 1000/256, a half added, and what is behind the point cut off.
    axis = (static_cast<int16_t>(*field) * 125 + 16) / 32;
  }
  return Write(course, axes);
}

std::optional<int32_t> RegisterOf(const std::string& reply) {
  const std::optional<int> number = Pieces(reply).Number(16, 2);
  if (!number) return std::nullopt;
  return static_cast<uint8_t>(*number);
}

bool Resolution(const std::string& reply, Course& course) {
  const std::optional<int32_t> steps = RegisterOf(reply);
  return steps && Write(course, *steps);
}

bool SensorThreshold(const std::string& reply, Course& course) {
  const std::optional<int32_t> steps = RegisterOf(reply);
  return steps && Write(course, (*steps * 125 + 1) / 2);
}

using Table = std::map<std::string, std::vector<Reading>>;

// The readings by the names of the rows. Orders have none: only an error matters to them.
Table MakeTable() {
  Table table = {
      {"VPM_GetPlatformName", {PlatformName}},
      {"VPM_GetForceShutDown", {Flag(0)}},
      {"VPM_GetLBPThresholdFor12VSystem", {Threshold(k12V)}},
      {"VPM_GetLBPThresholdFor24VSystem", {Threshold(k24V)}},
      {"VPM_GetPrebootThresholdFor12VSystem", {Threshold(k12V)}},
      {"VPM_GetPrebootThresholdFor24VSystem", {Threshold(k24V)}},
      {"VPM_GetCarBatteryVoltage 12V", {BatterySystem, BatteryVoltage}},
      {"VPM_GetCarBatteryVoltage 24V", {BatterySystem, BatteryVoltage}},
      {"VPM_GetCurrentCarBatteryMode", {BatteryMode}},
      {"VPM_SetPrebootLBPStatus", {ChangesFlag(0, '0')}},
      {"VPM_SetLBPStatus", {ChangesFlag(1, '1')}},
      {"VPM_GetPrebootLBPStatus", {Flag(0)}},
      {"VPM_GetLBPStatus", {Flag(1)}},
      {"VPM_GetBackupBatteryVoltage", {BackupVoltage}},
      {"VPM_GetBackupBatteryRemainingCapacity", {Number}},
      {"VPM_GetBackupBatteryPercentageOfCharge", {Number}},
      {"VPM_GetBackupBatteryTemperture", {BackupTemperature}},
      {"VPM_GetBackupBatteryRemainingTime", {Number}},
      {"VPM_GetBackupBatteryTimeToFull", {Number}},
      {"VPM_GetBackupBatteryInfo", {Number, BackupFlags}},
      {"VPM_GetIgnitionStatus on", {Ignition}},
      {"VPM_GetIgnitionStatus off", {Ignition}},
      {"VPM_GetIgnitionMode", {IgnitionMode}},
      {"VPM_GetPrePowerOffAlarm", {Flag(0)}},
      {"VPM_GetKeepAliveMode", {KeepAliveMode}},
      {"VPM_GetATMode", {AtMode}},
      {"VPM_SetKeepAliveMode", {ChangesKeepAliveMode}},
      {"VPM_SetATMode", {ChangesAtMode}},
      {"VPM_GetShutdownSourceControlStatus 0", {Switch(0)}},
      {"VPM_GetShutdownSourceControlStatus 1", {Switch(1)}},
      {"VPM_GetWakeupSourceControlStatus", {Switch(6)}},
      {"VPM_GetAlarmActive", {Switch(6)}},
      {"VPM_GetLastWakeupSource", {WakeupSource}},
      {"VPM_GetRTCTime", {Clock}},
      {"VPM_GetAlarmTime", {WakeupAlarm}},
      {"WD_GetTime", {Number16}},
      {"GSENSOR_GetData", {Sample}},
      {"GSENSOR_GetResolution", {Resolution}},
      {"GSENSOR_GetAlarmThreshold", {SensorThreshold}},
      {"GSENSOR_GetWakeupThreshold", {SensorThreshold}},
      {"PERIPHERALCTRL_GetPeripheralControl", {Switch(0)}},
  };
  for (const char* delay :
       {"LBPLowDelay", "LBPLowHardDelay", "IgnOnDelay", "IgnOffEventDelay", "IgnHardOffDelay",
        "IgnSuspendHardOffDelay", "PrePowerOffAlarmDelay", "ForceShutDownDelay"}) {
    table.insert({std::string("VPM_Get") + delay, {Number16}});
  }
  return table;
}

// The part of a line that the operation sees: up to a NUL, and 31 characters of the firmware's name.
std::string Seen(const std::string& line, const std::string& command) {
  const std::string text = line.substr(0, line.find('\0'));
  return command == "ATF0\r" ? text.substr(0, 31) : text;
}

// Takes the reply to a command; false where the operation ends with it.
bool TakeReply(const CallRow& row, size_t command, const std::string& reply, Course& course) {
  static const Table table = MakeTable();
  course.ending.status = StatusOfReply(reply);
  if (course.ending.status != ROLU_STATUS_SUCCESS) return false;
  const auto readings = table.find(row.name);
  if (readings == table.end() || command >= readings->second.size()) return true;
  if (!readings->second[command](reply, course)) course.ending.status = row.unreadable;
  return course.ending.status == ROLU_STATUS_SUCCESS;
}

}  // namespace

Replies HealthyReplies(const CallRow& row) {
  Replies replies;
  for (const Answer& answer : row.answers) replies.emplace_back(ReplyLines(BytesOf(answer)).back());
  return replies;
}

Ending MeaningOf(const CallRow& row, const Replies& replies) {
  Course course;
  const std::vector<std::string> commands = CommandsOf(row.wire);
  for (size_t i = 0; i < commands.size(); ++i) {
    course.ending.wire += course.next_command.empty() ? commands[i] : course.next_command;
    course.next_command.clear();
    if (std::count(row.indifferent.begin(), row.indifferent.end(), i) != 0) continue;
    if (!replies[i]) course.ending.status = ROLU_STATUS_VPM_NO_REPLY;
    if (!replies[i] || !TakeReply(row, i, Seen(*replies[i], commands[i]), course)) break;
  }
  return course.ending;
}

}  // namespace rolu_test
