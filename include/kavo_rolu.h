/* SPDX-License-Identifier: MIT */
/**
 * @file kavo_rolu.h
 * @brief One C interface to the hardware of the in-vehicle computer.
 *
 * Link with -lkavo_rolu. The header is valid C99 and C++11 by itself.
 *
 * @par Return values
 * Every function returns a status code (`ROLU_STATUS`, 0xC000 is success). Results are written
 * through pointer arguments, and only on success unless the function says otherwise: on any other
 * status the caller's variables keep what they held.
 *
 * @par Families and their states
 * Each family has its own state. CORE is switched by KAVO_ROLU_CORE_Init and KAVO_ROLU_CORE_DeInit.
 * The families that talk to the power-management microcontroller (the MCU: VPM, WD) have their own
 * Initialize and Deinitialize; the first Initialize opens the serial link to the MCU and starts the
 * library's one I/O thread, the last Deinitialize stops the thread and closes the link. A call into
 * a family that is not initialised answers #ROLU_STATUS_NOT_INITIALIZED and has no other effect.
 * Deinitialise every family that you initialised before the process ends or the library is unloaded;
 * unloading it while the link is open is not allowed. Settings live in the MCU: they stay when the
 * family is deinitialised and when the process ends.
 *
 * @par MCU statuses
 * A function that sends a command to the MCU can return, besides what it lists itself:
 * - #ROLU_STATUS_INVALID_PARAMETER: the MCU refused a parameter (its answer "ERR-M08");
 * - #ROLU_STATUS_VPM_ERROR_REPLY: the MCU answered with another error;
 * - #ROLU_STATUS_VPM_SEND_FAILED: the command could not be queued;
 * - #ROLU_STATUS_VPM_NO_REPLY: no answer within 3000 ms.
 *
 * "MCU statuses" below stands for these four. After any of them the call can simply be repeated.
 *
 * @par How long a call blocks
 * One command is pending at the MCU at a time, in the whole process. A call that sends a command
 * first waits for its turn, without a limit of its own, behind the calls of other threads; then at
 * most 3000 ms for the answer; then it sleeps its post-delay, if it has one, while it keeps the other
 * threads' commands back. "Blocks: 1 command" stands for the turn plus at most 3000 ms. A call that
 * says "does not block" takes no lock and waits for nothing.
 *
 * The waits end at a time of the system's wall clock (CLOCK_REALTIME). If the clock is set while a
 * call waits, that one wait is shortened or lengthened by as much; the next call is whole again.
 *
 * @par Thread safety
 * Any function may run at the same time as any other on any thread, with these exceptions:
 * - Initialize or Deinitialize of a family must not overlap another Initialize, Deinitialize or any
 *   other operation of the same family. Different families may be brought up and down at once.
 * - A call that changes one of two settings which the MCU stores together reads both, changes one and
 *   writes both; two threads that change both at once can undo each other's change. It is stated
 *   where it holds.
 *
 * No function may be called from a signal handler. The library's thread blocks all signals, so the
 * application's handlers run on the application's threads. After fork() the child must not use the
 * MCU families.
 *
 * @par One process per unit
 * The link does not stop a second process from opening the same serial port; two processes then take
 * each other's answers. Let one process own the MCU.
 */
#ifndef KAVO_ROLU_H
#define KAVO_ROLU_H

#include <stdbool.h>
#include <stdint.h>

#if defined(__GNUC__)
#define KAVO_ROLU_API __attribute__((visibility("default")))
#else
#define KAVO_ROLU_API
#endif

/* Enumerations are 32 bits wide in both languages and may hold values without an enumerator. */
#ifdef __cplusplus
#define KAVO_ROLU_ENUM(name) enum name : int32_t
#define KAVO_ROLU_STATUS_ENUM enum : uint16_t
#else
#define KAVO_ROLU_ENUM(name) \
  typedef int32_t name;      \
  enum
