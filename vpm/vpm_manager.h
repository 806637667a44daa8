#ifndef VPM_VPM_MANAGER_H
#define VPM_VPM_MANAGER_H

#include <atomic>
#include <cstdint>

#include "kavo_rolu.h"
#include "mcu/transaction.h"

// The vehicle power management manager: every operation of the VPM family. The order of the virtual
// operations is part of the class and stays as it is.
class CVPMMgr {
 public:
  enum DELAY_TYPE : int32_t {
    DELAY_TYPE_LBP_LOW = 0,
    DELAY_TYPE_LBP_LOW_HARD = 1,
    DELAY_TYPE_IGN_ON = 2,
    DELAY_TYPE_IGN_OFF_EVENT = 3,
    DELAY_TYPE_IGN_HARD_OFF = 4,
    DELAY_TYPE_IGN_SUSPEND_HARD_OFF = 6,
    DELAY_TYPE_PRE_POWER_OFF_ALARM = 7
  };
  // The two low-battery protections; the value is the flag's place in the MCU's answer.
  enum BOOT_TYPE : int32_t { BOOT_TYPE_PREBOOT = 0, BOOT_TYPE_LBP = 1 };

  CVPMMgr();
  CVPMMgr(const CVPMMgr&) = delete;
  CVPMMgr& operator=(const CVPMMgr&) = delete;
  // Never called, since the one instance is not on the heap. The virtual destructor refers to it, and the
  // default operator delete would need the C++ runtime.
  // NOLINTNEXTLINE(cert-dcl54-cpp,misc-new-delete-overloads): so nothing is allocated, either.
  static void operator delete(void*) {}

