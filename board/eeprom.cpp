#include "kavo_rolu.h"

ROLU_STATUS KAVO_ROLU_EEPROM_GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_GetEEPROMSize(uint32_t*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_Initialize(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_Deinitialize(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_ReadByte(uint8_t, uint8_t*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_WriteByte(uint8_t, uint8_t) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_ReadMultiByte(uint8_t, uint8_t, uint32_t, uint32_t) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_EEPROM_WriteMultiByte(uint8_t, uint8_t, uint32_t, uint32_t) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
