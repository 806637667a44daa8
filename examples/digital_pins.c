/* Reads the two digital inputs and shows them on the two digital outputs. */
#include <stdbool.h>
#include <stdio.h>

#include "kavo_rolu.h"

static bool Succeeded(ROLU_STATUS status, const char* action) {
  if (status == ROLU_STATUS_SUCCESS) return true;
  fprintf(stderr, "digital_pins: %s: status 0x%04X\n", action, (unsigned int)status);
  return false;
}

int main(void) {
  unsigned char inputs[2] = {0, 0};
  int ok;

  /* The pins follow the core; Initialize makes their GPIO lines available. */
  if (!Succeeded(KAVO_ROLU_CORE_Init(), "switch the core on")) return 1;
  ok = Succeeded(KAVO_ROLU_DIO_Initialize(), "prepare the pins") &&
       Succeeded(KAVO_ROLU_DIO_ReadDIPin(inputs), "read the inputs");
  if (ok) {
    printf("input 1 is %s, input 2 is %s\n", inputs[0] ? "high" : "low", inputs[1] ? "high" : "low");
    ok = Succeeded(KAVO_ROLU_DIO_WriteDOPin(inputs), "drive the outputs");
  }
  /* The outputs keep their levels after this and after the program's end. */
  if (ok) ok = Succeeded(KAVO_ROLU_DIO_Deinitialize(), "leave the pins");
  return Succeeded(KAVO_ROLU_CORE_DeInit(), "switch the core off") && ok ? 0 : 1;
}
