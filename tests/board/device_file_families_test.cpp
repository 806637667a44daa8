// The families that work on device files: the board's log of the files takes the place of the wire.
#include "kavo_rolu.h"
#include "simulator/devices/board_paths.h"
#include "tests/support/call_table.h"
#include "tests/support/text_node.h"

namespace rolu_test {
namespace {

using rolu_sim::DeviceAccess;
using rolu_sim::DeviceFaults;
using rolu_sim::DeviceOperation;

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kNull = ROLU_STATUS_NULL_POINTER;
constexpr ROLU_STATUS kOff = ROLU_STATUS_NOT_INITIALIZED;
constexpr ROLU_STATUS kNoDevice = ROLU_STATUS_DEVICE_OPEN_FAILED;
constexpr ROLU_STATUS kNotSupported = ROLU_STATUS_NOT_SUPPORTED;

class DeviceFileTest : public CallTableTest {
 protected:
  DeviceFileTest() : CallTableTest({KAVO_ROLU_CORE_Init, KAVO_ROLU_CORE_DeInit}) {}

  void Prepare(const CallRow&) override { board().devices().ClearAccesses(); }

  // Each write as "file=text", with the file's last two names.
  std::string Traffic() override {
    std::string writes;
    for (const DeviceAccess& access : board().devices().Accesses()) {
      if (access.operation != DeviceOperation::kWrite) continue;
      const size_t name = access.path.rfind('/', access.path.rfind('/') - 1) + 1;
      writes += access.path.substr(name) + "=" + access.bytes + " ";
    }
    return writes;
  }

