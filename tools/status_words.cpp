#include "tools/status_words.h"

#include <errno.h>
#include <fmt/format.h>
#include <unistd.h>

#include "cli/messages.h"
#include "tools/port_owner.h"

namespace rolu {
namespace {

constexpr char kAskDoctor[] = "'rolu doctor' looks for the cause";

constexpr StatusWords kWords[] = {
    {ROLU_STATUS_SUCCESS, "ROLU_STATUS_SUCCESS", "done", "The operation was done.", "", kDone},
    {ROLU_STATUS_NULL_POINTER, "ROLU_STATUS_NULL_POINTER", "the library was given no place for its result",
     "A program passed a null pointer where a result goes.", "correct the program", kRefused},
    {ROLU_STATUS_INVALID_PARAMETER, "ROLU_STATUS_INVALID_PARAMETER", "the board refused the value",
     "The library found a value out of its range, or the MCU answered ERR-M08 to it.",
     "'rolu list' tells the ranges", kRefused},
    {ROLU_STATUS_NOT_SUPPORTED, "ROLU_STATUS_NOT_SUPPORTED", "this board does not provide it",
     "The interface has the operation, but no board of this kind does.", "", kRefused},
    {ROLU_STATUS_NOT_INITIALIZED, "ROLU_STATUS_NOT_INITIALIZED",
     "this part of the board could not be brought up",
     "A program called a family before its Initialize, or after it had failed.", kAskDoctor, kNoAnswer},
    {ROLU_STATUS_TIMEOUT, "ROLU_STATUS_TIMEOUT", "the alarm sample could not be taken in time",
     "The library was busy with a line from the MCU for a second.", "try again", kNoAnswer},
    {ROLU_STATUS_FILE_OPEN_FAILED, "ROLU_STATUS_FILE_OPEN_FAILED",
     "the display driver's file cannot be opened",
     "The file of the backlight is missing, or the program may not open it.", kAskDoctor, kNoAnswer},
    {ROLU_STATUS_FILE_ACCESS_FAILED, "ROLU_STATUS_FILE_ACCESS_FAILED",
     "a device file or a system command gave no usable answer",
     "A read, a write or ifconfig failed, or gave something else than expected.", kAskDoctor, kRefused},
    {ROLU_STATUS_DEVICE_OPEN_FAILED, "ROLU_STATUS_DEVICE_OPEN_FAILED", "the device cannot be opened",
     "Its file is missing, or the program may not open it; the digital lines are missing until they are "
     "prepared.",
     "it may be missing, or need root; 'rolu doctor' looks for the cause", kNoAnswer},
    {ROLU_STATUS_DEVICE_IO_FAILED, "ROLU_STATUS_DEVICE_IO_FAILED", "the device refused the transfer",
     "Nothing answers at that address of the I2C bus, or the device is busy.",
     "check the address; 'rolu i2c detect' looks who answers", kRefused},
    {ROLU_STATUS_ALREADY_INITIALIZED, "ROLU_STATUS_ALREADY_INITIALIZED", "it was brought up before",
     "A program called Initialize twice.", "", kRefused},
    {ROLU_STATUS_VPM_UNKNOWN_VALUE, "ROLU_STATUS_VPM_UNKNOWN_VALUE",
     "the MCU reported a value that the library does not know",
     "The answer has the right form, but a meaning that this version of the library lacks.",
     "the MCU's firmware may be newer than the library", kRefused},
    {ROLU_STATUS_VPM_OPEN_FAILED, "ROLU_STATUS_VPM_OPEN_FAILED", "the MCU's port cannot be opened",
     "The port is missing, the program may not open it, or it is no serial port.",
     "it may be missing, or need root; 'rolu doctor' looks for the cause", kNoAnswer},
    {ROLU_STATUS_VPM_ERROR_REPLY, "ROLU_STATUS_VPM_ERROR_REPLY", "the MCU answered with an error",
     "The MCU does not know the command, or cannot carry it out now.",
     "its firmware may not know the question", kRefused},
    {ROLU_STATUS_VPM_SEND_FAILED, "ROLU_STATUS_VPM_SEND_FAILED", "the command could not be sent",
     "The queue of commands is full: the port takes no bytes.", kAskDoctor, kNoAnswer},
    {ROLU_STATUS_VPM_INVALID_REPLY, "ROLU_STATUS_VPM_INVALID_REPLY",
     "the MCU's answer does not have the expected form",
     "The answer was cut or garbled, or belongs to another command: two programs at one port take answers "
     "from each other.",
     "its firmware may not know this part", kRefused},
    {ROLU_STATUS_VPM_NO_REPLY, "ROLU_STATUS_VPM_NO_REPLY", "the MCU did not answer in time",
     "No answer came within 3 s: the MCU is off or busy, the line is broken, or another program took the "
     "answer.",
     kAskDoctor, kNoAnswer},
    {ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE, "ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE",
     "the G-sensor has no sample to give", "The G-sensor was switched on just now.", "ask again in a moment",
     kRefused},
    {ROLU_STATUS_GSENSOR_INVALID_REPLY, "ROLU_STATUS_GSENSOR_INVALID_REPLY",
     "the G-sensor's answer does not have the expected form", "The answer was cut or garbled.", "ask again",
     kRefused},
    {ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED, "ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED",
     "the G-sensor's alarm is already on", "A program switched the alarm on twice.", "", kRefused},
    {ROLU_STATUS_GSENSOR_NO_ALARM_DATA, "ROLU_STATUS_GSENSOR_NO_ALARM_DATA", "no alarm sample is queued",
     "All alarms have been taken; it ends the loop that takes them.", "", kRefused},
    {ROLU_STATUS_DISPLAY_AVAILABLE, "ROLU_STATUS_DISPLAY_AVAILABLE", "the display can be used",
     "The answer of a display that is there.", "", kDone},
    {ROLU_STATUS_IIC_AVAILABLE, "ROLU_STATUS_IIC_AVAILABLE", "the I2C bus can be used",
     "The answer of an I2C bus that is there.", "", kDone},
};

constexpr StatusWords kUnknown = {0,
                                  "unknown status",
                                  "the library gave a status that this program does not know",
                                  "",
                                  "the library may be newer than this program",
                                  kRefused};

// The MCU refuses a question with the reply that stands for a bad value elsewhere.
constexpr StatusWords kRefusedQuestion = {
    ROLU_STATUS_INVALID_PARAMETER,         "ROLU_STATUS_INVALID_PARAMETER",
    "the MCU refused the question",        "",
    "its firmware may not know this part", kRefused};

}  // namespace

std::span<const StatusWords> AllStatusWords() {
  return kWords;
}

const StatusWords& WordsOf(ROLU_STATUS status, Act act) {
  if (act == Act::kRead && status == ROLU_STATUS_INVALID_PARAMETER) return kRefusedQuestion;
  for (const StatusWords& words : kWords) {
    if (words.status == status) return words;
  }
  return kUnknown;
}

std::string HintOf(ROLU_STATUS status, Act act) {
  // The library does not tell why the port could not be opened.
  if (status == ROLU_STATUS_VPM_OPEN_FAILED && access(kMcuPort, R_OK | W_OK) != 0) {
    const bool is_denied = errno == EACCES;
    return fmt::format("{}: {}{}", kMcuPort, ErrnoText(errno), is_denied ? "; root may open it" : "");
  }
  return WordsOf(status, act).hint;
}

std::string CodeText(ROLU_STATUS status) {
  return fmt::format("0x{:04X}", status);
}

std::string DescribeShortly(ROLU_STATUS status, Act act) {
  return fmt::format("{} ({})", WordsOf(status, act).words, CodeText(status));
}

std::string Describe(ROLU_STATUS status, Act act) {
  const StatusWords& words = WordsOf(status, act);
  return fmt::format("{} ({}, {})", words.words, words.name, CodeText(status));
}

std::string DescribeWithHint(ROLU_STATUS status, Act act) {
  const std::string hint = HintOf(status, act);
  return hint.empty() ? Describe(status, act) : fmt::format("{}; {}", Describe(status, act), hint);
}

void ThrowUnlessDone(ROLU_STATUS status, const std::string& doing, Act act) {
  const ExitStatus exit_status = WordsOf(status).exit_status;
  if (exit_status == kDone) return;
  throw CommandError(exit_status, fmt::format("could not {}: {}", doing, DescribeWithHint(status, act)));
}

}  // namespace rolu
