// Every fault of a device file, at every file of every call that uses one. Checks the status and the caller's
// memory, that nothing stays open, and that the next call succeeds.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ostream>
#include <set>

#include "kavo_rolu.h"
#include "simulator/devices/board_paths.h"
#include "tests/support/call_table.h"
#include "tests/support/interface_header.h"
#include "tests/support/process_state.h"
#include "tests/support/text_node.h"

namespace rolu_test {
namespace {

using rolu_sim::DeviceAccess;
using rolu_sim::DeviceFaults;
using rolu_sim::DeviceOperation;

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kIoFailed = ROLU_STATUS_DEVICE_IO_FAILED;

constexpr char kInput1[] = "/sys/class/gpio/gpio37/value";
constexpr char kInput2[] = "/sys/class/gpio/gpio36/value";

struct DeviceCall {
  const char* name;  // the name of the function, without its prefix
  Call call;
  // In the order of use. Each file gives an equal part of the output.
  std::vector<const char*> files;
  Bytes output = {};
  // The status when a file cannot be opened, its slave cannot be selected, a read fails, a write fails.
  // Success means that the call ignores the failure.
  ROLU_STATUS unopened = ROLU_STATUS_DEVICE_OPEN_FAILED;
  ROLU_STATUS unselected = kDone;
  ROLU_STATUS unread = kDone;
  ROLU_STATUS unwritten = kDone;
  // The output when each read gives only one byte.
  Bytes short_output = output;
  std::string wire = {};  // what the MCU receives

  bool ReadsText() const { return !output.empty() && files.front() != rolu_sim::kI2cBusPath; }
};

void PrintTo(const DeviceCall& device_call, std::ostream* stream) {
  *stream << device_call.name;
}

unsigned char register_index = 7;

ROLU_STATUS ReadI2c(void* output) {
  ROLU_IIC_TRANSFER record = {0, 0xA2, static_cast<unsigned char*>(output), 2, nullptr, 0};
  return KAVO_ROLU_IIC_Read(&record);
}
ROLU_STATUS WriteI2c(void*) {
  ROLU_IIC_TRANSFER record = {0, 0xA2, &register_index, 1, nullptr, 0};
  return KAVO_ROLU_IIC_Write(&record);
}
ROLU_STATUS CombineI2c(void* output) {
  ROLU_IIC_TRANSFER record = {0, 0xA2, &register_index, 1, static_cast<unsigned char*>(output), 2};
  return KAVO_ROLU_IIC_WriteReadCombine(&record);
}
ROLU_STATUS WritePins(void*) {
  const unsigned char pins[] = {1, 0};
  return KAVO_ROLU_DIO_WriteDOPin(pins);
}
// In the tests the family is up, and only coming up uses these files.
ROLU_STATUS ComeUpAgain(void*) {
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Deinitialize(), kDone);
  return KAVO_ROLU_PERIPHERALCTRL_Initialize();
}
ROLU_STATUS SetGps(void*) {
  return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE_GPS, 1);
}
ROLU_STATUS GetGps(void* output) {
  return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_GPS, static_cast<char*>(output));
}