#define KAVO_ROLU_STATUS_ENUM enum
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A status code: unsigned, 16 bits, one of the ROLU_STATUS_ values. */
typedef uint16_t ROLU_STATUS;

KAVO_ROLU_STATUS_ENUM{
    ROLU_STATUS_SUCCESS = 0xC000,           /**< Done. */
    ROLU_STATUS_NULL_POINTER = 0xC001,      /**< A required pointer is null. */
    ROLU_STATUS_INVALID_PARAMETER = 0xC002, /**< An argument is missing or out of range. */
    ROLU_STATUS_NOT_SUPPORTED = 0xC003,     /**< The board does not provide this operation or value. */
    ROLU_STATUS_NOT_INITIALIZED = 0xC005, /**< The family, or the core for families that follow it, is off. */
    ROLU_STATUS_TIMEOUT = 0xC008,         /**< A G-sensor alarm sample could not be taken in time. */
    ROLU_STATUS_FILE_OPEN_FAILED = 0xC009,    /**< A display attribute file could not be opened. */
    ROLU_STATUS_FILE_ACCESS_FAILED = 0xC00A,  /**< An attribute file or a shell command failed, or a
                                                   peripheral's state is neither on nor off. */
    ROLU_STATUS_DEVICE_OPEN_FAILED = 0xC00B,  /**< A device node could not be opened. */
    ROLU_STATUS_DEVICE_IO_FAILED = 0xC00C,    /**< A device refused a control call or a transfer. */
    ROLU_STATUS_ALREADY_INITIALIZED = 0xC00F, /**< Initialised twice without a deinitialise. */
    ROLU_STATUS_VPM_UNKNOWN_VALUE = 0xC043,   /**< The MCU reported a value the library has no meaning for. */
    ROLU_STATUS_VPM_OPEN_FAILED = 0xC044,     /**< The link to the MCU could not be opened. */
    ROLU_STATUS_VPM_ERROR_REPLY = 0xC045,     /**< The MCU answered with an error or with an unknown value. */
    ROLU_STATUS_VPM_SEND_FAILED = 0xC046,     /**< A command could not be queued. */
    ROLU_STATUS_VPM_INVALID_REPLY = 0xC047,   /**< The MCU's answer does not have the expected form. */
    ROLU_STATUS_VPM_NO_REPLY = 0xC048,        /**< The MCU did not answer in time. */
    ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE = 0xC070, /**< The G-sensor has no sample to give. */
    ROLU_STATUS_GSENSOR_INVALID_REPLY = 0xC071,    /**< A G-sensor answer does not have the expected form. */
    ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED = 0xC072, /**< The G-sensor alarm is already on. */
    ROLU_STATUS_GSENSOR_NO_ALARM_DATA = 0xC073,         /**< No alarm sample is queued. */
    ROLU_STATUS_DISPLAY_AVAILABLE = 0xC0D1,             /**< The display family can be used. */
    ROLU_STATUS_IIC_AVAILABLE = 0xC0E1                  /**< The I2C family can be used. */
};

/* ---- Types ---------------------------------------------------------------------------------- */

/** Where KAVO_ROLU_CORE_GetPlatformName writes; either pointer may be null, not both. */
typedef struct ROLU_PLATFORM_NAME {
  char* name;       /**< Receives the characters, without a terminating NUL. */
  uint32_t* length; /**< Receives the number of characters. */
} ROLU_PLATFORM_NAME;

/** Where KAVO_ROLU_CORE_GetImageinfo writes. */
typedef struct ROLU_IMAGE_INFO {
  void* unused1; /**< Not read or written. */
  void* unused2; /**< Not read or written. */
  char* release; /**< 128 bytes; receives the kernel release, padded with NUL. */
  char* version; /**< 128 bytes; receives the kernel version, padded with NUL. */
} ROLU_IMAGE_INFO;

