#include <fcntl.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstring>

#include "core/device_file.h"
#include "core/process_objects.h"
#include "kavo_rolu.h"

namespace {

constexpr char kLibraryVersion[] = "030001.2014072500";

// The reset controller takes the register and the value that resets the board.
constexpr int kResetControllerAddress = 0x78;
constexpr unsigned char kResetCommand[] = {0x0B, 0x01};

constexpr size_t kImageTextSize = 128;

}  // namespace

ROLU_STATUS KAVO_ROLU_CORE_Init(void) {
  if (kavo_info.initialized == 1) return ROLU_STATUS_ALREADY_INITIALIZED;
  kavo_info.initialized = 1;
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_DeInit(void) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  kavo_info.initialized = 0;
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_GetLibVersion(unsigned char* version) {
  if (version == nullptr) return ROLU_STATUS_NULL_POINTER;
  memcpy(version, kLibraryVersion, strlen(kLibraryVersion));
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_Available(void) {
  return kavo_info.initialized == 1 ? ROLU_STATUS_SUCCESS : ROLU_STATUS_NOT_INITIALIZED;
}

ROLU_STATUS KAVO_ROLU_CORE_GetPlatformName(ROLU_PLATFORM_NAME* platform) {
  if (kavo_info.initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (platform == nullptr || (platform->name == nullptr && platform->length == nullptr)) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  utsname system{};
  uname(&system);
  const size_t length = strlen(system.machine);
  if (platform->length != nullptr) *platform->length = static_cast<uint32_t>(length);
  if (platform->name != nullptr) memcpy(platform->name, system.machine, length);
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_GetImageinfo(ROLU_IMAGE_INFO* info) {
  if (kavo_info.initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (info == nullptr || info->release == nullptr || info->version == nullptr) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  utsname system{};
  uname(&system);
  strncpy(info->release, system.release, kImageTextSize);
  strncpy(info->version, system.version, kImageTextSize);
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_Reset(void) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  const int bus = OpenDeviceFile(kI2cBusPath, O_RDWR);
  if (bus == -1) return ROLU_STATUS_DEVICE_OPEN_FAILED;
  if (!SelectI2cSlave(bus, kResetControllerAddress)) {
    close(bus);
    return ROLU_STATUS_DEVICE_IO_FAILED;
  }
  // The board may be gone before the write returns, so its result says nothing.
  [[maybe_unused]] const ssize_t written = write(bus, kResetCommand, sizeof kResetCommand);
  close(bus);
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_CORE_AccessBootCounter(uint32_t) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_CORE_SoftReset(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_CORE_HardReset(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_CORE_RegistrySave(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_CORE_RegistryClean(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
