// The families that use device files. Their traffic is the board's log of these files instead of the wire.
#include "kavo_rolu.h"
#include "simulator/devices/board_paths.h"
#include "tests/support/call_table.h"
#include "tests/support/text_node.h"

namespace rolu_test {
namespace {

using rolu_sim::DeviceAccess;
using rolu_sim::DeviceOperation;

constexpr ROLU_STATUS kNull = ROLU_STATUS_NULL_POINTER;
constexpr ROLU_STATUS kOff = ROLU_STATUS_NOT_INITIALIZED;
constexpr ROLU_STATUS kNotSupported = ROLU_STATUS_NOT_SUPPORTED;

class DeviceFileTest : public CallTableTest {
 protected:
  DeviceFileTest() : CallTableTest({KAVO_ROLU_CORE_Init, KAVO_ROLU_CORE_DeInit}) {}

  void Prepare(const CallRow&) override { board().devices().ClearAccesses(); }

  // Each write as "file=text"; the file is given by the last two parts of its path.
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
};

// Writes into three bytes; one of the pointers may be null.
Call GetRange(int missing = -1) {
  return [missing](void* output) {
    auto* bytes = static_cast<unsigned char*>(output);
    ROLU_BRIGHT_RANGE range = {missing == 0 ? nullptr : bytes, missing == 1 ? nullptr : bytes + 1,
                               missing == 2 ? nullptr : bytes + 2};
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
  Refuse(kOff, {{"available", Plain(KAVO_ROLU_DISPLAY_Available)},
                {"get level", kGetBright},
                {"get level, null", OnNull(kGetBright)},
                {"level 11", SetBright(11)},
                {"range", GetRange()},
                {"range, null", With(KAVO_ROLU_DISPLAY_GetBrightRange, nullptr)},
                {"lux", kGetLux},
                {"lux, null", OnNull(kGetLux)},
                {"read pins", kReadPins},
                {"read pins, null", OnNull(kReadPins)},
                {"write pins", WritePins(1, 1)},
                {"write pins, null", With(KAVO_ROLU_DIO_WriteDOPin, nullptr)}});
}

TEST_F(DeviceFileTest, OperationsThatTheBoardDoesNotProvide) {
  for (const char* core : {"off", "on"}) {
    SCOPED_TRACE(core);
    Refuse(kNotSupported,
           {{"boot counter", With(KAVO_ROLU_CORE_AccessBootCounter, 1)},
            {"soft reset", Plain(KAVO_ROLU_CORE_SoftReset)},
            {"hard reset", Plain(KAVO_ROLU_CORE_HardReset)},
            {"save", Plain(KAVO_ROLU_CORE_RegistrySave)},
            {"clean", Plain(KAVO_ROLU_CORE_RegistryClean)},
            {"display version", With(KAVO_ROLU_DISPLAY_GetLibVersion, nullptr)},
            {"screen on", Plain(KAVO_ROLU_DISPLAY_ScreenOn)},
            {"screen off", Plain(KAVO_ROLU_DISPLAY_ScreenOff)},
            {"DIO version", With(KAVO_ROLU_DIO_GetLibVersion, nullptr)},
            {"temperature up", Plain(KAVO_ROLU_TEMPERATURESENSOR_Initialize)},
            {"temperature down", Plain(KAVO_ROLU_TEMPERATURESENSOR_Deinitialize)},
            {"light version", With(KAVO_ROLU_LIGHTSENSOR_GetLibVersion, nullptr)},
            {"I2C version", With(KAVO_ROLU_IIC_GetLibVersion, nullptr)},
            {"EEPROM version", With(KAVO_ROLU_EEPROM_GetLibVersion, nullptr)},
            {"EEPROM size", With(KAVO_ROLU_EEPROM_GetEEPROMSize, nullptr)},
            {"EEPROM up", Plain(KAVO_ROLU_EEPROM_Initialize)},
            {"EEPROM down", Plain(KAVO_ROLU_EEPROM_Deinitialize)},
            {"EEPROM read", [](void*) { return KAVO_ROLU_EEPROM_ReadByte(0, nullptr); }},
            {"EEPROM write", [](void*) { return KAVO_ROLU_EEPROM_WriteByte(0, 0); }},
            {"EEPROM reads", [](void*) { return KAVO_ROLU_EEPROM_ReadMultiByte(0, 0, 0, 0); }},
            {"EEPROM writes", [](void*) { return KAVO_ROLU_EEPROM_WriteMultiByte(0, 0, 0, 0); }}});
    Refuse(kOff, {{"get voice source", With(KAVO_ROLU_DIO_GetVoiceSourceControlPin, 0)},
                  {"set voice source", With(KAVO_ROLU_DIO_SetVoiceSourceControlPin, 0)},
                  {"get Bluetooth", With(KAVO_ROLU_DIO_GetBluetoothEnablePin, 0)},
                  {"set Bluetooth", With(KAVO_ROLU_DIO_SetBluetoothEnablePin, 0)},
                  {"get voice module", With(KAVO_ROLU_DIO_GetVoiceModuleSelectPin, 0)},
                  {"set voice module", With(KAVO_ROLU_DIO_SetVoiceModuleSelectPin, 0)},
                  {"core 1", With(KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore1Temperature, 0)},
                  {"core 2", With(KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore2Temperature, 0)},
                  {"system", With(KAVO_ROLU_TEMPERATURESENSOR_GetSystem1Temperature, 0)}});
    Refuse(ROLU_STATUS_IIC_AVAILABLE, {{"I2C", Plain(KAVO_ROLU_IIC_Available)}});
    KAVO_ROLU_CORE_Init();
  }
}

TEST_F(DeviceFileTest, Backlight) {
  BringUp();
  Refuse(ROLU_STATUS_DISPLAY_AVAILABLE, {{"available", Plain(KAVO_ROLU_DISPLAY_Available)}});
  Refuse(kNull, {{"range without min", GetRange(0)},
                 {"range without max", GetRange(1)},
                 {"range without step", GetRange(2)},
                 {"range, null", With(KAVO_ROLU_DISPLAY_GetBrightRange, nullptr)},
                 {"get level, null", OnNull(kGetBright)}});
  Refuse(kNotSupported, {{"too high", SetBright(11)}});
  Run({Gives("range", GetRange(), {}, {0, 10, 1}),
       Orders("highest", SetBright(10), {}, "vorn512p/brightness=10 ", 0),
       Orders("lowest", SetBright(0), {}, "vorn512p/brightness=0 ", 0),
       Gives("reads back", kGetBright, {}, {0})});
  constexpr struct {
    const char* text;
    unsigned char level;
  } kRows[] = {{"7\n", 7},  {" 12 rest", 12},    {"300", 44},
               {"-1", 255}, {"4294967297", 255}, {"-99999999999999999999", 0}};
  for (const auto& row : kRows) {
    Show(rolu_sim::kBacklightPath, row.text);
    Run({Gives(row.text, kGetBright, {}, {row.level})});
  }
}

TEST_F(DeviceFileTest, LightSensor) {
  constexpr struct {
    const char* text;
    unsigned short lux;
  } kRows[] = {{"350\n", 350}, {"123456", 12345}, {"-1", 65535}, {" 42lx", 42}, {"99999", 34463}};
  BringUp();
  for (const auto& row : kRows) {
    Show(rolu_sim::kLuxPath, row.text);
    Run({Gives(row.text, kGetLux, {}, Written(row.lux))});
  }
  Refuse(kNull, {{"null", OnNull(kGetLux)}});
}

TEST_F(DeviceFileTest, PinsAreExportedOnceAndReadAndDriven) {
  // The core family may be down.
  const CallRow prepare =
      Orders("prepare", Plain(KAVO_ROLU_DIO_Initialize), {},
             "gpio/export=37 gpio/export=36 gpio/export=35 gpio/export=34 "
             "gpio37/direction=in gpio36/direction=in gpio35/direction=out gpio34/direction=out ",
             0);
  Run({prepare});
  BringUp();
  Run({{"leave", Plain(KAVO_ROLU_DIO_Deinitialize)},
       prepare,
       Orders("1 is high", WritePins(1, 0), {}, "gpio35/value=1 gpio34/value=0 ", 0),
       Orders("2 is low", WritePins(2, 1), {}, "gpio35/value=0 gpio34/value=1 ", 0)});
  Refuse(kNull,
         {{"read, null", OnNull(kReadPins)}, {"write, null", With(KAVO_ROLU_DIO_WriteDOPin, nullptr)}});
  Show("/sys/class/gpio/gpio37/value", "1\n");
  Show("/sys/class/gpio/gpio36/value", "0\n");
  Run({Gives("high, low", kReadPins, {}, {1, 0})});
  Show("/sys/class/gpio/gpio37/value", "");
  Show("/sys/class/gpio/gpio36/value", "1");
  Run({Gives("nothing to read, high", kReadPins, {}, {0, 1})});
}

TEST_F(DeviceFileTest, PinsThatAreNotPreparedCannotBeUsed) {
  BringUp();
  Refuse(ROLU_STATUS_DEVICE_OPEN_FAILED, {{"read", kReadPins}, {"write", WritePins(1, 0)}});
}

}  // namespace
}  // namespace rolu_test
