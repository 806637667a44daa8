#include <cstdio>
#include <cstring>

#include "core/exported_call.h"
#include "core/process_objects.h"
#include "mcu/manager_lifecycle.h"
#include "mcu/reply_fields.h"
#include "mcu/turn.h"
#include "vpm/vpm_manager.h"

namespace {

constexpr float kDefaultScale24V = 0.01582f;
constexpr float kDefaultScale12V = 0.015385f;

// The printed line names this version for its reader. The library does not compare versions.
constexpr int kNamedMinorVersion = 10;

void PrintFirmwareVersion(const char* identification) {
  int major = 0;
  int minor = 0;
  sscanf(identification, "*VER:%3d.%3d*", &major, &minor);
  printf("[VPM] your version is %3d.%3d. It's must great then .%3d\n", major, minor, kNamedMinorVersion);
}

void ReadScale(const ErrorReplyEntry* table, const char* command, float scale_without_answer, float& scale) {
  Reply reply;
  if (Query(table, Command("%s", command), reply) != ROLU_STATUS_SUCCESS) {
    scale = scale_without_answer;
    return;
  }
  ReadFloat(reply.text, &scale);
}

}  // namespace

CVPMMgr gVPMMgr CONSTRUCTED_AT(kConstructVPMMgr);

CVPMMgr::CVPMMgr()
    : error_table(nullptr),
      initialized(0),
      battery_info{},
      fw_info{},
      voltage_scale_mode3(0.0f),
      voltage_scale_mode2(0.0f) {}

// The application takes the family down before it unloads the library; nothing is released here.
CVPMMgr::~CVPMMgr() = default;

uint32_t CVPMMgr::Initialize(int) {
  // A thread that is cancelled while it prints would leave the link open.
  const CancellationOff until_it_is_up;
  uint32_t status = StartUpManager(initialized, error_table);
  if (status != ROLU_STATUS_SUCCESS) return status;
  status = ReadFirmwareInfo();
  if (status == ROLU_STATUS_SUCCESS) {
    ReadVoltageScales();
    status = ReadBatteryRange(CAR_BATTERY_MODE_12V);
  }
  if (status == ROLU_STATUS_SUCCESS) status = ReadBatteryRange(CAR_BATTERY_MODE_24V);
  if (status != ROLU_STATUS_SUCCESS) {
    AbandonStartUp(error_table);
    return status;
  }
  initialized = 1;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::ReadFirmwareInfo() {
  Command command("ATF0\r");
  char reply[sizeof fw_info.text] = {};
  const uint32_t status = GetDataFromSTM32(command.text, command.length, reply, sizeof reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  memcpy(fw_info.text, reply, sizeof fw_info.text);
  PrintFirmwareVersion(reply);
  return ROLU_STATUS_SUCCESS;
}

void CVPMMgr::ReadVoltageScales() {
  ReadScale(error_table, "MCVU2\r", kDefaultScale24V, voltage_scale_mode2);
  ReadScale(error_table, "MCVU3\r", kDefaultScale12V, voltage_scale_mode3);
}

uint32_t CVPMMgr::Deinitialize() {
  return ShutDownManager(initialized, error_table);
}

uint32_t CVPMMgr::GetFWVersion(VPM_FIRMWARE_INFO* info) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (info == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  *info = fw_info;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

uint32_t CVPMMgr::GetPlatformName(char* name) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (name == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("ATF1\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  constexpr size_t kPrefixLength = 5;
  constexpr size_t kNameLength = 12;
  memcpy(name, reply.text + kPrefixLength, kNameLength);
  name[kNameLength] = '\0';
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_VPM_Initialize(uint8_t unused) {
  return StatusCode(gVPMMgr.Initialize(unused));
}
ROLU_STATUS KAVO_ROLU_VPM_Deinitialize(void) {
  return StatusCode(gVPMMgr.Deinitialize());
}
ROLU_STATUS KAVO_ROLU_VPM_GetFWVersion(VPM_FIRMWARE_INFO* info) {
  return StatusCode(gVPMMgr.GetFWVersion(info));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLibVersion(unsigned char* version) {
  return StatusCode(gVPMMgr.GetLibVersion(version));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPlatformName(char* name) {
  return StatusCode(gVPMMgr.GetPlatformName(name));
}
