#include "tools/status_words.h"

#include <fmt/format.h>

namespace rolu {
namespace {

constexpr char kAskDoctor[] = "'rolu doctor' looks for the cause";

constexpr StatusWords kWords[] = {
    {ROLU_STATUS_SUCCESS, "ROLU_STATUS_SUCCESS", "done", "", kDone},
    {ROLU_STATUS_NULL_POINTER, "ROLU_STATUS_NULL_POINTER", "the library was given no place for its result",
     "this is a fault of this program", kRefused},
    {ROLU_STATUS_INVALID_PARAMETER, "ROLU_STATUS_INVALID_PARAMETER", "the board refused the value",
     "'rolu list' tells the ranges", kRefused},
    {ROLU_STATUS_NOT_SUPPORTED, "ROLU_STATUS_NOT_SUPPORTED", "this board does not provide it", "", kRefused},
    {ROLU_STATUS_NOT_INITIALIZED, "ROLU_STATUS_NOT_INITIALIZED",
     "this part of the board could not be brought up", kAskDoctor, kNoAnswer},
    {ROLU_STATUS_TIMEOUT, "ROLU_STATUS_TIMEOUT", "the alarm sample could not be taken in time", "try again",
     kNoAnswer},
    {ROLU_STATUS_FILE_OPEN_FAILED, "ROLU_STATUS_FILE_OPEN_FAILED",
     "the display driver's file cannot be opened", kAskDoctor, kNoAnswer},
    {ROLU_STATUS_FILE_ACCESS_FAILED, "ROLU_STATUS_FILE_ACCESS_FAILED",
     "a device file or a system command gave no usable answer", kAskDoctor, kRefused},
    {ROLU_STATUS_DEVICE_OPEN_FAILED, "ROLU_STATUS_DEVICE_OPEN_FAILED", "the device cannot be opened",
     "it may be missing, or need root; 'rolu doctor' looks for the cause", kNoAnswer},
    {ROLU_STATUS_DEVICE_IO_FAILED, "ROLU_STATUS_DEVICE_IO_FAILED", "the device refused the transfer",
     "check the address", kRefused},
    {ROLU_STATUS_ALREADY_INITIALIZED, "ROLU_STATUS_ALREADY_INITIALIZED", "it was brought up before", "",
     kRefused},
    {ROLU_STATUS_VPM_UNKNOWN_VALUE, "ROLU_STATUS_VPM_UNKNOWN_VALUE",
     "the MCU reported a value that the library does not know",
     "the MCU's firmware may be newer than the library", kRefused},
    {ROLU_STATUS_VPM_OPEN_FAILED, "ROLU_STATUS_VPM_OPEN_FAILED", "the MCU's port cannot be opened",
     "it may be missing, or need root; 'rolu doctor' looks for the cause", kNoAnswer},
    {ROLU_STATUS_VPM_ERROR_REPLY, "ROLU_STATUS_VPM_ERROR_REPLY", "the MCU answered with an error",
     "its firmware may not know the question", kRefused},
    {ROLU_STATUS_VPM_SEND_FAILED, "ROLU_STATUS_VPM_SEND_FAILED", "the command could not be sent", kAskDoctor,
     kNoAnswer},
    {ROLU_STATUS_VPM_INVALID_REPLY, "ROLU_STATUS_VPM_INVALID_REPLY",
     "the MCU's answer does not have the expected form", "its firmware may not know this part", kRefused},
    {ROLU_STATUS_VPM_NO_REPLY, "ROLU_STATUS_VPM_NO_REPLY", "the MCU did not answer in time", kAskDoctor,
     kNoAnswer},
    {ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE, "ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE",
     "the G-sensor has no sample to give", "ask again in a moment", kRefused},
    {ROLU_STATUS_GSENSOR_INVALID_REPLY, "ROLU_STATUS_GSENSOR_INVALID_REPLY",
     "the G-sensor's answer does not have the expected form", "", kRefused},
    {ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED, "ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED",
     "the G-sensor's alarm is already on", "", kRefused},
    {ROLU_STATUS_GSENSOR_NO_ALARM_DATA, "ROLU_STATUS_GSENSOR_NO_ALARM_DATA", "no alarm sample is queued", "",
     kRefused},
    {ROLU_STATUS_DISPLAY_AVAILABLE, "ROLU_STATUS_DISPLAY_AVAILABLE", "the display can be used", "", kDone},
    {ROLU_STATUS_IIC_AVAILABLE, "ROLU_STATUS_IIC_AVAILABLE", "the I2C bus can be used", "", kDone},
};

constexpr StatusWords kUnknown = {0, "unknown status",
                                  "the library gave a status that this program does not know",
                                  "the library may be newer than this program", kRefused};

}  // namespace

const StatusWords& WordsOf(ROLU_STATUS status) {
  for (const StatusWords& words : kWords) {
    if (words.status == status) return words;
  }
  return kUnknown;
}

std::string CodeText(ROLU_STATUS status) {
  return fmt::format("0x{:04X}", status);
}

std::string DescribeShortly(ROLU_STATUS status) {
  return fmt::format("{} ({})", WordsOf(status).words, CodeText(status));
}

std::string Describe(ROLU_STATUS status) {
  const StatusWords& words = WordsOf(status);
  return fmt::format("{} ({}, {})", words.words, words.name, CodeText(status));
}

std::string DescribeWithHint(ROLU_STATUS status) {
  const StatusWords& words = WordsOf(status);
  return *words.hint == '\0' ? Describe(status) : fmt::format("{}; {}", Describe(status), words.hint);
}

void ThrowUnlessDone(ROLU_STATUS status, const std::string& doing) {
  const ExitStatus exit_status = WordsOf(status).exit_status;
  if (exit_status == kDone) return;
  throw CommandError(exit_status, fmt::format("could not {}: {}", doing, DescribeWithHint(status)));
}

}  // namespace rolu
