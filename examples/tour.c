/* Asks every family of the interface one question and prints the answers: what there is on this board.
 * The exit status is 0 if all of them answered, else 1.
 * Not for a vehicle in use: bringing PERIPHERALCTRL up cuts the GPS receiver's power, and preparing the pins
 * of DIO drives both outputs low. */
#include <stdbool.h>
#include <stdio.h>

#include "kavo_rolu.h"

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "tour: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

static bool ShowPower(void) {
  char ignition = 0;
  float volts = 0.0F;
  VPM_RTC_TIME clock = {0, 0, 0, 0, 0, 0, 0};
  if (!Succeeded(KAVO_ROLU_VPM_GetIgnitionStatus(&ignition), "read the ignition") ||
      !Succeeded(KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts), "read the car battery") ||
      !Succeeded(KAVO_ROLU_VPM_GetRTCTime(&clock), "read the clock")) {
    return false;
  }
  printf("VPM             ignition %s, car battery %.2f V, clock 20%02u-%02u-%02u %02u:%02u\n",
         ignition ? "on" : "off", (double)volts, clock.year, clock.month, clock.day, clock.hour,
         clock.minute);
  return true;
}

static bool ShowWatchdog(void) {
  unsigned short time = 0;
  if (!Succeeded(KAVO_ROLU_WD_GetTime(&time), "read the watchdog")) return false;
  printf("WD              watchdog time %hu\n", time);
  return true;
}

static bool ShowGSensor(void) {
  ROLU_GSENSOR_DATA sample = {0, 0, 0};
  if (!Succeeded(KAVO_ROLU_GSENSOR_GetData(&sample), "read the G-sensor")) return false;
  printf("GSENSOR         x %d, y %d, z %d\n", (int)sample.x, (int)sample.y, (int)sample.z);
  return true;
}

static bool ShowPeripherals(void) {
  char gps = 0;
  if (!Succeeded(KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_GPS, &gps), "read the GPS")) {
    return false;
  }
  printf("PERIPHERALCTRL  GPS power %s\n", gps ? "on" : "off");
  return true;
}

/* A family of the MCU is brought up for its question and taken down again. */
static bool Visit(ROLU_STATUS up, bool (*show)(void), ROLU_STATUS (*down)(void)) {
  bool shown;
  if (!Succeeded(up, "bring a family up")) return false;
  shown = show();
  return Succeeded(down(), "take a family down") && shown;
}

static bool ShowDeviceFiles(void) {
  unsigned char level = 0, pins[2] = {0, 0}, index = 0, value = 0;
  unsigned short lux = 0;
  ROLU_IIC_TRANSFER transfer = {0, 0xA0, NULL, 1, NULL, 1};
  transfer.data = &index;
  transfer.read_data = &value;
  if (!Succeeded(KAVO_ROLU_DISPLAY_GetBright(&level), "read the backlight") ||
      !Succeeded(KAVO_ROLU_LIGHTSENSOR_GetStatus(&lux), "read the light sensor") ||
      !Succeeded(KAVO_ROLU_DIO_Initialize(), "prepare the pins") ||
      !Succeeded(KAVO_ROLU_DIO_ReadDIPin(pins), "read the pins") ||
      !Succeeded(KAVO_ROLU_IIC_WriteReadCombine(&transfer), "read from the I2C bus")) {
    return false;
  }
  printf("DISPLAY         backlight level %u of 10\n", level);
  printf("LIGHTSENSOR     %hu lux\n", lux);
  printf("DIO             input 1 %s, input 2 %s\n", pins[0] ? "high" : "low", pins[1] ? "high" : "low");
  printf("IIC             register 0 of the device at 0x50: 0x%02X\n", value);
  return true;
}

static bool ShowNotProvided(void) {
  const bool none = KAVO_ROLU_TEMPERATURESENSOR_Initialize() == ROLU_STATUS_NOT_SUPPORTED &&
                    KAVO_ROLU_EEPROM_Initialize() == ROLU_STATUS_NOT_SUPPORTED;
  if (none) printf("TEMPERATURESENSOR, EEPROM: not provided by this board\n");
  return none;
}

int main(void) {
  bool ok = Succeeded(KAVO_ROLU_CORE_Init(), "switch the core on");
  if (!ok) return 1;
  ok = Visit(KAVO_ROLU_VPM_Initialize(0), ShowPower, KAVO_ROLU_VPM_Deinitialize) && ok;
  ok = Visit(KAVO_ROLU_WD_Initialize(0), ShowWatchdog, KAVO_ROLU_WD_Deinitialize) && ok;
  ok = Visit(KAVO_ROLU_GSENSOR_Initialize(0), ShowGSensor, KAVO_ROLU_GSENSOR_Deinitialize) && ok;
  ok = Visit(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ShowPeripherals, KAVO_ROLU_PERIPHERALCTRL_Deinitialize) &&
       ok;
  ok = ShowDeviceFiles() && ok;
  ok = ShowNotProvided() && ok;
  return Succeeded(KAVO_ROLU_CORE_DeInit(), "switch the core off") && ok ? 0 : 1;
}
