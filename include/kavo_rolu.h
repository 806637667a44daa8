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
 * status the caller's variables keep what they held. State and arguments are tested before anything is
 * done, in the order in which a function lists its statuses.
 *
 * A `bool` argument is true when its byte is not 0.
 *
 * @par Families and their states
 * Each family has its own state. CORE is switched by KAVO_ROLU_CORE_Init and KAVO_ROLU_CORE_DeInit;
 * DISPLAY, LIGHTSENSOR and the pins of DIO follow it.
 * The families that talk to the power-management microcontroller (the MCU: VPM, WD, GSENSOR, PERIPHERALCTRL)
 * have their own Initialize and Deinitialize; the first Initialize opens the serial link to the MCU and
 * starts the library's one I/O thread, the last Deinitialize stops the thread and closes the link. A call
 * into a family that is not initialised answers #ROLU_STATUS_NOT_INITIALIZED and has no other effect, unless
 * the function says otherwise.
 *
 * A Deinitialize that does not get its turn at the link within 2000 ms takes its family down all the same.
 * The thread that ends the current command then gives the link back instead: the port closes a little later.
 * The family can be initialised again at once.
 *
 * Before the process ends or the library is unloaded, deinitialise every family that you initialised. Do not
 * unload the library while a family is up or a call is running. Settings live in the MCU: they stay
 * when the family is deinitialised and when the process ends.
 *
 * @par MCU statuses
 * A function that sends a command to the MCU can return, besides what it lists itself:
 * - #ROLU_STATUS_INVALID_PARAMETER: the MCU refused a parameter (its answer "ERR-M08");
 * - #ROLU_STATUS_VPM_ERROR_REPLY: the MCU answered with another error;
 * - #ROLU_STATUS_VPM_SEND_FAILED: the command could not be queued; the MCU has not seen it;
 * - #ROLU_STATUS_VPM_NO_REPLY: no answer within 3000 ms; the MCU may have carried the command out.
 *
 * "MCU statuses" below stands for these four. After any of them the call can simply be repeated.
 *
 * @par Answers of the MCU
 * An answer is an error when it contains one of 23 codes: ERR-C01, ERR-R01, ERR-M01 to ERR-M04, ERR-M06,
 * ERR-M08, ERR-W01, ERR-W02, ERR-B01, ERR-B02, ERR-E01 to ERR-E04, ERR-L01, ERR-G01, ERR-G02, ERR-A01,
 * ERR-T01, ERR-Q01 and ERR-Q02. With any other text an order has succeeded, and a question reads that text.
 *
 * Unless the function says otherwise, it reads a number at the answer's start, in base 16, as strtol does. An
 * answer without a number reads as 0, with success; "ERR-M05", which is none of the 23 codes, reads as 14. A
 * number that does not fit 32 bits becomes the nearest one that fits, and a smaller variable receives the low
 * bits. A flag is on when its character is '1', else off.
 *
 * A line of more than 63 characters is thrown away whole. A line that does not end, whether too long or not,
 * is forgotten after at most half a second of silence.
 *
 * @par Late answers
 * The wire does not say which command an answer is for. An answer that comes after its call gave up is thrown
 * away, unless the next command has already left. In that case the next call takes the late answer for its
 * own, the call after it takes the next call's answer, and so on. This ends at a pause between two calls that
 * is long enough for the answer left over to come and be thrown away.
 *
 * @par How long a call blocks
 * Each function says after "Blocks:" how long it may take, in the terms below. A function that says "Does not
 * block" takes no lock and waits for nothing.
 * - "1 command": a turn, then at most 3000 ms for the MCU's answer (for each of its lines, if it has
 *   several). With a post-delay the call then sleeps, and other threads' commands wait until it wakes up.
 *   Each of n commands has its own turn; other threads' commands may run in between.
 * - "a turn": a wait without a limit of its own. The whole process has one command pending at the MCU at a
 *   time, so a call waits for other threads' commands that go first, with their post-delays, and for their
 *   openings and closings of the link. Turns do not come in the order in which calls ask for them.
 * - "the link": at most 2000 ms, turn included; then as long as the port's driver takes to open the port.
 * - "a closing": at most 2000 ms for a turn. The last family to go down then waits until the I/O thread has
 *   ended, at most 1000 ms: that thread ends at once on a quiet line, else after the line that it is
 *   handling. A thread that gives the link back for another one has this wait before or after its own
 *   command.
 * - "the inner lock": held by others for moments, never while they wait for the MCU.
 * - "device files" and "bus transfers": as long as the kernel's driver takes.
 * - "the shell command": until it has ended, without a limit.
 *
 * A signal ends none of the library's own waits early. The time for which a thread waits for a processor
 * comes on top.
 *
 * The waits for an answer, for the link, for the turn of a closing and, where it has a limit, for the inner
 * lock end at a time of the system's wall clock (CLOCK_REALTIME). Setting the clock forward by more than is
 * left of such a wait ends the wait: the call returns #ROLU_STATUS_VPM_NO_REPLY, #ROLU_STATUS_VPM_OPEN_FAILED
 * or #ROLU_STATUS_TIMEOUT although the MCU may be about to answer, and a closing goes on as after 2000 ms. A
 * suspend counts as setting the clock forward by its length. Setting the clock back makes the wait longer by
 * as much, unless what it waits for comes. Only the current wait is changed; the next one has its full length
 * again. Post-delays do not follow the wall clock, and a suspend does not shorten them.
 *
 * @par Thread safety
 * Any function may run at the same time as any other on any thread, but Initialize or Deinitialize of a
 * family must not overlap another Initialize, Deinitialize or any other operation of the same family.
 * Different families may come up and go down at the same time.
 *
 * A call of several steps is not atomic as a whole: other threads' calls may run between two steps. Do not
 * let these calls overlap if both are to have their full effect:
 * - KAVO_ROLU_VPM_SetLBPStatus, KAVO_ROLU_VPM_SetPrebootLBPStatus and
 *   KAVO_ROLU_VPM_SetCurrentCarBatteryMode: each writes the flags of both protections, and so can undo
 *   what another has just written;
 * - KAVO_ROLU_VPM_SetATMode and KAVO_ROLU_VPM_SetKeepAliveMode: each writes both modes;
 * - KAVO_ROLU_VPM_GetCarBatteryVoltage and KAVO_ROLU_VPM_SetCurrentCarBatteryMode: a voltage measured while
 *   the mode changes has the scale of the old mode;
 * - two calls of KAVO_ROLU_GSENSOR_AlarmEnabled: after one call with on and one with off the library may
 *   remember the opposite of what the MCU has;
 * - two calls of KAVO_ROLU_DIO_WriteDOPin: each output is set by itself.
 *
 * No function may be called from a signal handler. The library's thread blocks all signals, so the
 * application's handlers run on the application's threads. After fork() the child must not use the
 * MCU families.
 *
 * A thread may be cancelled (pthread_cancel) inside a call: a command, an opening and a closing of the link
 * run to their end first, then the cancellation takes effect. During device files, a bus transfer or the
 * shell command it may take effect at once and leave a descriptor open.
 *
 * @par The port of the MCU
 * The link does not stop a second process from opening the same serial port. Neither can block the other's
 * I/O thread, but they take each other's answers: let one process own the MCU.
 *
 * The port becomes the controlling terminal of a session leader that has none, such as a service. When the
 * port hangs up, that process gets SIGHUP and dies of it, unless it ignores or handles the signal.
 *
 * The port's descriptor is 3 or above, also in a process that has closed 0, 1 or 2, and is closed in
 * programs that the process executes. While no line arrives and no call runs, the I/O thread sleeps and does
 * not wake up by itself. It looks at the port every 5 ms while a line has begun and not ended (half a second
 * at most), while the port fails or has hung up, and always if the process had no descriptor left for the
 * event that wakes the thread up.
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
    ROLU_STATUS_INVALID_PARAMETER = 0xC002, /**< An argument is missing, out of range or refused. */
    ROLU_STATUS_NOT_SUPPORTED = 0xC003,     /**< The board does not provide this operation or value. */
    ROLU_STATUS_NOT_INITIALIZED = 0xC005, /**< The family, or the core for families that follow it, is off. */
    ROLU_STATUS_TIMEOUT = 0xC008,         /**< A G-sensor alarm sample could not be taken in time. */
    ROLU_STATUS_FILE_OPEN_FAILED = 0xC009,    /**< A display attribute file could not be opened. */
    ROLU_STATUS_FILE_ACCESS_FAILED = 0xC00A,  /**< A display attribute holds no number, the shell could not
                                                   be started, or the MCU's switch is neither on nor off. */
    ROLU_STATUS_DEVICE_OPEN_FAILED = 0xC00B,  /**< A device, GPIO or light sensor file could not be opened. */
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
  char text[32]; /**< As the MCU tells it, normally "*VER:" major "." minor "*". */
} VPM_FIRMWARE_INFO;

