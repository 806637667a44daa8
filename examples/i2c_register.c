/* Reads one register of a device on the I2C bus: i2c_register ADDRESS REGISTER, the address in its
 * 7-bit form. Both are 0x50 and 0x00 unless given. */
#include <stdio.h>
#include <stdlib.h>

#include "kavo_rolu.h"

/* 0 to `highest`, decimal or 0x and hexadecimal; -1 for anything else. */
static long ReadNumber(const char* text, long highest) {
  char* end = NULL;
  const long value = strtol(text, &end, 0);
  return end != text && *end == '\0' && value >= 0 && value <= highest ? value : -1;
}

int main(int argc, char** argv) {
  const long address = argc > 1 ? ReadNumber(argv[1], 0x7F) : 0x50;
  const long index = argc > 2 ? ReadNumber(argv[2], 0xFF) : 0x00;
  unsigned char register_index = (unsigned char)index;
  unsigned char value = 0;
  ROLU_IIC_TRANSFER transfer = {0, 0, NULL, 0, NULL, 0};
  ROLU_STATUS status;

  if (address < 0 || index < 0) {
    fprintf(stderr, "usage: i2c_register [ADDRESS (0 to 0x7F) [REGISTER (0 to 0xFF)]]\n");
    return 2;
  }
  transfer.slave_address = (uint8_t)(address << 1); /* the record holds the shifted form */
  transfer.data = &register_index;
  transfer.data_length = 1;
  transfer.read_data = &value;
  transfer.read_length = 1;
  status = KAVO_ROLU_IIC_WriteReadCombine(&transfer);
  if (status == ROLU_STATUS_DEVICE_OPEN_FAILED) {
    fprintf(stderr, "i2c_register: the bus cannot be opened\n");
    return 1;
  }
  if (status != ROLU_STATUS_SUCCESS) {
    fprintf(stderr, "i2c_register: no answer at 0x%02lX: status 0x%04X\n", address, status);
    return 1;
  }
  printf("0x%02lX register 0x%02lX: 0x%02X\n", address, index, value);
  return 0;
}
