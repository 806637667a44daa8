#ifndef PERIPHERALCTRL_WIRELESS_INTERFACE_H
#define PERIPHERALCTRL_WIRELESS_INTERFACE_H

// The wireless interface is switched by the system's network configuration command. Both block until
// the command has ended and answer false if it could not be started; whether it worked is not known.
bool SetWirelessInterface(bool up);
bool GetWirelessInterface(bool& up);

#endif  // PERIPHERALCTRL_WIRELESS_INTERFACE_H
