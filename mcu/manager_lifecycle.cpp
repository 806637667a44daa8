#include "mcu/manager_lifecycle.h"

#include <fcntl.h>

#include <cstdlib>

#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/transaction.h"
#include "mcu/turn.h"

namespace {

constexpr char kMcuPort[] = "/proc/vpm_serial";

void ReleaseTable(ErrorReplyEntry*& table) {
  free(table);
  table = nullptr;
}

// A close that gave up must not leave the port open, and the thread running, for good.
void CloseLink() {
  if (VPMClose() != 0) OweClose();
}

void GreetMcu(const ErrorReplyEntry* table) {
  Reply reply;
  Query(table, Command("Hello\r"), reply);
}

}  // namespace

uint32_t StartUpManager(const std::atomic<uint8_t>& initialized, ErrorReplyEntry*& table,
                        void (*before_open)()) {
  if (initialized != 0) return ROLU_STATUS_ALREADY_INITIALIZED;
  ReleaseTable(table);
  table = NewErrorTable();
  if (before_open != nullptr) before_open();
  if (table == nullptr || VPMOpen(kMcuPort, O_RDWR) < 0) {
    ReleaseTable(table);
    return ROLU_STATUS_VPM_OPEN_FAILED;
  }
  GreetMcu(table);
  return ROLU_STATUS_SUCCESS;
}

void AbandonStartUp(ErrorReplyEntry*& table) {
  ReleaseTable(table);
  CloseLink();
}

uint32_t ShutDownManager(std::atomic<uint8_t>& initialized, ErrorReplyEntry*& table) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  ReleaseTable(table);
  CloseLink();
  initialized = 0;
  return ROLU_STATUS_SUCCESS;
}
