#ifndef VPM_VOLTAGE_SCALE_H
#define VPM_VOLTAGE_SCALE_H

#include <cstdint>

// The MCU measures the car battery in raw 16-bit units; a scale is volts per unit.

// The nearest raw unit, halves upwards, as the board's processor converts: a negative voltage and a NaN give
// 0, a quotient beyond 32 bits saturates at 32 bits. The result is the low 16 bits of that.
uint16_t VoltsToRaw(float volts, float scale);

#endif  // VPM_VOLTAGE_SCALE_H
