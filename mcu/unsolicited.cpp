#include "mcu/unsolicited.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "mcu/reply_fields.h"

namespace {

// One slot stays free: equal indices mean an empty ring.
constexpr int kRingSlots = 32;

constexpr unsigned long kPopLockMs = 1000;

constexpr char kSamplePrefix[] = "[GI:";
constexpr size_t kSampleDigits = 4;

ROLU_GSENSOR_DATA gdata[kRingSlots] GUARDED_BY(io_op_lock);
int gdata_front GUARDED_BY(io_op_lock) = 0;
int gdata_tail GUARDED_BY(io_op_lock) = 0;

pthread_cond_t* gsensor_alarm_event GUARDED_BY(io_op_lock) = nullptr;
pthread_cond_t* pre_ign_poweroff_alarm_event GUARDED_BY(io_op_lock) = nullptr;
pthread_cond_t* pre_lvp_poweroff_alarm_event GUARDED_BY(io_op_lock) = nullptr;

int NextSlot(int slot) {
  return slot == kRingSlots - 1 ? 0 : slot + 1;
}

void Signal(pthread_cond_t* event) {
  if (event != nullptr) pthread_cond_signal(event);
}

// Three fields of exactly four digits: a message that lost digits would give a wrong sample.
bool ReadSample(const char* line, ROLU_GSENSOR_DATA& sample) {
  constexpr size_t kPrefixLength = sizeof kSamplePrefix - 1;
  if (strncmp(line, kSamplePrefix, kPrefixLength) != 0) return false;
  const char* fields = line + kPrefixLength;
  for (size_t i = 0; i < 3 * kSampleDigits; ++i) {
    if (isxdigit(static_cast<unsigned char>(fields[i])) == 0) return false;
  }
  const auto axis = [fields](size_t index) {
    return static_cast<int16_t>(ReadHexadecimalField(fields, index * kSampleDigits, kSampleDigits));
  };
  sample = {axis(0), axis(1), axis(2)};
  return true;
}

void SignalPowerOffWarning(const char* line) REQUIRES(io_op_lock) {
  unsigned int message_class = 0;
  unsigned int kind = 0;
  char rest[kLineCapacity];
  if (sscanf(line, "[%2X%2X%63s", &message_class, &kind, rest) != 3 || message_class != 0) return;
  if (kind == 0) Signal(pre_ign_poweroff_alarm_event);
  if (kind == 1) Signal(pre_lvp_poweroff_alarm_event);
}

}  // namespace

void HandleBracketedMessage(const char* line) {
  if (line[0] != '\0' && line[1] == 'G') {
    push_gsensor_alarm_data(line);
  } else {
    SignalPowerOffWarning(line);
  }
}

void push_gsensor_alarm_data(const char* line) {
  ROLU_GSENSOR_DATA sample;
  if (!ReadSample(line, sample)) return;
  gdata[gdata_front] = sample;
  gdata_front = NextSlot(gdata_front);
  if (gdata_front == gdata_tail) gdata_tail = NextSlot(gdata_tail);
  Signal(gsensor_alarm_event);
}

int pop_gsensor_alarm_data(ROLU_GSENSOR_DATA* sample) {
  if (sample == nullptr || !IoOpLockExists()) return -1;
  if (io_op_lock->TimeLock(kPopLockMs) != 0) return -3;
  const bool queued = gdata_front != gdata_tail;
  if (queued) {
    *sample = gdata[gdata_tail];
    gdata_tail = NextSlot(gdata_tail);
  }
  io_op_lock->Unlock();
  return queued ? 0 : -2;
}

void set_gsensor_alarm_event(void* event) {
  if (!IoOpLockExists()) return;
  const ScopedLock lock(*io_op_lock);
  gsensor_alarm_event = static_cast<pthread_cond_t*>(event);
}

void set_ignition_poweroff_alarm_event(void* event) {
  if (!IoOpLockExists()) return;
  const ScopedLock lock(*io_op_lock);
  pre_ign_poweroff_alarm_event = static_cast<pthread_cond_t*>(event);
}

void set_lvp_poweroff_alarm_event(void* event) {
  if (!IoOpLockExists()) return;
  const ScopedLock lock(*io_op_lock);
  pre_lvp_poweroff_alarm_event = static_cast<pthread_cond_t*>(event);
}

void ResetUnsolicited() {
  gdata_front = 0;
  gdata_tail = 0;
  gsensor_alarm_event = nullptr;
  pre_ign_poweroff_alarm_event = nullptr;
  pre_lvp_poweroff_alarm_event = nullptr;
}