std::vector<DeviceCall> DeviceCalls() {
  const char* gps = "/sys/class/gpio/gpio45/value";
  const std::vector<const char*> bus = {rolu_sim::kI2cBusPath};
  const std::vector<const char*> backlight = {rolu_sim::kBacklightPath};
  constexpr ROLU_STATUS kNoFile = ROLU_STATUS_FILE_OPEN_FAILED;
  return {
      {.name = "DISPLAY_GetBright",
       .call = Into(KAVO_ROLU_DISPLAY_GetBright),
       .files = backlight,
       .output = {7},
       .unopened = kNoFile,
       .unread = ROLU_STATUS_FILE_ACCESS_FAILED},
      {.name = "DISPLAY_SetBright",
       .call = With(KAVO_ROLU_DISPLAY_SetBright, 7),
       .files = backlight,
       .unopened = kNoFile},
      {.name = "LIGHTSENSOR_GetStatus",
       .call = Into(KAVO_ROLU_LIGHTSENSOR_GetStatus),
       .files = {rolu_sim::kLuxPath},
       .output = Written(static_cast<unsigned short>(350)),
       .short_output = Written(static_cast<unsigned short>(3))},
      {.name = "DIO_ReadDIPin",
       .call = Into(KAVO_ROLU_DIO_ReadDIPin),
       .files = {kInput1, kInput2},
       .output = {1, 1}},
      {.name = "DIO_WriteDOPin",
       .call = WritePins,
       .files = {"/sys/class/gpio/gpio35/value", "/sys/class/gpio/gpio34/value"}},
      {.name = "DIO_Initialize",
       .call = Plain(KAVO_ROLU_DIO_Initialize),
       .files = {rolu_sim::kGpioExportPath, "/sys/class/gpio/gpio37/direction",
                 "/sys/class/gpio/gpio36/direction", "/sys/class/gpio/gpio35/direction",
                 "/sys/class/gpio/gpio34/direction"}},
      // The failure to prepare a line shows only when the line is used.
      {.name = "PERIPHERALCTRL_Initialize",
       .call = ComeUpAgain,
       .files = {rolu_sim::kGpioExportPath, "/sys/class/gpio/gpio45/direction"},
       .unopened = kDone,
       .wire = "Hello\r"},
      {.name = "PERIPHERALCTRL_GetPeripheralControl", .call = GetGps, .files = {gps}, .output = {1}},
      {.name = "PERIPHERALCTRL_SetPeripheralControl", .call = SetGps, .files = {gps}},
      {.name = "IIC_Read",
       .call = ReadI2c,
       .files = bus,
       .output = {0xAB, 0xCD},
       .unselected = kIoFailed,
       .unread = kIoFailed,
       .short_output = {0xAB}},
      {.name = "IIC_Write", .call = WriteI2c, .files = bus, .unselected = kIoFailed, .unwritten = kIoFailed},
      {.name = "IIC_WriteReadCombine",
       .call = CombineI2c,
       .files = bus,
       .output = {0xAB, 0xCD},
       .unselected = kIoFailed,
       .unread = kIoFailed,
       .unwritten = kIoFailed,
       .short_output = {0xAB}},
      {.name = "CORE_Reset", .call = Plain(KAVO_ROLU_CORE_Reset), .files = bus, .unselected = kIoFailed},
  };
}

class DeviceFaultMatrix : public testing::TestWithParam<DeviceCall>, protected CallTable {
 protected:
  DeviceFaultMatrix()
      : CallTable({KAVO_ROLU_PERIPHERALCTRL_Initialize, KAVO_ROLU_PERIPHERALCTRL_Deinitialize}) {}

  void SetUp() override {
    registers_->SetRegister(7, 0xAB);
    registers_->SetRegister(8, 0xCD);
    board().i2c().Attach(0xA2 >> 1, registers_);
    BringUp();
    KAVO_ROLU_CORE_Init();
    KAVO_ROLU_DIO_Initialize();
    Restore();
  }
  void TearDown() override {
    KAVO_ROLU_CORE_DeInit();
    family().deinitialize();
    EXPECT_EQ(LeftSince(before_), "");
    RecordProperty("met", met_);
  }

  // Makes the devices healthy again.
  void Restore() {
    for (const char* file : GetParam().files) board().devices().SetFaults(file, {});
    if (GetParam().ReadsText()) {
      for (const char* file : GetParam().files) Show(file, "1\n");
      Show(rolu_sim::kBacklightPath, "7\n");
      Show(rolu_sim::kLuxPath, "350\n");
    }
    WriteI2c(nullptr);  // selects the register that the next transfer reads
  }
  void Show(const char* file, const std::string& text, int end_errno = 0) {
    board().devices().AddNode(file, std::make_shared<TextNode>(text, end_errno));
  }

  // The output when a read of the file at `index` gives nothing.
  static Bytes Blank(size_t index) {
    Bytes output = GetParam().output;
    const size_t part = output.size() / GetParam().files.size();
    for (size_t i = 0; i < part; ++i) output[index * part + i] = 0;
    return output;
  }

  // `struck` is the operation that fails. A call without this operation does not notice the fault.
  void Expect(const char* fault, size_t index, DeviceOperation struck, ROLU_STATUS status,
              const Bytes& output) {
    const char* file = GetParam().files[index];
    SCOPED_TRACE(std::string(file) + ": " + fault);
    board().devices().ClearAccesses();
    const Made made = Make({"", GetParam().call});
    EXPECT_EQ(FaultOf(made, status, output, GetParam().wire), "");
    EXPECT_TRUE(WaitUntil([&] { return board().devices().OpenCount(file) == 0; }));
    const std::vector<DeviceAccess> accesses = board().devices().Accesses(file);
    met_ += std::any_of(accesses.begin(), accesses.end(),
                        [&](const DeviceAccess& access) { return access.operation == struck; });
    Restore();
    CallTable::Run({{"the next call", GetParam().call, {}, kDone, GetParam().output, GetParam().wire}});
    Restore();
  }