/** The vehicle's battery system. The values 0 and 1 exist only for KAVO_ROLU_VPM_GetLBPThresholdInfo. */
KAVO_ROLU_ENUM(CAR_BATTERY_MODE){CAR_BATTERY_MODE_24V = 2, /**< A battery of 24 V. */
                                 CAR_BATTERY_MODE_12V = 3 /**< A battery of 12 V. */};

/** The MCU's battery range of one battery system, in volts; the MCU defines what the limits mean. */
typedef struct BATTERY_INFO {
  float range_end;      /**< The range's end. */
  float range_start;    /**< The range's start. */
  float range_mid;      /**< The range's middle. */
  float range_mid_copy; /**< The same value as range_mid. */
} BATTERY_INFO;

/** Ignition mode; the MCU defines what the two modes do. */
KAVO_ROLU_ENUM(IGNITION_MODE){IGNITION_MODE_1 = 1, /**< Mode 1. */
                              IGNITION_MODE_2 = 2 /**< Mode 2. */};

/** A cause of shutdown that can be switched on and off; the MCU defines what each one is. */
KAVO_ROLU_ENUM(SHUTDOWN_SOURCE){SHUTDOWN_SOURCE_0 = 0, /**< Source 0. */
                                SHUTDOWN_SOURCE_1 = 1 /**< Source 1. */};

/** A cause of wake-up; the MCU defines what each one is, except the clock's alarm. */
KAVO_ROLU_ENUM(WAKEUP_SOURCE){WAKEUP_SOURCE_NONE = -1, /**< No wake-up is recorded; only ever an output. */
                              WAKEUP_SOURCE_0 = 0,     /**< Source 0. */
                              WAKEUP_SOURCE_1 = 1,     /**< Source 1. */
                              WAKEUP_SOURCE_2 = 2,     /**< Source 2. */
                              WAKEUP_SOURCE_3 = 3,     /**< Source 3. */
                              WAKEUP_SOURCE_4 = 4,     /**< Source 4. */
                              WAKEUP_SOURCE_5 = 5,     /**< Source 5. */
                              WAKEUP_SOURCE_RTC_ALARM = 6, /**< The wake-up alarm of the MCU's clock. */
                              WAKEUP_SOURCE_10 = 10 /**< Source 10. */};