/** The MCU's firmware identification: at most 31 characters, padded with NUL. */
typedef struct VPM_FIRMWARE_INFO {
  char text[32]; /**< "*VER:" major "." minor "*". */
} VPM_FIRMWARE_INFO;

/** The vehicle's battery system. The values 0 and 1 exist only for KAVO_ROLU_VPM_GetLBPThresholdInfo. */
KAVO_ROLU_ENUM(CAR_BATTERY_MODE){CAR_BATTERY_MODE_24V = 2, CAR_BATTERY_MODE_12V = 3};

/** The MCU's battery range of one battery system, in volts; what the limits mean is the MCU's definition. */
typedef struct BATTERY_INFO {
  float range_end;
  float range_start;
  float range_mid;
  float range_mid_copy; /**< The same value as range_mid. */
} BATTERY_INFO;

/** Ignition mode; what the two modes do is the MCU's definition. */
KAVO_ROLU_ENUM(IGNITION_MODE){IGNITION_MODE_1 = 1, IGNITION_MODE_2 = 2};

/** A cause of shutdown that can be switched on and off; the MCU defines what each one is. */
KAVO_ROLU_ENUM(SHUTDOWN_SOURCE){SHUTDOWN_SOURCE_0 = 0, SHUTDOWN_SOURCE_1 = 1};

/** A cause of wake-up; the MCU defines what each one is, except the clock's alarm. */
KAVO_ROLU_ENUM(WAKEUP_SOURCE){WAKEUP_SOURCE_NONE = -1, /**< No wake-up is recorded; only ever an output. */
                              WAKEUP_SOURCE_0 = 0,         WAKEUP_SOURCE_1 = 1, WAKEUP_SOURCE_2 = 2,
                              WAKEUP_SOURCE_3 = 3,         WAKEUP_SOURCE_4 = 4, WAKEUP_SOURCE_5 = 5,
                              WAKEUP_SOURCE_RTC_ALARM = 6, /**< The wake-up alarm of the MCU's clock. */
                              WAKEUP_SOURCE_10 = 10};

/** A time of the MCU's clock; plain numbers, not BCD. */
typedef struct VPM_RTC_TIME {
  uint8_t year;    /**< 0 to 99: 2000 to 2099. */
  uint8_t month;   /**< 1 to 12. */
  uint8_t day;     /**< 1 to the month's length. */
  uint8_t weekday; /**< 0 to 6; which day is 0 is the MCU's definition. */
  uint8_t hour;    /**< 0 to 23. */
  uint8_t minute;  /**< 0 to 59. */
  uint8_t second;  /**< 0 to 59. */
} VPM_RTC_TIME;

/** A time of the wake-up alarm; plain numbers, not BCD. */
typedef struct VPM_ALARM_TIME {
  uint8_t weekday; /**< 0 to 6. */
  uint8_t hour;    /**< 0 to 23. */
  uint8_t minute;  /**< 0 to 59. */
} VPM_ALARM_TIME;

/** How often the wake-up alarm comes: the fields of its time that must match the clock. */
KAVO_ROLU_ENUM(ALARM_MODE){ALARM_MODE_NONE = -1,  /**< No field matches; only ever an output. */
                           ALARM_MODE_HOURLY = 0, /**< The minute. */
                           ALARM_MODE_DAILY = 1,  /**< Hour and minute. */
                           ALARM_MODE_WEEKLY = 2 /**< Weekday, hour and minute. */};

/** The backup battery's information record. */
typedef struct BACKUP_BATTERY_INFO {
  int32_t info_value;   /**< A number whose meaning is the MCU's. */
  uint32_t reserved;    /**< Not written. */
  uint8_t status_bit0;  /**< Set to 1 when this bit of the status word is set; else not written. */
  uint8_t status_bit1;  /**< As status_bit0. */
  uint8_t status_bit2;  /**< As status_bit0. */
  uint8_t status_bit7;  /**< As status_bit0. */
  uint8_t status_bit8;  /**< As status_bit0. */
  uint8_t status_bit9;  /**< As status_bit0. */
  uint8_t status_bit10; /**< As status_bit0. */
  uint8_t status_bit11; /**< As status_bit0. */
  uint8_t status_bit14; /**< As status_bit0. */
  uint8_t status_bit15; /**< As status_bit0. */
} BACKUP_BATTERY_INFO;