  void Strike(const char* fault, size_t index, DeviceOperation struck, const DeviceFaults& faults,
              ROLU_STATUS status, const Bytes& output) {
    board().devices().SetFaults(GetParam().files[index], faults);
    Expect(fault, index, struck, status, output);
  }

  // A call that reports a failure leaves the caller's memory alone.
  static Bytes OutputOf(ROLU_STATUS status, const Bytes& of_success) {
    return status == kDone ? of_success : Bytes{};
  }

  const ProcessState before_;
  int met_ = 0;  // how many faults the call met
  std::shared_ptr<rolu_sim::I2cRegisterDevice> registers_ = std::make_shared<rolu_sim::I2cRegisterDevice>();
};

template <typename Member, typename Value>
DeviceFaults Failing(Member DeviceFaults::*member, Value value) {
  DeviceFaults faults;
  faults.*member = value;
  return faults;
}

TEST_P(DeviceFaultMatrix, EndsTheCallAsStatedAndTheNextOneIsWhole) {
  const DeviceCall& call = GetParam();
  for (size_t i = 0; i < call.files.size(); ++i) {
    const size_t part = call.output.size() / call.files.size();
    const Bytes before_file(call.output.begin(), call.output.begin() + static_cast<std::ptrdiff_t>(i * part));
    Strike("missing", i, DeviceOperation::kOpen, Failing(&DeviceFaults::missing, true), call.unopened,
           before_file);
    for (const int error : {EACCES, EBUSY, EMFILE, EINTR}) {
      Strike(strerrorname_np(error), i, DeviceOperation::kOpen, Failing(&DeviceFaults::open_errno, error),
             call.unopened, before_file);
    }
    for (const int error : {EIO, EINTR}) {
      Strike("no ioctl", i, DeviceOperation::kIoctl, Failing(&DeviceFaults::ioctl_errno, error),
             call.unselected, OutputOf(call.unselected, call.output));
      Strike("no read", i, DeviceOperation::kRead, Failing(&DeviceFaults::read_errno, error), call.unread,
             OutputOf(call.unread, Blank(i)));
      Strike("no write", i, DeviceOperation::kWrite, Failing(&DeviceFaults::write_errno, error),
             call.unwritten, OutputOf(call.unwritten, call.output));
    }
    Strike("short reads", i, DeviceOperation::kRead, Failing(&DeviceFaults::max_read_bytes, 1U), kDone,
           call.short_output);
  }
}

class DeviceText : public DeviceFaultMatrix {};

TEST_P(DeviceText, ReadsWhatItCanOfATextThatIsNone) {
  const DeviceCall& call = GetParam();
  for (size_t i = 0; i < call.files.size(); ++i) {
    using std::string_literals::operator""s;
    for (const std::string& text : {""s, "\n"s, "\0\xff\x80"s, "garbage"s, std::string(8000, '.')}) {
      Show(call.files[i], text);
      Expect(text.c_str(), i, DeviceOperation::kRead, call.unread, OutputOf(call.unread, Blank(i)));
    }
    // The read fails half way, for good or because of a signal. The call does not repeat it, and uses what it
    // has read.
    Bytes one = Blank(i);
    one[i * one.size() / call.files.size()] = 1;
    for (const int error : {EIO, EINTR}) {
      Show(call.files[i], "1", error);
      Expect("fails half way", i, DeviceOperation::kRead, kDone, one);
    }
  }
}

std::vector<DeviceCall> TextCalls() {
  std::vector<DeviceCall> calls = DeviceCalls();
  std::erase_if(calls, [](const DeviceCall& call) { return !call.ReadsText(); });
  return calls;
}

std::string NameOf(const testing::TestParamInfo<DeviceCall>& info) {
  return info.param.name;
}

TEST(TableOfDeviceCalls, HoldsEveryExportThatUsesDeviceFiles) {
  std::set<std::string> in_table;
  for (const DeviceCall& call : DeviceCalls()) in_table.insert(call.name);
  std::set<std::string> declared;
  for (const auto& [function, comment] : DeclaredFunctions()) {
    const std::string statement = BlockingStatement(comment);
    for (const char* devices : {"device files", "bus transfers"}) {
      if (statement.find(devices) != std::string::npos) declared.insert(function);
    }
  }
  EXPECT_EQ(in_table, declared);
}

INSTANTIATE_TEST_SUITE_P(Each, DeviceFaultMatrix, testing::ValuesIn(DeviceCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(Each, DeviceText, testing::ValuesIn(TextCalls()), NameOf);

}  // namespace
}  // namespace rolu_test
