#ifndef PERIPHERALCTRL_GPS_POWER_H
#define PERIPHERALCTRL_GPS_POWER_H

// The power of the GPS receiver is a GPIO line.

// Makes the line available and an output; failures show when the line is used.
void gpio_gps_pin_init();

// False if the line cannot be opened.
bool SetGpsPower(bool on);
bool GetGpsPower(bool& on);

#endif  // PERIPHERALCTRL_GPS_POWER_H
