#ifndef PERIPHERALCTRL_PERIPHERAL_MANAGER_H
#define PERIPHERALCTRL_PERIPHERAL_MANAGER_H

#include <atomic>
#include <cstdint>

#include "kavo_rolu.h"
#include "mcu/transaction.h"

// The manager of the switched peripherals. It keeps no copy of a switch. The order of the virtual
// operations is part of the class and stays as it is.
class CPCMgr {
 public:
  CPCMgr();
  CPCMgr(const CPCMgr&) = delete;
  CPCMgr& operator=(const CPCMgr&) = delete;
  // Never called, since the one instance is not on the heap. The virtual destructor refers to it, and the
  // default operator delete would need the C++ runtime.
  // NOLINTNEXTLINE(cert-dcl54-cpp,misc-new-delete-overloads): so nothing is allocated, either.
  static void operator delete(void*) {}

  virtual ~CPCMgr();
  virtual uint32_t Initialize();
  virtual uint32_t Deinitialize();
  virtual uint32_t GetLibVersion(unsigned char* version);
  virtual uint32_t SetPeripheralControl(PERIPHERAL_TYPE type, char state);
  virtual uint32_t GetPeripheralControl(PERIPHERAL_TYPE type, char* state);
  virtual uint32_t SetRearViewSource(unsigned char source);
  virtual uint32_t GetRearViewSource(unsigned char* source);
  virtual uint32_t SetAutoRearView(char enable);
  virtual uint32_t GetAutoRearView(char* enabled);

  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size,
                            int post_delay_ms) {
    return RunTransaction(error_table, command, command_length, reply, reply_size, post_delay_ms);
  }
  uint32_t GetDataFromSTM32(char* command, int command_length, char* reply, int reply_size) {
    return GetDataFromSTM32(command, command_length, reply, reply_size, 0);
  }
  int32_t VPMErrorCheck(char* reply) { return FindErrorReply(error_table, reply); }

 private:
  uint32_t GetMcuSwitch(bool& on);
  uint32_t NotProvided() const;

  ErrorReplyEntry* error_table;
  std::atomic<uint8_t> initialized;
};

extern CPCMgr gPCMgr;

#endif  // PERIPHERALCTRL_PERIPHERAL_MANAGER_H