/* ---- CORE: the library's switch, platform facts, reset of the board ------------------------- */

/**
 * Switches the core on, for the families that have no Initialize of their own.
 * Opens and allocates nothing.
 *
 * @retval ROLU_STATUS_SUCCESS The core is on.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was on before.
 *
 * Does not block. Two threads that call it at once may both get success.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_Init(void);

/**
 * Switches the core off. The MCU families keep their own state.
 *
 * @retval ROLU_STATUS_SUCCESS The core is off.
 * @retval ROLU_STATUS_NOT_INITIALIZED It was off before.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_DeInit(void);

/**
 * Reads the version of the library's interface, whatever the state.
 *
 * @param[out] version At least 17 bytes; receives exactly 17 characters without a terminating NUL.
 * @retval ROLU_STATUS_SUCCESS The version was written.
 * @retval ROLU_STATUS_NULL_POINTER `version` is null.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_GetLibVersion(unsigned char* version);

/**
 * Tells whether the core is on.
 *
 * @retval ROLU_STATUS_SUCCESS It is.
 * @retval ROLU_STATUS_NOT_INITIALIZED It is not.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_Available(void);

/**
 * Reads the machine's hardware name (for example "armv7l"), at most 64 characters.
 *
 * Ask for the length first (name null), or clear the buffer: the name is not NUL-terminated.
 *
 * @param[in,out] platform Where to write.
 * @retval ROLU_STATUS_SUCCESS What was asked for was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off.
 * @retval ROLU_STATUS_INVALID_PARAMETER `platform`, or both its pointers, are null.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_GetPlatformName(ROLU_PLATFORM_NAME* platform);

/**
 * Reads the kernel's release and version, each into 128 bytes padded with NUL.
 *
 * @param[in,out] info Where to write; both `release` and `version` must be given.
 * @retval ROLU_STATUS_SUCCESS Both buffers were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off.
 * @retval ROLU_STATUS_INVALID_PARAMETER `info` or one of the two buffers is null; nothing was written.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_GetImageinfo(ROLU_IMAGE_INFO* info);

/**
 * Resets the board, through its reset controller on the I2C bus. On success the board resets.
 *
 * @retval ROLU_STATUS_SUCCESS The order was given.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The I2C bus could not be opened.
 * @retval ROLU_STATUS_DEVICE_IO_FAILED The controller could not be addressed; nothing was written.
 *
 * Blocks for the length of one I2C transfer.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_Reset(void);

/**
 * Not provided by this board.
 * @param value Not used.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_AccessBootCounter(uint32_t value);

/** Not provided by this board. @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_SoftReset(void);

/** Not provided by this board. @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_HardReset(void);

/** Not provided by this board. @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_RegistrySave(void);

/** Not provided by this board. @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_CORE_RegistryClean(void);

/* ---- VPM: vehicle power management, life and identity --------------------------------------- */