  virtual ~CVPMMgr();
  virtual uint32_t Initialize(int unused);
  virtual uint32_t Deinitialize();
  virtual uint32_t GetFWVersion(VPM_FIRMWARE_INFO* info);
  virtual uint32_t GetLibVersion(unsigned char* version);
  virtual uint32_t GetPlatformName(char* name);
  virtual uint32_t GetForceShutdownDelay(unsigned short* delay);
  virtual uint32_t SetForceShutdownDelay(unsigned short delay);
  virtual uint32_t GetForceShutdown(char* enabled);
  virtual uint32_t SetForceShutdown(char enable);
  virtual uint32_t SetIgnOffEventDelay(unsigned short delay);
  virtual uint32_t GetIgnOffEventDelay(unsigned short* delay);
  virtual uint32_t SetIgnHardOffDelay(unsigned short delay);
  virtual uint32_t GetIgnHardOffDelay(unsigned short* delay);
  virtual uint32_t SetIgnSuspendHardOffDelay(unsigned short delay);
  virtual uint32_t GetIgnSuspendHardOffDelay(unsigned short* delay);
  virtual uint32_t SetPrePowerOffAlarmDelay(unsigned short delay);
  virtual uint32_t GetPrePowerOffAlarmDelay(unsigned short* delay);
  virtual uint32_t SeIgnOnDelay(unsigned short delay);
  virtual uint32_t GetIgnOnDelay(unsigned short* delay);
  virtual uint32_t SetLBPLowDelay(unsigned short delay);
  virtual uint32_t GetLBPLowDelay(unsigned short* delay);
  virtual uint32_t SetLBPLowHardDelay(unsigned short delay);
  virtual uint32_t GetLBPLowHardDelay(unsigned short* delay);
  virtual uint32_t SetLBPThresholdFor12VSystem(float volts);
  virtual uint32_t GetLBPThresholdFor12VSystem(float* volts);
  virtual uint32_t SetLBPThresholdFor24VSystem(float volts);
  virtual uint32_t GetLBPThresholdFor24VSystem(float* volts);
  virtual uint32_t SetPrebootThresholdFor12VSystem(float volts);
  virtual uint32_t GetPrebootThresholdFor12VSystem(float* volts);
  virtual uint32_t SetPrebootThresholdFor24VSystem(float volts);
  virtual uint32_t GetPrebootThresholdFor24VSystem(float* volts);
  virtual uint32_t GetLBPThresholdInfo(CAR_BATTERY_MODE mode, BATTERY_INFO* info);
  virtual uint32_t GetIgnitionStatus(char* on);
  virtual uint32_t GetCarBatteryVoltage(float* volts);
  virtual uint32_t SetCurrentCarBatteryMode(CAR_BATTERY_MODE mode);
  virtual uint32_t GetCurrentCarBatteryMode(CAR_BATTERY_MODE* mode);
  virtual uint32_t SetLowBatteryProtectionStatus(char enable);
  virtual uint32_t SetLowBatteryProtectionStatus(char* enabled);  // reads
  virtual uint32_t SetPreBootLowBatteryProtectionStatus(char enable);
  virtual uint32_t SetPreBootLowBatteryProtectionStatus(char* enabled);  // reads
  virtual uint32_t GetPrePowerOffAlarm(char* enabled);
  virtual uint32_t SetPrePowerOffAlarm(char enable);
  virtual uint32_t SetIgnPowerOffAlarmEvent(void* event);
  virtual uint32_t SetLBPPowerOffAlarmEvent(void* event);
  virtual uint32_t SetATMode(char mode);
  virtual uint32_t GetATMode(char* mode);
  virtual uint32_t SetKeepAliveMode(char mode);
  virtual uint32_t GetKeepAliveMode(char* mode);
  virtual uint32_t SetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char enable);
  virtual uint32_t GetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char* enabled);
  virtual uint32_t SetWakeupSourceControlStatus(WAKEUP_SOURCE source, char enable);
  virtual uint32_t GetWakeupSourceControlStatus(WAKEUP_SOURCE source, char* enabled);
  virtual uint32_t GetLastWakeupSource(WAKEUP_SOURCE* source);
  virtual uint32_t ForceShutdown();
  virtual uint32_t LoadDefaultValue();
  virtual uint32_t SetIgnitionMode(IGNITION_MODE mode);
  virtual uint32_t GetIgnitionMode(IGNITION_MODE* mode);
  virtual uint32_t SetAlarmActive(char enable);
  virtual uint32_t GetAlarmActive(char* enabled);
  virtual uint32_t SetAlarmTime(ALARM_MODE mode, VPM_ALARM_TIME time);
  virtual uint32_t GetAlarmTime(ALARM_MODE* mode, VPM_ALARM_TIME* time);
  virtual uint32_t GetRTCTime(VPM_RTC_TIME* time);
  virtual uint32_t SetRTCTime(VPM_RTC_TIME time);
  virtual uint32_t GetBackupBatteryVoltage(float* volts);
  virtual uint32_t GetBackupBatteryRemainingCapacity(int* capacity);
  virtual uint32_t GetBackupBatteryPercentageOfCharge(int* percent);
  virtual uint32_t GetBackupBatteryTemperture(float* celsius);
  virtual uint32_t GetBackupBatteryRemainingTime(int* time);
  virtual uint32_t GetBackupBatteryTimeToFull(int* time);
  virtual uint32_t GetBackupBatteryInfo(BACKUP_BATTERY_INFO* info);

  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size,
                            int post_delay_ms) {
    return RunTransaction(error_table, command, command_length, reply, reply_size, post_delay_ms);
  }
  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size) {
    return GetDataFromSTM32(command, command_length, reply, reply_size, 0);
  }
  int32_t VPMErrorCheck(char* reply) { return FindErrorReply(error_table, reply); }

  uint32_t SetDelay(DELAY_TYPE type, unsigned short delay);
  uint32_t GetDelay(DELAY_TYPE type, unsigned short* delay);

  // Converts a field of the alarm's time to the byte that carries it, without its flags, and back. Exact for
  // values of two decimal digits below 80.
  static unsigned char TimeToRAW(unsigned char value);
  static unsigned char RAWToTime(unsigned char raw);

  // Asks the MCU for the battery range of mode 2 or 3, in volts. Runs before the family is up.
  uint32_t GetBatteryVoltageRange(CAR_BATTERY_MODE mode, float* start, float* end, float* mid);

  uint32_t SetBatteryLowVoltageThre(BOOT_TYPE type, CAR_BATTERY_MODE mode, float volts);
  uint32_t GetBatteryLowVoltageThre(BOOT_TYPE type, CAR_BATTERY_MODE mode, float* volts);
  uint32_t SetLowVoltageProtection(BOOT_TYPE type, char enable);
  uint32_t GetLowVoltageProtection(BOOT_TYPE type, char* enabled);

 private:
  uint32_t ReadFirmwareInfo();
  void ReadVoltageScales();
  uint32_t ReadBatteryRange(CAR_BATTERY_MODE mode);
  static bool IsBatteryMode(int32_t mode);
  float VoltageScale(CAR_BATTERY_MODE mode) const;
  uint32_t GetUnsigned16(const Command& command, unsigned short* value);
  template <typename Value>
  uint32_t GetBackupBatteryValue(const char* command, Value (*convert)(int32_t), Value* value);

  ErrorReplyEntry* error_table;
  std::atomic<uint8_t> initialized;
  BATTERY_INFO battery_info[4];  // by CAR_BATTERY_MODE; entries 0 and 1 stay zero
  VPM_FIRMWARE_INFO fw_info;
  float voltage_scale_mode3;  // volts per unit of a battery reading, 12 V system
  float voltage_scale_mode2;  // the same, 24 V system
};

extern CVPMMgr gVPMMgr;

#endif  // VPM_VPM_MANAGER_H