  void Show(const char* path, const std::string& text) {
    board().devices().AddNode(path, std::make_shared<TextNode>(text));
  }
  void SetMissing(const char* path) {
    DeviceFaults faults;
    faults.missing = true;
    board().devices().SetFaults(path, faults);
  }
};

Bytes Byte(int value) {
  return Written(static_cast<unsigned char>(value));
}
Bytes TwoBytes(int first, int second) {
  return Written(static_cast<unsigned char>(first), static_cast<unsigned char>(second));
}
Bytes Short(int value) {
  return Written(static_cast<unsigned short>(value));
}

ROLU_STATUS GetRange(void* output) {
  auto* bytes = static_cast<unsigned char*>(output);
  ROLU_BRIGHT_RANGE range = {bytes, bytes + 1, bytes + 2};
  return KAVO_ROLU_DISPLAY_GetBrightRange(&range);
}
Call GetRangeWithout(int missing) {
  return [missing](void* output) {
    auto* bytes = static_cast<unsigned char*>(output);
    ROLU_BRIGHT_RANGE range = {bytes, bytes + 1, bytes + 2};
    (missing == 0 ? range.min : missing == 1 ? range.max : range.step) = nullptr;
    return KAVO_ROLU_DISPLAY_GetBrightRange(&range);
  };
}
Call WritePins(unsigned char first, unsigned char second) {
  return [=](void*) {
    const unsigned char pins[] = {first, second};
    return KAVO_ROLU_DIO_WriteDOPin(pins);
  };
}

const Call kGetBright = Into(KAVO_ROLU_DISPLAY_GetBright);
const Call kGetLux = Into(KAVO_ROLU_LIGHTSENSOR_GetStatus);
const Call kReadPins = Into(KAVO_ROLU_DIO_ReadDIPin);
Call SetBright(int level) {
  return With(KAVO_ROLU_DISPLAY_SetBright, level);
}

TEST_F(DeviceFileTest, FamiliesThatFollowTheCoreAreOffWithIt) {
  Run({{"available", Plain(KAVO_ROLU_DISPLAY_Available), {}, kOff},
       {"get level", kGetBright, {}, kOff},
       {"get level, null", kGetBright, {}, kOff, {}, "", 0, true},
       {"level 11", SetBright(11), {}, kOff},
       {"range", GetRange, {}, kOff},
       {"range, null", With(KAVO_ROLU_DISPLAY_GetBrightRange, nullptr), {}, kOff},
       {"lux", kGetLux, {}, kOff},
       {"lux, null", kGetLux, {}, kOff, {}, "", 0, true},
       {"read pins", kReadPins, {}, kOff},
       {"read pins, null", kReadPins, {}, kOff, {}, "", 0, true},
       {"write pins", WritePins(1, 1), {}, kOff},
       {"write pins, null", With(KAVO_ROLU_DIO_WriteDOPin, nullptr), {}, kOff}});
}

TEST_F(DeviceFileTest, OperationsThatTheBoardDoesNotProvide) {
  for (const char* core : {"off", "on"}) {
    SCOPED_TRACE(core);
    Run({{"display version", With(KAVO_ROLU_DISPLAY_GetLibVersion, nullptr), {}, kNotSupported},
         {"screen on", Plain(KAVO_ROLU_DISPLAY_ScreenOn), {}, kNotSupported},
         {"screen off", Plain(KAVO_ROLU_DISPLAY_ScreenOff), {}, kNotSupported},
         {"DIO version", With(KAVO_ROLU_DIO_GetLibVersion, nullptr), {}, kNotSupported},
         {"get voice source", With(KAVO_ROLU_DIO_GetVoiceSourceControlPin, 0), {}, kOff},
         {"set voice source", With(KAVO_ROLU_DIO_SetVoiceSourceControlPin, 0), {}, kOff},
         {"get Bluetooth", With(KAVO_ROLU_DIO_GetBluetoothEnablePin, 0), {}, kOff},
         {"set Bluetooth", With(KAVO_ROLU_DIO_SetBluetoothEnablePin, 0), {}, kOff},
         {"get voice module", With(KAVO_ROLU_DIO_GetVoiceModuleSelectPin, 0), {}, kOff},
         {"set voice module", With(KAVO_ROLU_DIO_SetVoiceModuleSelectPin, 0), {}, kOff},
         {"temperature up", Plain(KAVO_ROLU_TEMPERATURESENSOR_Initialize), {}, kNotSupported},
         {"temperature down", Plain(KAVO_ROLU_TEMPERATURESENSOR_Deinitialize), {}, kNotSupported},
         {"core 1", With(KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore1Temperature, 0), {}, kOff},
         {"core 2", With(KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore2Temperature, 0), {}, kOff},
         {"system", With(KAVO_ROLU_TEMPERATURESENSOR_GetSystem1Temperature, 0), {}, kOff},
         {"light version", With(KAVO_ROLU_LIGHTSENSOR_GetLibVersion, nullptr), {}, kNotSupported},
         {"I2C version", With(KAVO_ROLU_IIC_GetLibVersion, nullptr), {}, kNotSupported},
         {"I2C available", Plain(KAVO_ROLU_IIC_Available), {}, ROLU_STATUS_IIC_AVAILABLE},
         {"EEPROM version", With(KAVO_ROLU_EEPROM_GetLibVersion, nullptr), {}, kNotSupported},
         {"EEPROM size", With(KAVO_ROLU_EEPROM_GetEEPROMSize, nullptr), {}, kNotSupported},
         {"EEPROM up", Plain(KAVO_ROLU_EEPROM_Initialize), {}, kNotSupported},
         {"EEPROM down", Plain(KAVO_ROLU_EEPROM_Deinitialize), {}, kNotSupported},
         {"EEPROM read", [](void*) { return KAVO_ROLU_EEPROM_ReadByte(0, nullptr); }, {}, kNotSupported},
         {"EEPROM write", [](void*) { return KAVO_ROLU_EEPROM_WriteByte(0, 0); }, {}, kNotSupported},
         {"EEPROM reads",
          [](void*) { return KAVO_ROLU_EEPROM_ReadMultiByte(0, 0, 0, 0); },
          {},
          kNotSupported},
         {"EEPROM writes",
          [](void*) { return KAVO_ROLU_EEPROM_WriteMultiByte(0, 0, 0, 0); },
          {},
          kNotSupported}});
    KAVO_ROLU_CORE_Init();
  }
}

TEST_F(DeviceFileTest, Backlight) {
  BringUp();
  Run({{"available", Plain(KAVO_ROLU_DISPLAY_Available), {}, ROLU_STATUS_DISPLAY_AVAILABLE},
       {"range", GetRange, {}, kDone, Written('\0', '\n', '\1')},
       {"range without min", GetRangeWithout(0), {}, kNull},
       {"range without max", GetRangeWithout(1), {}, kNull},
       {"range without step", GetRangeWithout(2), {}, kNull},
       {"range, null", With(KAVO_ROLU_DISPLAY_GetBrightRange, nullptr), {}, kNull},
       {"get level, null", kGetBright, {}, kNull, {}, "", 0, true},
       {"highest", SetBright(10), {}, kDone, {}, "vorn512p/brightness=10 "},
       {"lowest", SetBright(0), {}, kDone, {}, "vorn512p/brightness=0 "},
       {"reads back", kGetBright, {}, kDone, Byte(0)},
       {"too high", SetBright(11), {}, kNotSupported}});
  struct Row {
    const char* text;
    int level;  // -1: not a number
  };
  constexpr Row kRows[] = {{"7\n", 7}, {" 12 rest", 12}, {"300", 44},         {"-1", 255},
                           {"", -1},   {"seven", -1},    {"4294967297", 255}, {"-99999999999999999999", 0}};
  for (const Row& row : kRows) {
    Show(rolu_sim::kBacklightPath, row.text);
    if (row.level < 0) {
      Run({{row.text, kGetBright, {}, ROLU_STATUS_FILE_ACCESS_FAILED}});
    } else {
      Run({{row.text, kGetBright, {}, kDone, Byte(row.level)}});
    }
  }
}

TEST_F(DeviceFileTest, LightSensor) {
  struct Row {
    const char* text;
    int lux;
  };
  constexpr Row kRows[] = {{"350\n", 350}, {"123456", 12345}, {"", 0},         {"-1", 65535},
                           {" 42lx", 42},  {"dark", 0},       {"99999", 34463}};
  BringUp();
  for (const Row& row : kRows) {
    Show(rolu_sim::kLuxPath, row.text);
    Run({{row.text, kGetLux, {}, kDone, Short(row.lux)}, {"null", kGetLux, {}, kNull, {}, "", 0, true}});
  }
}

constexpr char kPrepared[] =
    "gpio/export=37 gpio/export=36 gpio/export=35 gpio/export=34 "
    "gpio37/direction=in gpio36/direction=in gpio35/direction=out gpio34/direction=out ";

TEST_F(DeviceFileTest, PinsAreExportedOnceAndReadAndDriven) {
  const Call prepare = Plain(KAVO_ROLU_DIO_Initialize);
  BringUp();
  Run({{"leave before", Plain(KAVO_ROLU_DIO_Deinitialize), {}, kDone},
       {"read before", kReadPins, {}, kNoDevice},
       {"write before", WritePins(1, 0), {}, kNoDevice},
       {"prepare", prepare, {}, kDone, {}, kPrepared},
       {"prepare again", prepare, {}, kDone, {}, kPrepared},
       {"1 is high", WritePins(1, 0), {}, kDone, {}, "gpio35/value=1 gpio34/value=0 "},
       {"2 is low", WritePins(2, 1), {}, kDone, {}, "gpio35/value=0 gpio34/value=1 "},
       {"read, null", kReadPins, {}, kNull, {}, "", 0, true},
       {"write, null", With(KAVO_ROLU_DIO_WriteDOPin, nullptr), {}, kNull}});
  Show("/sys/class/gpio/gpio37/value", "1\n");
  Show("/sys/class/gpio/gpio36/value", "0\n");
  Run({{"high, low", kReadPins, {}, kDone, TwoBytes(1, 0)}});
  Show("/sys/class/gpio/gpio37/value", "");
  Show("/sys/class/gpio/gpio36/value", "1");
  Run({{"nothing to read, high", kReadPins, {}, kDone, TwoBytes(0, 1)}});
  SetMissing("/sys/class/gpio/gpio34/value");
  Run({{"second output missing", WritePins(1, 1), {}, kNoDevice, {}, "gpio35/value=1 "}});
}

TEST_F(DeviceFileTest, PinsNeedNoCoreToBePrepared) {
  Run({{"prepare", Plain(KAVO_ROLU_DIO_Initialize), {}, kDone, {}, kPrepared}});
  SetMissing("/sys/class/gpio/gpio35/direction");
  Run({{"a line fails",
        Plain(KAVO_ROLU_DIO_Initialize),
        {},
        kNoDevice,
        {},
        "gpio/export=37 gpio/export=36 gpio/export=35 gpio/export=34 gpio37/direction=in "
        "gpio36/direction=in "}});
}

}  // namespace
}  // namespace rolu_test
