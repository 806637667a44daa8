// Calls of the power manager that more than one table makes.
#ifndef TESTS_ORACLE_VPM_CALLS_H
#define TESTS_ORACLE_VPM_CALLS_H

#include "kavo_rolu.h"
#include "tests/oracle/call_row.h"

namespace rolu_test {

// Sets the switch of a shutdown or wake-up source.
template <typename Source>
Call SetSwitch(ROLU_STATUS (*set)(Source, char), int source, int enable) {
  return [=](void*) { return set(static_cast<Source>(source), static_cast<char>(enable)); };
}
template <typename Source>
Call GetSwitch(ROLU_STATUS (*get)(Source, char*), int source) {
  return [=](void* output) { return get(static_cast<Source>(source), static_cast<char*>(output)); };
}
inline Call SetShutdown(int source, int enable) {
  return SetSwitch(KAVO_ROLU_VPM_SetShutdownSourceControlStatus, source, enable);
}
inline Call GetShutdown(int source) {
  return GetSwitch(KAVO_ROLU_VPM_GetShutdownSourceControlStatus, source);
}
inline Call SetWakeup(int source, int enable) {
  return SetSwitch(KAVO_ROLU_VPM_SetWakeupSourceControlStatus, source, enable);
}
inline Call GetWakeup(int source) {
  return GetSwitch(KAVO_ROLU_VPM_GetWakeupSourceControlStatus, source);
}

}  // namespace rolu_test

#endif  // TESTS_ORACLE_VPM_CALLS_H