/**
 * Brings the family up: opens the link to the MCU (if it is not open yet), greets the MCU, reads its
 * firmware identification, the voltage scales and the battery ranges. Prints one line with the
 * firmware version on standard output.
 *
 * An MCU that does not tell its voltage scales does not stop the start-up: 0.01582 V per unit (24 V
 * system) and 0.015385 V per unit (12 V system) are used. On any failure the family stays off and
 * gives back what it opened.
 *
 * @param unused Has no effect.
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was sent.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED The port is missing, is no terminal, refuses its set-up, or its
 *         descriptor would be 1024 or above; or the I/O thread could not be started.
 * @return or one of the MCU statuses, of the firmware query or of a range query.
 *
 * Blocks: at most 2000 ms for the link, then 6 commands, one after the other.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_Initialize(uint8_t unused);

/**
 * Takes the family down and closes the link if no other family uses it.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED It was down before.
 *
 * Blocks: at most 2000 ms behind the commands of other threads, then until the I/O thread has ended,
 * which is at once on an idle link and after the line in hand otherwise (at most about 1 s).
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_Deinitialize(void);

/**
 * Hands out the firmware identification that Initialize read. Sends nothing.
 *
 * @param[out] info Receives 32 bytes.
 * @retval ROLU_STATUS_SUCCESS `info` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `info` is null.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetFWVersion(VPM_FIRMWARE_INFO* info);

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLibVersion(unsigned char* version);

/**
 * Asks the MCU for the platform's name.
 *
 * @param[out] name At least 13 bytes; receives at most 12 characters and NUL up to the 13th byte.
 * @retval ROLU_STATUS_SUCCESS `name` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `name` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPlatformName(char* name);

/* ---- VPM: car battery ------------------------------------------------------------------------ */

/**
 * Hands out the battery range that Initialize read for one battery system. Sends nothing, and works
 * in every state: all zeros before the first Initialize; the values survive Deinitialize.
 *
 * The library does not compare thresholds with this range; the MCU judges them.
 *
 * @param mode 2 (24 V) or 3 (12 V); 0 and 1 are accepted and give zeros.
 * @param[out] info Receives the range, in volts.
 * @retval ROLU_STATUS_SUCCESS `info` was written.
 * @retval ROLU_STATUS_NOT_SUPPORTED `mode` is below 0 or above 3.
 * @retval ROLU_STATUS_INVALID_PARAMETER `info` is null.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE mode, BATTERY_INFO* info);

/**
 * Measures the car battery's voltage.
 *
 * @param[out] volts Receives the voltage in volts.
 * @retval ROLU_STATUS_SUCCESS `volts` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `volts` is null.
 * @retval ROLU_STATUS_VPM_ERROR_REPLY The MCU reports a battery mode other than 2 or 3.
 * @return or one of the MCU statuses.
 *
 * Blocks: 2 commands (the battery mode, then the voltage); another thread's command may run between.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetCarBatteryVoltage(float* volts);

/**
 * Tells the MCU which battery system the vehicle has.
 *
 * The change first switches the pre-boot and the low-battery protection off, and they stay off until
 * KAVO_ROLU_VPM_SetPrebootLBPStatus and KAVO_ROLU_VPM_SetLBPStatus switch them on again. If that
 * first step fails, the mode is not sent, and the protections may or may not be off.
 *
 * @param mode #CAR_BATTERY_MODE_24V or #CAR_BATTERY_MODE_12V.
 * @retval ROLU_STATUS_SUCCESS The mode is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Another mode; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 2 commands, each with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetCurrentCarBatteryMode(CAR_BATTERY_MODE mode);

/**
 * Asks the MCU which battery system is set.
 *
 * @param[out] mode Receives #CAR_BATTERY_MODE_24V or #CAR_BATTERY_MODE_12V.
 * @retval ROLU_STATUS_SUCCESS `mode` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `mode` is null.
 * @retval ROLU_STATUS_VPM_ERROR_REPLY The MCU reports another mode.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetCurrentCarBatteryMode(CAR_BATTERY_MODE* mode);

/**
 * Sets the voltage at which the low-battery protection shuts a running computer down, for a 12 V
 * system.
 *
 * @param volts In volts, rounded to the nearest of the MCU's units; a negative voltage is sent as 0.
 *        The library checks no range, the MCU does (KAVO_ROLU_VPM_GetLBPThresholdInfo tells it).
 * @retval ROLU_STATUS_SUCCESS The threshold is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem(float volts);

/**
 * Reads the threshold that KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem sets.
 *
 * @param[out] volts Receives the threshold in volts, a multiple of the MCU's unit.
 * @retval ROLU_STATUS_SUCCESS `volts` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `volts` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem(float* volts);

/** As KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, for a 24 V system. @param volts In volts. @return The same.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem(float volts);

/** As KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, for a 24 V system. @param[out] volts In volts. @return The
 * same. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem(float* volts);

/**
 * Sets the voltage below which the pre-boot protection keeps the computer from starting, for a 12 V
 * system. Range, rounding, statuses and blocking as KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem.
 * @param volts In volts. @return The same statuses.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem(float volts);

/**
 * Reads the pre-boot threshold of a 12 V system; else as KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem.
 * @param[out] volts In volts. @return The same statuses.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem(float* volts);

/** As KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, for a 24 V system. @param volts In volts. @return The
 * same. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem(float volts);

/** As KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, for a 24 V system. @param[out] volts In volts. @return
 * The same. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem(float* volts);

/**
 * Switches the low-battery protection of the running computer on or off.
 *
 * The MCU stores this flag together with the pre-boot flag: the call reads both, then writes both.
 * Two threads that change the two flags at once can undo each other's change.
 *
 * @param enable 0 is off, any other value on.
 * @retval ROLU_STATUS_SUCCESS The protection is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses; if the reading failed, nothing was written.
 *
 * Blocks: 2 commands, the second with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPStatus(char enable);

/**
 * Tells whether the low-battery protection is on.
 *
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPStatus(char* enabled);

/** As KAVO_ROLU_VPM_SetLBPStatus, for the pre-boot protection. @param enable 0 is off. @return The same. */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootLBPStatus(char enable);

