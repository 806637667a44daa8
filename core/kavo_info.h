#ifndef CORE_KAVO_INFO_H
#define CORE_KAVO_INFO_H

#include <atomic>
#include <cstdint>

// The core's state.
struct KavoInfo {
  std::atomic<uint8_t> initialized;  // 1 between KAVO_ROLU_CORE_Init and KAVO_ROLU_CORE_DeInit
};

extern KavoInfo kavo_info;

#endif  // CORE_KAVO_INFO_H
