#ifndef WATCHDOG_WATCHDOG_MANAGER_H
#define WATCHDOG_WATCHDOG_MANAGER_H

#include <atomic>
#include <cstdint>

#include "kavo_rolu.h"
#include "mcu/transaction.h"

// The manager of the MCU's watchdog. It keeps no copy of the watchdog's state: every answer comes
// from the MCU. The order of the virtual operations is part of the class and stays as it is.
class CWDMgr {
 public:
  CWDMgr();
  CWDMgr(const CWDMgr&) = delete;
  CWDMgr& operator=(const CWDMgr&) = delete;
  // Never called, since the one instance is not on the heap. The virtual destructor refers to it, and the
  // default operator delete would need the C++ runtime.
  // NOLINTNEXTLINE(cert-dcl54-cpp,misc-new-delete-overloads): so nothing is allocated, either.
  static void operator delete(void*) {}

  virtual ~CWDMgr();
  virtual uint32_t Initialize(int unused);
  virtual uint32_t Deinitialize();
  virtual uint32_t GetLibVersion(unsigned char* version);
  virtual uint32_t Trigger();
  virtual uint32_t Enabled(bool enable);
  virtual uint32_t GetTime(unsigned short* time);
  virtual uint32_t SetTime(unsigned short time);
  virtual uint32_t GetRange(unsigned long* minimum, unsigned long* maximum);

  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size,
                            int post_delay_ms) {
    return RunTransaction(error_table, command, command_length, reply, reply_size, post_delay_ms);
  }
  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size) {
    return GetDataFromSTM32(command, command_length, reply, reply_size, 0);
  }
  int32_t VPMErrorCheck(char* reply) { return FindErrorReply(error_table, reply); }

 private:
  std::atomic<uint8_t> initialized;
  ErrorReplyEntry* error_table;
};

extern CWDMgr gWDMgr;

#endif  // WATCHDOG_WATCHDOG_MANAGER_H