/** A time of the MCU's clock; plain numbers, not BCD. */
typedef struct VPM_RTC_TIME {
  uint8_t year;    /**< 0 to 99: 2000 to 2099. */
  uint8_t month;   /**< 1 to 12. */
  uint8_t day;     /**< 1 to the month's length. */
  uint8_t weekday; /**< 0 to 6; the MCU defines which day is 0. */
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
KAVO_ROLU_ENUM(ALARM_MODE){ALARM_MODE_NONE = -1,  /**< No field has to match; only ever an output. */
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

/** A G-sensor sample. */
typedef struct ROLU_GSENSOR_DATA {
  int32_t x; /**< Along the x axis. */
  int32_t y; /**< Along the y axis. */
  int32_t z; /**< Along the z axis. */
} ROLU_GSENSOR_DATA;

/** The G-sensor's resolution code, 0 to 3; the MCU defines what the codes mean. */
KAVO_ROLU_ENUM(ROLU_GSENSOR_RES){ROLU_GSENSOR_RES_0 = 0, /**< Code 0. */
                                 ROLU_GSENSOR_RES_1 = 1, /**< Code 1. */
                                 ROLU_GSENSOR_RES_2 = 2, /**< Code 2. */
                                 ROLU_GSENSOR_RES_3 = 3 /**< Code 3. */};

/** A switched peripheral. The values 3 to 9 are valid, but the board has no peripheral for them. */
KAVO_ROLU_ENUM(PERIPHERAL_TYPE){PERIPHERAL_TYPE_MCU_SWITCH = 0, /**< A switch that the MCU holds. */
                                PERIPHERAL_TYPE_WLAN = 1,       /**< The wireless network interface. */
                                PERIPHERAL_TYPE_GPS = 2 /**< The power of the GPS receiver. */};

/** Where KAVO_ROLU_DISPLAY_GetBrightRange writes; all three must be given. */
typedef struct ROLU_BRIGHT_RANGE {
  unsigned char* min;  /**< Receives the lowest level. */
  unsigned char* max;  /**< Receives the highest level. */
  unsigned char* step; /**< Receives the distance between two levels. */
} ROLU_BRIGHT_RANGE;

/** One transfer on the I2C bus. */
typedef struct ROLU_IIC_TRANSFER {
  uint32_t unused;          /**< Not read. */
  uint8_t slave_address;    /**< The 7-bit address times two; the lowest bit is ignored. */
  unsigned char* data;      /**< Read into (Read) or written from (Write, WriteReadCombine). */
  uint32_t data_length;     /**< Bytes at `data`. */
  unsigned char* read_data; /**< Read into by WriteReadCombine. */
  uint32_t read_length;     /**< Bytes at `read_data`. */
} ROLU_IIC_TRANSFER;

/**
 * @name CORE: the library's switch, platform facts, reset of the board
 * @{
 */

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
 * Does not block. Two threads that call it at once may both get success.
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
 * Orders the board's reset controller, on the I2C bus, to reset the board. The library does not learn whether
 * the order arrived: a board that goes on running after a success was not reset.
 *
 * @retval ROLU_STATUS_SUCCESS The controller was addressed; the library does not check whether it took the
 *        order.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The I2C bus could not be opened.
 * @retval ROLU_STATUS_DEVICE_IO_FAILED The controller could not be addressed; nothing was written.
 *
 * Blocks: bus transfers (one).
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

/** @} */

/**
 * @name VPM: vehicle power management, life and identity
 * @{
 */

/**
 * Brings the family up: opens the link to the MCU (if it is not open yet), greets the MCU, whose answer does
 * not matter, and reads its firmware identification, the voltage scales and the battery ranges. Prints one
 * line with the firmware version on standard output.
 *
 * A missing voltage scale (volts per unit of the MCU) never stops the start-up. If the MCU answers with an
 * error or not at all, the library uses 0.01582 (24 V system) or 0.015385 (12 V system). After an answer
 * without a decimal number it keeps the scale of the last start-up, or 0 at the first one: with 0 all
 * voltages of that system read 0 V, and thresholds above 0 V are sent as FFFF.
 *
 * On any failure the family stays off and gives back what it opened. The library keeps what it has read by
 * then: KAVO_ROLU_VPM_GetLBPThresholdInfo hands out a range that was read.
 *
 * @param unused Has no effect.
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was sent.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED The port cannot be opened, is not a terminal, refuses its set-up, or
 *         its descriptor would be 1024 or above; there was no memory or no I/O thread; or the commands of
 *         other threads kept the link busy for 2000 ms: repeat the call then.
 * @return or one of the MCU statuses, of the firmware query or of a range query.
 *
 * Blocks: the link, then 6 commands, then a closing (after a failed start-up).
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_Initialize(uint8_t unused);

/**
 * Takes the family down and closes the link if no other family uses it.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED It was down before.
 *
 * Blocks: a closing.
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
 * @param[out] name At least 13 bytes; receives at most 12 characters, those after the answer's first five,
 *        then NUL up to the 13th byte.
 * @retval ROLU_STATUS_SUCCESS `name` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `name` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPlatformName(char* name);

/** @} */

/**
 * @name VPM: car battery
 * @{
 */

/**
 * Hands out the battery range that Initialize read for one battery system. Sends nothing, and works
 * in every state: all zeros before the first Initialize; the values survive Deinitialize. A limit that was
 * missing in the MCU's answer is 0.
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
 * Blocks: 2 commands (the battery mode, then the voltage).
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetCarBatteryVoltage(float* volts);

/**
 * Tells the MCU which battery system the vehicle has.
 *
 * The call first switches the pre-boot and the low-battery protection off. They stay off until
 * KAVO_ROLU_VPM_SetPrebootLBPStatus and KAVO_ROLU_VPM_SetLBPStatus switch them on again. If that
 * first step fails, the mode is not sent, and the protections may or may not be off. If only the second
 * fails, they are off.
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
 * @param volts In volts, rounded to the nearest of the MCU's units; a negative voltage and NaN are sent as 0.
 *        The MCU checks the range (KAVO_ROLU_VPM_GetLBPThresholdInfo hands it out), the library does not.
 *        Only the low 16 bits of the number of units are sent: it wraps at 65536 units.
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

/**
 * As KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, for a 24 V system.
 *
 * @param volts In volts. @return The same.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem(float volts);

/**
 * As KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, for a 24 V system.
 *
 * @param[out] volts In volts. @return The same.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem(float* volts);

/**
 * Sets the voltage below which the pre-boot protection keeps the computer from starting, for a 12 V
 * system. Range, rounding and statuses as KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem.
 * @param volts In volts. @return The same statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem(float volts);

/**
 * Reads the pre-boot threshold of a 12 V system; else as KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem.
 * @param[out] volts In volts. @return The same statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem(float* volts);

/**
 * As KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, for a 24 V system.
 *
 * @param volts In volts. @return The same.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem(float volts);

/**
 * As KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, for a 24 V system.
 *
 * @param[out] volts In volts. @return The same.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem(float* volts);

/**
 * Switches the low-battery protection of the running computer on or off.
 *
 * The MCU stores this flag together with the pre-boot flag: the call reads both, then writes the MCU's answer
 * back with its own flag changed. Calls that change the two flags at once can undo each other's change.
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

/**
 * As KAVO_ROLU_VPM_SetLBPStatus, for the pre-boot protection.
 *
 * @param enable 0 is off. @return The same.
 *
 * Blocks: 2 commands, the second with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrebootLBPStatus(char enable);

/**
 * As KAVO_ROLU_VPM_GetLBPStatus, for the pre-boot protection.
 *
 * @param[out] enabled 1 or 0. @return The same.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrebootLBPStatus(char* enabled);

/** @} */

/**
 * @name VPM: power-off delays and forced shutdown
 * @{
 */

/**
 * Sets the delay of the ignition-off event; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnOffEventDelay(unsigned short delay);

/**
 * Reads the delay of the ignition-off event.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnOffEventDelay(unsigned short* delay);

/**
 * Sets the hard-off delay of the ignition; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnHardOffDelay(unsigned short delay);

/**
 * Reads the hard-off delay of the ignition.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnHardOffDelay(unsigned short* delay);

/**
 * Sets the suspend hard-off delay of the ignition; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay(unsigned short delay);

/**
 * Reads the suspend hard-off delay of the ignition.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay(unsigned short* delay);

/**
 * Sets the ignition-on delay; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnOnDelay(unsigned short delay);

/**
 * Reads the ignition-on delay.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnOnDelay(unsigned short* delay);

/**
 * Sets the low-battery delay; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPLowDelay(unsigned short delay);

/**
 * Reads the low-battery delay.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPLowDelay(unsigned short* delay);

/**
 * Sets the hard low-battery delay; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPLowHardDelay(unsigned short delay);

/**
 * Reads the hard low-battery delay.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLBPLowHardDelay(unsigned short* delay);

/**
 * Sets the delay of the warning before a power-off; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay(unsigned short delay);

/**
 * Reads the delay of the warning before a power-off.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay(unsigned short* delay);

/**
 * Sets the delay of the forced shutdown; the MCU defines what it spans and stores it.
 *
 * @param delay 1 to 65535, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS The delay is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is 0; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetForceShutDownDelay(unsigned short delay);

/**
 * Reads the delay of the forced shutdown.
 *
 * @param[out] delay Receives the delay, in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `delay` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `delay` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetForceShutDownDelay(unsigned short* delay);

/**
 * Switches the forced shutdown on or off.
 *
 * @param enable 0 is off, any other value on.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetForceShutDown(char enable);

/**
 * Tells whether the forced shutdown is on.
 *
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetForceShutDown(char* enabled);

/**
 * Orders the MCU to power the computer off now.
 *
 * @retval ROLU_STATUS_SUCCESS The MCU took the order; the power goes away at any moment.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_ForceShutdown(void);

/** @} */

/**
 * @name VPM: ignition and operating modes
 * @{
 */

/**
 * Tells whether the ignition is on.
 *
 * @param[out] on Receives 1 (on) or 0 (off).
 * @retval ROLU_STATUS_SUCCESS `on` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `on` is null.
 * @retval ROLU_STATUS_VPM_ERROR_REPLY The MCU reports neither on nor off.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnitionStatus(char* on);

/**
 * Chooses how the MCU handles the ignition; the MCU defines what the modes do.
 *
 * @param mode #IGNITION_MODE_1 or #IGNITION_MODE_2.
 * @retval ROLU_STATUS_SUCCESS The mode is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Another mode; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnitionMode(IGNITION_MODE mode);

/**
 * Reads the ignition mode.
 *
 * @param[out] mode Receives the mode.
 * @retval ROLU_STATUS_SUCCESS `mode` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `mode` is null.
 * @retval ROLU_STATUS_VPM_ERROR_REPLY The MCU reports another mode.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetIgnitionMode(IGNITION_MODE* mode);

/**
 * Switches the warning before a power-off on or off.
 *
 * @param enable 0 is off, any other value on.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetPrePowerOffAlarm(char enable);

/**
 * Tells whether the warning before a power-off is on.
 *
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetPrePowerOffAlarm(char* enabled);

/**
 * Sets the AT mode; the MCU defines what its values do.
 *
 * The MCU stores it together with the keep-alive mode: the call reads both, then writes both; a keep-alive
 * digit that is missing in the answer is written as 0. Calls that change the two at once can undo each
 * other's change.
 *
 * @param mode 0 to 255, taken as unsigned whatever the sign of `char`. The MCU expects one digit.
 * @retval ROLU_STATUS_SUCCESS The mode is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * If the reading failed, nothing was written.
 *
 * Blocks: 2 commands, the second with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetATMode(char mode);

/**
 * Reads the AT mode, the answer's second decimal digit; a missing digit reads as 0.
 *
 * @param[out] mode Receives 0 to 9.
 * @retval ROLU_STATUS_SUCCESS `mode` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `mode` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetATMode(char* mode);

/**
 * Sets the keep-alive mode; the MCU defines what its values do.
 *
 * The MCU stores it together with the AT mode: the call reads both, then writes both; an AT digit that is
 * missing in the answer is written as 0. Calls that change the two at once can undo each other's change.
 *
 * @param mode 0 to 255, taken as unsigned whatever the sign of `char`. The MCU expects one digit.
 * @retval ROLU_STATUS_SUCCESS The mode is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * If the reading failed, nothing was written.
 *
 * Blocks: 2 commands, the second with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetKeepAliveMode(char mode);

/**
 * Reads the keep-alive mode, the answer's first decimal digit; a missing digit reads as 0.
 *
 * @param[out] mode Receives 0 to 9.
 * @retval ROLU_STATUS_SUCCESS `mode` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `mode` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetKeepAliveMode(char* mode);

/**
 * Orders the MCU to restore all its default settings. The library holds no defaults of its own.
 *
 * @retval ROLU_STATUS_SUCCESS The MCU took the order and had the time to carry it out.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 1250 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_LoadDefaultValue(void);

/**
 * Registers the condition variable that the library signals when the MCU warns that it will cut the
 * power because the ignition went off.
 *
 * The condition variable is the application's: a pthread_cond_t that stays alive until another one is
 * registered in its place or the link is closed. The link is closed when the last MCU family is down and no
 * call is running. A registration cannot be cancelled, only replaced. Opening the closed link forgets it, so
 * register after Initialize. Each warning signals once, for one waiting thread; the library does
 * not take the application's mutex, so a thread that is not waiting at that moment misses the signal: wait
 * with a time-out.
 *
 * @param event Pointer to a pthread_cond_t.
 * @retval ROLU_STATUS_SUCCESS It is registered.
 * @retval ROLU_STATUS_NULL_POINTER `event` is null, whether or not the family is up.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 *
 * Sends nothing. Blocks: the inner lock.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetIgnPowerOffEvent(void* event);

/**
 * Registers the condition variable that the library signals when the MCU warns that it will cut the
 * power because the car battery is low.
 *
 * The condition variable is the application's: a pthread_cond_t that stays alive until another one is
 * registered in its place or the link is closed. The link is closed when the last MCU family is down and no
 * call is running. A registration cannot be cancelled, only replaced. Opening the closed link forgets it, so
 * register after Initialize. Each warning signals once, for one waiting thread; the library does
 * not take the application's mutex, so a thread that is not waiting at that moment misses the signal: wait
 * with a time-out.
 *
 * @param event Pointer to a pthread_cond_t.
 * @retval ROLU_STATUS_SUCCESS It is registered.
 * @retval ROLU_STATUS_NULL_POINTER `event` is null, whether or not the family is up.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 *
 * Sends nothing. Blocks: the inner lock.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetLBPPowerOffEvent(void* event);

/** @} */

/**
 * @name VPM: shutdown and wake-up sources
 * @{
 */

/**
 * Switches a cause of shutdown on or off.
 *
 * @param source #SHUTDOWN_SOURCE_0 or #SHUTDOWN_SOURCE_1.
 * @param enable 0 is off, any other value on.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Another source; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char enable);

/**
 * Tells whether a cause of shutdown is on.
 *
 * @param source #SHUTDOWN_SOURCE_0 or #SHUTDOWN_SOURCE_1.
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null, or another source; nothing was sent.
 * @retval ROLU_STATUS_VPM_INVALID_REPLY The answer does not include this source.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char* enabled);

/**
 * Switches a cause of wake-up on or off. Sources without an enumerator are sent as they are; the MCU
 * decides.
 *
 * @param source Any but #WAKEUP_SOURCE_NONE.
 * @param enable 0 is off, 1 on; sent as an unsigned number, 0 to 255, as it is.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER #WAKEUP_SOURCE_NONE; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetWakeupSourceControlStatus(WAKEUP_SOURCE source, char enable);

/**
 * Tells whether a cause of wake-up is on.
 *
 * @param source Any but #WAKEUP_SOURCE_NONE.
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null, or #WAKEUP_SOURCE_NONE; nothing was sent.
 * @retval ROLU_STATUS_VPM_INVALID_REPLY The answer does not include this source.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetWakeupSourceControlStatus(WAKEUP_SOURCE source, char* enabled);

/**
 * Tells what woke the computer last.
 *
 * @param[out] source Receives the source, #WAKEUP_SOURCE_NONE if none is recorded or the answer is not a
 *        number.
 * @retval ROLU_STATUS_SUCCESS `source` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `source` is null.
 * @retval ROLU_STATUS_VPM_UNKNOWN_VALUE The MCU reports a code that the library does not know.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetLastWakeupSource(WAKEUP_SOURCE* source);

/** @} */

/**
 * @name VPM: clock and wake-up alarm
 * @{
 */

/**
 * Sets the MCU's clock.
 *
 * The MCU answers with two lines, and the second alone decides: the library does not see an error in the
 * first. If one of them does not come, the status is #ROLU_STATUS_VPM_NO_REPLY, even when the other one is an
 * error.
 *
 * @param time A time between 2000 and 2099; the weekday is not compared with the date.
 * @retval ROLU_STATUS_SUCCESS The clock is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER A field is out of range; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with 2 answer lines and a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetRTCTime(VPM_RTC_TIME time);

/**
 * Reads the MCU's clock. The fields are as the MCU reports them; those missing in a short answer are 0.
 *
 * @param[out] time Receives the time.
 * @retval ROLU_STATUS_SUCCESS `time` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `time` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetRTCTime(VPM_RTC_TIME* time);

/**
 * Switches the wake-up alarm on or off; the same as the wake-up source #WAKEUP_SOURCE_RTC_ALARM.
 *
 * @param enable 0 is off, 1 on; sent as an unsigned number, 0 to 255, as it is.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetAlarmActive(char enable);

/**
 * Tells whether the wake-up alarm is on.
 *
 * @param[out] enabled Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `enabled` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `enabled` is null.
 * @retval ROLU_STATUS_VPM_INVALID_REPLY The answer does not include the alarm.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetAlarmActive(char* enabled);

/**
 * Sets the wake-up alarm's time and how often it comes. Does not switch the alarm on:
 * KAVO_ROLU_VPM_SetAlarmActive does.
 *
 * @param mode #ALARM_MODE_HOURLY, #ALARM_MODE_DAILY or #ALARM_MODE_WEEKLY.
 * @param time All three fields must be in range, even those that the mode does not use.
 * @retval ROLU_STATUS_SUCCESS The alarm time is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER A field is out of range, or another mode; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 150 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE mode, VPM_ALARM_TIME time);

/**
 * Reads the wake-up alarm's time and how often it comes, as the MCU reports them. A field missing in a short
 * answer is 0 and does not have to match.
 *
 * @param[out] mode Receives the mode, #ALARM_MODE_NONE if no field has to match.
 * @param[out] time Receives the time.
 * @retval ROLU_STATUS_SUCCESS Both were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER One of them is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetAlarmTime(ALARM_MODE* mode, VPM_ALARM_TIME* time);

/** @} */

/**
 * @name VPM: backup battery
 * @{
 */

/**
 * Measures the backup battery's voltage.
 *
 * @param[out] volts Receives the voltage in volts.
 * @retval ROLU_STATUS_SUCCESS `volts` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `volts` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryVoltage(float* volts);

/**
 * Reads the backup battery's remaining capacity.
 *
 * @param[out] capacity Receives the capacity in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `capacity` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `capacity` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity(int* capacity);

/**
 * Reads the backup battery's charge.
 *
 * @param[out] percent Receives per cent, as the MCU reports them.
 * @retval ROLU_STATUS_SUCCESS `percent` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `percent` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge(int* percent);

/**
 * Measures the backup battery's temperature (the function's name is spelled like this). An answer
 * without a number reads as -273.15.
 *
 * @param[out] celsius Receives degrees Celsius.
 * @retval ROLU_STATUS_SUCCESS `celsius` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `celsius` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryTemperture(float* celsius);

/**
 * Reads how long the backup battery will last.
 *
 * @param[out] time Receives the time in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `time` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `time` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryRemainingTime(int* time);

/**
 * Reads how long the backup battery needs to be full.
 *
 * @param[out] time Receives the time in the MCU's own unit.
 * @retval ROLU_STATUS_SUCCESS `time` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `time` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryTimeToFull(int* time);

/**
 * Reads the backup battery's information number and its status flags.
 *
 * The flags are read from a number in base 2. A set flag is written as 1, a clear one is not written: clear
 * the record before the call. If the second of the two questions fails, `info_value` has been written and no
 * flag has.
 *
 * @param[in,out] info Receives the number and the flags.
 * @retval ROLU_STATUS_SUCCESS The number and the set flags were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `info` is null.
 * @return or one of the MCU statuses.
 *
 * Blocks: 2 commands.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryInfo(BACKUP_BATTERY_INFO* info);

/** @} */

/**
 * @name WD: the MCU's watchdog
 * @{
 */

/**
 * Brings the family up: opens the link to the MCU (if it is not open yet) and greets the MCU, whose
 * answer does not matter. Neither starts nor stops the watchdog.
 *
 * @param unused Has no effect.
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was sent.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED As for KAVO_ROLU_VPM_Initialize.
 *
 * Blocks: the link, then 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Initialize(uint8_t unused);

/**
 * Takes the family down. Sends no watchdog command: a watchdog that is on stays on, and runs out if
 * nobody triggers it.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED It was down before.
 *
 * Blocks: a closing.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_Deinitialize(void);

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always. Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_WD_GetLibVersion(unsigned char* version);

/**
 * Triggers the watchdog: its time starts again.
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

/** @} */

/**
 * @name GSENSOR: the MCU's acceleration sensor
 * @{
 */

/**
 * Brings the family up: opens the link to the MCU (if it is not open yet), greets the MCU and switches
 * the sensor on; the answers do not matter.
 *
 * @param unused Has no effect.
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was sent.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED As for KAVO_ROLU_VPM_Initialize.
 *
 * Blocks: the link, then 2 commands.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_Initialize(uint8_t unused);

/**
 * Switches the alarm off (the answer does not matter), then the sensor, and takes the family down.
 *
 * If the MCU does not confirm that the sensor is off, the family stays up and the call can be repeated. The
 * alarm may be off by then.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @return or one of the MCU statuses.
 *
 * Blocks: 2 commands, then a closing.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_Deinitialize(void);

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetLibVersion(unsigned char* version);

/**
 * Measures the acceleration now. A raw unit of the sensor is 3.90625 (1000/256) of the units handed
 * out; a half is added and the fraction cut off towards zero, so 1 gives 4 and -1 gives -3.
 *
 * @param[out] sample Receives the sample.
 * @retval ROLU_STATUS_SUCCESS `sample` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NULL_POINTER `sample` is null.
 * @retval ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE The sensor has no sample.
 * @retval ROLU_STATUS_GSENSOR_INVALID_REPLY The answer is not a sample.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetData(ROLU_GSENSOR_DATA* sample);

/**
 * Reads the sensor's resolution code.
 *
 * @param[out] resolution Receives 0 to 255 as the MCU reports it.
 * @retval ROLU_STATUS_SUCCESS `resolution` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NULL_POINTER `resolution` is null.
 * @retval ROLU_STATUS_GSENSOR_INVALID_REPLY The answer is not a number.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetResolution(ROLU_GSENSOR_RES* resolution);

/**
 * Sets the sensor's resolution code; the MCU defines what the codes mean. The scale of the samples stays the
 * same.
 *
 * @param resolution 0 to 3.
 * @retval ROLU_STATUS_SUCCESS It is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Another code; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_SetResolution(ROLU_GSENSOR_RES resolution);

/**
 * Switches the alarm on or off. While it is on, the MCU reports alarm samples on its own, and the library
 * queues them.
 *
 * The library remembers that it switched the alarm on, even across a Deinitialize in which the MCU did not
 * confirm that it is off. Switching off is always sent. The library does not ask the MCU: if the MCU has lost
 * the alarm, switch it off first, then on.
 *
 * @param on true switches it on.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED It was switched on before; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_AlarmEnabled(bool on);

/**
 * Registers the condition variable that the library signals for each alarm sample it queues.
 *
 * The rules of KAVO_ROLU_VPM_SetIgnPowerOffEvent hold: the application's pthread_cond_t stays alive until it
 * is replaced or the link is closed, its registration cannot be cancelled, opening the closed link forgets
 * it, and the library signals without the application's mutex. Wait with a time-out and drain the queue with
 * KAVO_ROLU_GSENSOR_GetAlarmData after each wake-up.
 *
 * @param event Pointer to a pthread_cond_t.
 * @retval ROLU_STATUS_SUCCESS It is registered.
 * @retval ROLU_STATUS_NULL_POINTER `event` is null, whether or not the family is up.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 *
 * Sends nothing. Blocks: the inner lock.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_SetAlarmEvent(void* event);

/**
 * Takes the oldest queued alarm sample, scaled as by KAVO_ROLU_GSENSOR_GetData. Sends nothing. The
 * queue holds 31 samples; one more sample drops the oldest. Opening the closed link empties the queue.
 *
 * @param[out] sample Receives the sample.
 * @retval ROLU_STATUS_SUCCESS `sample` was written.
 * @retval ROLU_STATUS_NULL_POINTER `sample` is null, whether or not the family is up.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_GSENSOR_NO_ALARM_DATA No sample is queued.
 * @retval ROLU_STATUS_TIMEOUT The link's inner lock was not free within 1000 ms.
 *
 * Blocks: the inner lock, at most 1000 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetAlarmData(ROLU_GSENSOR_DATA* sample);

/**
 * Reads the alarm threshold: the sensor's register times 62.5, halves rounded up.
 *
 * @param[out] threshold Receives 0 to 15938.
 * @retval ROLU_STATUS_SUCCESS `threshold` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NULL_POINTER `threshold` is null.
 * @retval ROLU_STATUS_GSENSOR_INVALID_REPLY The answer is not a number.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetAlarmThreshold(int* threshold);

/**
 * Sets the alarm threshold. It is cut to a multiple of 62.5: 2062 is set, and read back, as 2000.
 *
 * @param threshold 2000 to 15000, in the units of the samples.
 * @retval ROLU_STATUS_SUCCESS It is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Out of range; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_SetAlarmThreshold(int threshold);

/**
 * Reads the wake-up threshold: the sensor's register times 62.5, halves rounded up.
 *
 * @param[out] threshold Receives 0 to 15938.
 * @retval ROLU_STATUS_SUCCESS `threshold` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NULL_POINTER `threshold` is null.
 * @retval ROLU_STATUS_GSENSOR_INVALID_REPLY The answer is not a number.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_GetWakeupThreshold(int* threshold);

/**
 * Sets the wake-up threshold. It is cut to a multiple of 62.5: 2062 is set, and read back, as 2000.
 *
 * @param threshold 63 to 15999, in the units of the samples.
 * @retval ROLU_STATUS_SUCCESS It is set.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER Out of range; nothing was sent.
 * @return or one of the MCU statuses.
 *
 * Blocks: 1 command with a post-delay of 50 ms.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_GSENSOR_SetWakeupThreshold(int threshold);

/** @} */

/**
 * @name PERIPHERALCTRL: switched peripherals
 * @{
 */

/**
 * Brings the family up: makes the GPIO line of the GPS power an output (failures show when it is used),
 * opens the link to the MCU (if it is not open yet) and greets the MCU, whose answer does not matter.
 *
 * Making the line an output drives it low, even if it is one already: this cuts the GPS power.
 *
 * @retval ROLU_STATUS_SUCCESS The family is up.
 * @retval ROLU_STATUS_ALREADY_INITIALIZED It was up before; nothing was done.
 * @retval ROLU_STATUS_VPM_OPEN_FAILED As for KAVO_ROLU_VPM_Initialize; the GPS power is cut all the same.
 *
 * Blocks: device files, the link, then 1 command.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_Initialize(void);

/**
 * Takes the family down. The peripherals keep their state.
 *
 * @retval ROLU_STATUS_SUCCESS The family is down.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 *
 * Blocks: a closing.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_Deinitialize(void);

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetLibVersion(unsigned char* version);

/**
 * Switches a peripheral.
 *
 * The library does not know whether the network configuration command did its work or exists at all, nor
 * whether the GPIO line took its level: both count as success.
 *
 * @param type #PERIPHERAL_TYPE_MCU_SWITCH, #PERIPHERAL_TYPE_WLAN or #PERIPHERAL_TYPE_GPS.
 * @param state 1 is on, anything else off; for the MCU's switch the number, 0 to 255, is sent as it
 *        is.
 * @retval ROLU_STATUS_SUCCESS It is switched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_INVALID_PARAMETER `type` is above 9.
 * @retval ROLU_STATUS_NOT_SUPPORTED `type` is negative or 3 to 9.
 * @retval ROLU_STATUS_FILE_ACCESS_FAILED The shell for the network configuration command could not be
 *        started.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The GPIO line could not be opened.
 * @return or one of the MCU statuses.
 *
 * Blocks: the MCU's switch 1 command with a post-delay of 500 ms; the wireless interface the shell
 * command, without a limit; the GPS power device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE type, char state);

/**
 * Tells whether a peripheral is on. The wireless interface counts as on when the network configuration
 * command prints "wlan0" and the first line that contains it begins with it. A command that fails and a GPIO
 * line that cannot be read count as off.
 *
 * @param type #PERIPHERAL_TYPE_MCU_SWITCH, #PERIPHERAL_TYPE_WLAN or #PERIPHERAL_TYPE_GPS.
 * @param[out] state Receives 1 or 0.
 * @retval ROLU_STATUS_SUCCESS `state` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NOT_SUPPORTED Another type.
 * @retval ROLU_STATUS_INVALID_PARAMETER `state` is null.
 * @retval ROLU_STATUS_FILE_ACCESS_FAILED The shell for the network configuration command could not be
 *        started, or the MCU reports neither on nor off.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The GPIO line could not be opened.
 * @return or one of the MCU statuses.
 *
 * Blocks: the MCU's switch 1 command; the wireless interface the shell command, without a limit; the
 * GPS power device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE type, char* state);

/**
 * Not provided by this board.
 *
 * @param source Not used, not touched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NOT_SUPPORTED The family is up.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetRearViewSource(unsigned char source);

/**
 * Not provided by this board.
 *
 * @param source Not used, not touched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NOT_SUPPORTED The family is up.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource(unsigned char* source);

/**
 * Not provided by this board.
 *
 * @param enable Not used, not touched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NOT_SUPPORTED The family is up.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetAutoRearView(char enable);

/**
 * Not provided by this board.
 *
 * @param enabled Not used, not touched.
 * @retval ROLU_STATUS_NOT_INITIALIZED The family is down.
 * @retval ROLU_STATUS_NOT_SUPPORTED The family is up.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetAutoRearView(char* enabled);

/** @} */

/**
 * @name DISPLAY: backlight
 * @{
 */

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_GetLibVersion(unsigned char* version);

/**
 * Tells whether the family can be used.
 *
 * @retval ROLU_STATUS_DISPLAY_AVAILABLE It can.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_Available(void);

/**
 * Tells the range of the backlight levels: 0 to 10 in steps of 1.
 *
 * @param[in,out] range Three pointers to where the numbers go.
 * @retval ROLU_STATUS_SUCCESS All three were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NULL_POINTER `range` or one of its pointers is null; nothing was written.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_GetBrightRange(ROLU_BRIGHT_RANGE* range);

/**
 * Reads the backlight level.
 *
 * @param[out] level Receives the low 8 bits of the level, not compared with the range.
 * @retval ROLU_STATUS_SUCCESS `level` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NULL_POINTER `level` is null.
 * @retval ROLU_STATUS_FILE_OPEN_FAILED The display driver's attribute cannot be opened.
 * @retval ROLU_STATUS_FILE_ACCESS_FAILED It holds no number.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_GetBright(unsigned char* level);

/**
 * Sets the backlight level, which stays after the process ends. The library does not know whether the driver
 * took it.
 *
 * @param level 0 to 10.
 * @retval ROLU_STATUS_SUCCESS The level was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NOT_SUPPORTED `level` is above 10.
 * @retval ROLU_STATUS_FILE_OPEN_FAILED The display driver's attribute cannot be opened.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_SetBright(unsigned char level);

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_ScreenOn(void);

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DISPLAY_ScreenOff(void);

/** @} */

/**
 * @name DIO: digital pins
 * @{
 */

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_GetLibVersion(unsigned char* version);

/**
 * Makes the four GPIO lines available and gives them their directions. Making a line an output drives it low,
 * even if it is one already: each call drops both digital outputs. Works with the core off, keeps no state,
 * and may be repeated. If a line fails, those before it stay prepared.
 *
 * @retval ROLU_STATUS_SUCCESS All four lines are prepared.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED A GPIO file could not be opened.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_Initialize(void);

/**
 * Does nothing: lines and levels stay as they are.
 *
 * @retval ROLU_STATUS_SUCCESS Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_Deinitialize(void);

/**
 * Reads the two digital inputs. Works once this process or an earlier one has made the lines available. An
 * input that cannot be read counts as low.
 *
 * @param[out] pins 2 bytes: input 1 and input 2, each 1 (high) or 0 (low).
 * @retval ROLU_STATUS_SUCCESS Both bytes were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NULL_POINTER `pins` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED A line could not be opened; if it is the second, the first
 *        byte was written.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_ReadDIPin(unsigned char* pins);

/**
 * Drives the two digital outputs, one after the other; they keep their levels after the process ends. The
 * library does not know whether a line took its level.
 *
 * @param pins 2 bytes: output 1 and output 2; 1 is high, anything else low.
 * @retval ROLU_STATUS_SUCCESS Both were written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NULL_POINTER `pins` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED A line could not be opened; if it is the second, the first
 *        output was set.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_WriteDOPin(const unsigned char* pins);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_GetVoiceSourceControlPin(uint32_t unused);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_SetVoiceSourceControlPin(uint32_t unused);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_GetBluetoothEnablePin(uint32_t unused);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_SetBluetoothEnablePin(uint32_t unused);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_GetVoiceModuleSelectPin(uint32_t unused);

/**
 * Not provided by this board, which has no device for this pin.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_DIO_SetVoiceModuleSelectPin(uint32_t unused);

/** @} */

/**
 * @name TEMPERATURESENSOR: temperatures of the processor and the board
 * @{
 */

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_Initialize(void);

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_Deinitialize(void);

/**
 * Not provided by this board, which has no sensor to ask.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore1Temperature(uint32_t unused);

/**
 * Not provided by this board, which has no sensor to ask.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore2Temperature(uint32_t unused);

/**
 * Not provided by this board, which has no sensor to ask.
 *
 * @param unused Not used.
 * @retval ROLU_STATUS_NOT_INITIALIZED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetSystem1Temperature(uint32_t unused);

/** @} */

/**
 * @name LIGHTSENSOR: ambient light
 * @{
 */

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_LIGHTSENSOR_GetLibVersion(unsigned char* version);

/**
 * Reads the ambient light. A sensor that gives no number reads as 0.
 *
 * @param[out] reading Receives the sensor's reading (lux), the low 16 bits of the number in its first five
 *        characters.
 * @retval ROLU_STATUS_SUCCESS `reading` was written.
 * @retval ROLU_STATUS_NOT_INITIALIZED The core is off (KAVO_ROLU_CORE_Init).
 * @retval ROLU_STATUS_NULL_POINTER `reading` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The sensor is not there.
 *
 * Blocks: device files.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_LIGHTSENSOR_GetStatus(unsigned short* reading);

/** @} */

/**
 * @name IIC: raw transfers on the I2C bus
 * @{
 */

/**
 * Not provided: the library's version comes from KAVO_ROLU_CORE_GetLibVersion.
 *
 * @param version Not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_IIC_GetLibVersion(unsigned char* version);

/**
 * Tells whether the family can be used, whatever the state of the core.
 *
 * @retval ROLU_STATUS_IIC_AVAILABLE Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_IIC_Available(void);

/**
 * Reads from a slave in one transfer. The slave is addressed even if a kernel driver uses it. Works with the
 * core off.
 *
 * @param[in,out] transfer `slave_address`, `data` and `data_length` are used.
 * @retval ROLU_STATUS_SUCCESS The transfer was done, also when it was shorter than asked for.
 * @retval ROLU_STATUS_INVALID_PARAMETER `transfer` or its `data` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The bus could not be opened.
 * @retval ROLU_STATUS_DEVICE_IO_FAILED The slave was refused, or a transfer failed.
 *
 * Blocks: bus transfers (one).
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_IIC_Read(ROLU_IIC_TRANSFER* transfer);

/**
 * Writes to a slave in one transfer; else as KAVO_ROLU_IIC_Read.
 *
 * @param transfer `slave_address`, `data` and `data_length` are used; the bytes are not changed.
 * @retval ROLU_STATUS_SUCCESS The transfer was done, also when it was shorter than asked for.
 * @retval ROLU_STATUS_INVALID_PARAMETER `transfer` or its `data` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The bus could not be opened.
 * @retval ROLU_STATUS_DEVICE_IO_FAILED The slave was refused, or a transfer failed.
 *
 * Blocks: bus transfers (one).
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_IIC_Write(ROLU_IIC_TRANSFER* transfer);

/**
 * Writes `data_length` bytes to a slave, waits 100 ms, and reads `read_length` bytes: two transfers; another
 * thread's transfer may run between them.
 *
 * @param[in,out] transfer All fields but the first are used.
 * @retval ROLU_STATUS_SUCCESS Both transfers were done, also when shorter than asked for.
 * @retval ROLU_STATUS_INVALID_PARAMETER `transfer`, its `data` or its `read_data` is null.
 * @retval ROLU_STATUS_DEVICE_OPEN_FAILED The bus could not be opened.
 * @retval ROLU_STATUS_DEVICE_IO_FAILED The slave was refused, or a transfer failed; the bytes may be written.
 *
 * Blocks: bus transfers (two), and 100 ms between them.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_IIC_WriteReadCombine(ROLU_IIC_TRANSFER* transfer);

/** @} */

/**
 * @name EEPROM: non-volatile memory
 * @{
 */

/**
 * Not provided by this board.
 *
 * @param version Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_GetLibVersion(unsigned char* version);

/**
 * Not provided by this board.
 *
 * @param size Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_GetEEPROMSize(uint32_t* size);

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_Initialize(void);

/**
 * Not provided by this board.
 *
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_Deinitialize(void);

/**
 * Not provided by this board.
 *
 * @param address Not used, not touched.
 * @param value Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_ReadByte(uint8_t address, uint8_t* value);

/**
 * Not provided by this board.
 *
 * @param address Not used, not touched.
 * @param value Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_WriteByte(uint8_t address, uint8_t value);

/**
 * Not provided by this board.
 *
 * @param address Not used, not touched.
 * @param length Not used, not touched.
 * @param unused1 Not used, not touched.
 * @param unused2 Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_ReadMultiByte(uint8_t address, uint8_t length, uint32_t unused1,
                                                         uint32_t unused2);

/**
 * Not provided by this board.
 *
 * @param address Not used, not touched.
 * @param length Not used, not touched.
 * @param unused1 Not used, not touched.
 * @param unused2 Not used, not touched.
 * @retval ROLU_STATUS_NOT_SUPPORTED Always.
 *
 * Does not block.
 */
KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_EEPROM_WriteMultiByte(uint8_t address, uint8_t length, uint32_t unused1,
                                                          uint32_t unused2);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* KAVO_ROLU_H */
