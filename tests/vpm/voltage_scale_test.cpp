#include "vpm/voltage_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct ConversionRow {
  const char* name;
  float volts;
  float scale;
  uint16_t raw;
};

constexpr ConversionRow kConversions[] = {
    {"12 V system", 11.5F, 0.015385F, 747},
    {"24 V system", 23.0F, 0.01582F, 1454},
    {"just below a half: a product with 1 / scale is above it", 11.5002871F, 0.015385F, 747},
    {"half a unit", 0.5F, 1.0F, 1},
    {"one and a half", 1.5F, 1.0F, 2},
    {"two and a half", 2.5F, 1.0F, 3},
    {"a large number: the sum with 0.5 needs more than a float", 16777215.0F, 1.0F, 0xFFFF},
    {"just below a half, with the same need", 0.49999997F, 1.0F, 0},
    {"zero", 0.0F, 0.015385F, 0},
    {"a little negative", -0.4F, 1.0F, 0},
    {"negative", -12.0F, 0.015385F, 0},
    {"both negative", -11.5F, -0.015385F, 747},
    {"largest raw", 65535.0F, 1.0F, 65535},
    {"rounded beyond 16 bits", 65535.5F, 1.0F, 0},
    {"beyond 16 bits", 65537.0F, 1.0F, 1},
    {"largest float within 32 bits", 4294967040.0F, 1.0F, 0xFF00},
    {"beyond 32 bits", 4294967296.0F, 1.0F, 0xFFFF},
    {"far beyond", 1e30F, 1.0F, 0xFFFF},
    {"far below", -1e30F, 1.0F, 0},
    {"quotient too large for a float", 1e30F, 1e-30F, 0xFFFF},
    {"infinity", kInfinity, 1.0F, 0xFFFF},
    {"minus infinity", -kInfinity, 1.0F, 0},
    {"infinite scale", 12.0F, kInfinity, 0},
    {"no number", kNan, 1.0F, 0},
    {"scale that is no number", 12.0F, kNan, 0},
    {"scale 0", 12.0F, 0.0F, 0xFFFF},
    {"negative voltage and scale 0", -12.0F, 0.0F, 0},
    {"voltage 0 and scale 0", 0.0F, 0.0F, 0},
};

TEST(VoltageScaleTest, VoltsBecomeTheNearestRawUnitAsOnTheBoard) {
  for (const ConversionRow& row : kConversions) {
    EXPECT_EQ(VoltsToRaw(row.volts, row.scale), row.raw) << "row: " << row.name;
  }
}

}  // namespace
