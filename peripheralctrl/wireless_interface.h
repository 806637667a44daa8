#ifndef PERIPHERALCTRL_WIRELESS_INTERFACE_H
#define PERIPHERALCTRL_WIRELESS_INTERFACE_H

// The wireless interface is switched by the system's network configuration command. Both functions block
// until the command has ended. They return false if it could not be started; they do not know whether it
// worked.
bool SetWirelessInterface(bool up);
bool GetWirelessInterface(bool& up);

#endif  // PERIPHERALCTRL_WIRELESS_INTERFACE_H
