#pragma once

#include "simulator/preload/board_client.h"

namespace rolu_sim {

// An ioctl on a device. The requests of i2c-dev that take a pointer are followed to what it points to.
int ControlDevice(DeviceId device, unsigned long request, void* argument);

}  // namespace rolu_sim
