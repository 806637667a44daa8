#ifndef GSENSOR_GSENSOR_MANAGER_H
#define GSENSOR_GSENSOR_MANAGER_H

#include <atomic>
#include <cstdint>

#include "kavo_rolu.h"
#include "mcu/transaction.h"

// The G-sensor manager. Samples come from the MCU, as answers or as alarms; all are scaled by one factor,
// whatever the resolution.
class CGSensorMgr {
 public:
  CGSensorMgr();
  CGSensorMgr(const CGSensorMgr&) = delete;
  CGSensorMgr& operator=(const CGSensorMgr&) = delete;
  ~CGSensorMgr();

  uint32_t Initialize(int unused);
  uint32_t Deinitialize();
  uint32_t GetLibVersion(unsigned char* version);
  uint32_t GetData(ROLU_GSENSOR_DATA* sample);
  uint32_t GetResolution(ROLU_GSENSOR_RES* resolution);
  uint32_t SetResolution(ROLU_GSENSOR_RES resolution);
  uint32_t AlarmEnabled(bool on);
  uint32_t SetAlarmEvent(void* event);
  uint32_t GetAlarmData(ROLU_GSENSOR_DATA* sample);
  uint32_t GetAlarmThreshold(int* threshold);
  uint32_t SetAlarmThreshold(int threshold);
  uint32_t GetWakeupThreshold(int* threshold);
  uint32_t SetWakeupThreshold(int threshold);

  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size,
                            int post_delay_ms) {
    return RunTransaction(error_table, command, command_length, reply, reply_size, post_delay_ms);
  }
  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size) {
    return GetDataFromSTM32(command, command_length, reply, reply_size, 0);
  }
  int32_t VPMErrorCheck(char* reply) { return FindErrorReply(error_table, reply); }

 private:
  // Asks for a register, two hexadecimal digits.
  uint32_t QueryRegister(const char* command, unsigned int& value);
  uint32_t GetThreshold(const char* command, int* threshold);
  void Scale(ROLU_GSENSOR_DATA& sample) const;

  std::atomic<uint8_t> initialized;
  std::atomic<uint8_t> alarm_enabled;  // survives Deinitialize unless the MCU confirmed that it is off
  float data_scale;
  ErrorReplyEntry* error_table;
};

extern CGSensorMgr gGSensorMgr;

#endif  // GSENSOR_GSENSOR_MANAGER_H
