#include <algorithm>
#include <cstdio>
#include <limits>

#include "core/device_file.h"
#include "core/process_objects.h"
#include "kavo_rolu.h"

namespace {

constexpr char kBrightnessFile[] = "/sys/devices/omapdss/display0/backlight/vorn512p/brightness";

constexpr unsigned char kLowestLevel = 0;
constexpr unsigned char kHighestLevel = 10;
constexpr unsigned char kLevelStep = 1;

FILE* OpenBrightness(const char* mode) {
  FILE* file = fopen(kBrightnessFile, mode);
  if (file != nullptr) SetCloseOnExec(fileno(file));
  return file;
}

// A number too wide for an int saturates, as it does where long has 32 bits.
bool ReadInteger(FILE* file, int& value) {
  long long wide = 0;
  if (fscanf(file, "%lld", &wide) != 1) return false;
  value = static_cast<int>(
      std::clamp<long long>(wide, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
  return true;
}

}  // namespace

ROLU_STATUS KAVO_ROLU_DISPLAY_GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

ROLU_STATUS KAVO_ROLU_DISPLAY_Available(void) {
  return kavo_info.initialized != 0 ? ROLU_STATUS_DISPLAY_AVAILABLE : ROLU_STATUS_NOT_INITIALIZED;
}

ROLU_STATUS KAVO_ROLU_DISPLAY_GetBrightRange(ROLU_BRIGHT_RANGE* range) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (range == nullptr || range->min == nullptr || range->max == nullptr || range->step == nullptr) {
    return ROLU_STATUS_NULL_POINTER;
  }
  *range->min = kLowestLevel;
  *range->max = kHighestLevel;
  *range->step = kLevelStep;
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DISPLAY_GetBright(unsigned char* level) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (level == nullptr) return ROLU_STATUS_NULL_POINTER;
  FILE* file = OpenBrightness("r");
  if (file == nullptr) return ROLU_STATUS_FILE_OPEN_FAILED;
  int brightness = 0;
  const bool read = ReadInteger(file, brightness);
  fclose(file);
  if (!read) return ROLU_STATUS_FILE_ACCESS_FAILED;
  *level = static_cast<unsigned char>(brightness);
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DISPLAY_SetBright(unsigned char level) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (level > kHighestLevel) return ROLU_STATUS_NOT_SUPPORTED;
  FILE* file = OpenBrightness("w");
  if (file == nullptr) return ROLU_STATUS_FILE_OPEN_FAILED;
  fprintf(file, "%d", level);
  fclose(file);
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DISPLAY_ScreenOn(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_DISPLAY_ScreenOff(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