/** As KAVO_ROLU_VPM_GetLBPStatus, for the pre-boot protection. @param[out] enabled 1 or 0. @return The same.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootLBPStatus(char* enabled);

/* ---- WD: the MCU's watchdog ------------------------------------------------------------------ */

/**
 * Brings the family up: opens the link to the MCU (if it is not open yet) and greets the MCU, whose
 * answer does not matter. Neither starts nor stops the watchdog.
 *
 * @param unused Has no effect.
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was sent.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED As for KAVO_ROLU_VPM_Initialize.
 *
 * Blocks: at most 2000 ms for the link, then 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Initialize(uint8_t unused);

/**
 * Takes the family down. Sends no watchdog command: a watchdog that is on stays on, and bites if
 * nobody triggers it.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED It was down before.
 *
 * Blocks: as KAVO_ROLU_VPM_Deinitialize.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Deinitialize(void);

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_GetLibVersion(unsigned char* version);

/**
 * Triggers the watchdog: starts its time anew.
 *
 * @retval ROLU_STATUS_SUCCESS The MCU took it.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Trigger(void);

/**
 * Switches the watchdog on or off.
 *
 * @param enable true switches it on.
 * @retval ROLU_STATUS_SUCCESS The MCU took it.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Enabled(bool enable);

/**
 * Reads the watchdog's time.
 *
 * @param[out] time Receives the time, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `time` was written.
 * @retval ROLU_STATUS_NULL_POINTER `time` is null, whether or not the family is up.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_GetTime(unsigned short* time);

/**
 * Sets the watchdog's time.
 *
 * @param time 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The time is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `time` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_SetTime(unsigned short time);

/**
 * Tells the range of the watchdog's time: 1 to 65535. Sends nothing, and works in every state.
 *
 * @param[out] minimum Receives 1.
 * @param[out] maximum Receives 65535.
 * @retval ROLU_STATUS_SUCCESS Both were written.
 * @retval ROLU_STATUS_NULL_POINTER One of them is null; neither was written.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_GetRange(unsigned long* minimum, unsigned long* maximum);

#ifdef __cplusplus
}
#endif

#endif /* KAVO_ROLU_H */
