#include "bench/peers/peer.h"

#include <libserialport.h>
#include <modbus/modbus.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "bench/mcu_process.h"
#include "bench/peers/listed_port.h"
#include "bench/require.h"
#include "bench/serial_client.h"
#include "include/kavo_rolu.h"

namespace rolu_bench {
namespace {

constexpr int kBitsPerSecond = 115200;
constexpr unsigned kPatienceMs = 1000;

// write, select, read: nothing between the program and the kernel.
class BareTermios : public Peer {
 public:
  explicit BareTermios(const std::string& device_path) : client_(device_path) {}
  void Ask() override { Require(client_.AskWatchdogTime(), "bare termios: no answer"); }

 private:
  const SerialClient client_;
};

class Serialport : public Peer {
 public:
  explicit Serialport(const std::string& device_path) {
    Require(sp_get_port_by_name(NameAsListedPort(device_path), &port_) == SP_OK,
            "libserialport: no such port");
    if (sp_open(port_, SP_MODE_READ_WRITE) != SP_OK || sp_set_baudrate(port_, kBitsPerSecond) != SP_OK ||
        sp_flush(port_, SP_BUF_INPUT) != SP_OK) {
      sp_free_port(port_);
      throw std::runtime_error("libserialport: the port cannot be opened");
    }
  }
  ~Serialport() override {
    sp_close(port_);
    sp_free_port(port_);
  }
  Serialport(const Serialport&) = delete;
  Serialport& operator=(const Serialport&) = delete;

  void Ask() override {
    constexpr std::string_view kCommand = "WDTG\r";
    constexpr std::string_view kAnswer = "003C\r\n";
    Require(sp_blocking_write(port_, kCommand.data(), kCommand.size(), kPatienceMs) ==
                static_cast<int>(kCommand.size()),
            "libserialport: the command was not written");
    std::array<char, kAnswer.size()> answer{};
    Require(sp_blocking_read(port_, answer.data(), answer.size(), kPatienceMs) ==
                    static_cast<int>(answer.size()) &&
                std::string_view(answer.data(), answer.size()) == kAnswer,
            "libserialport: another answer");
  }

 private:
  sp_port* port_ = nullptr;
};

class Modbus : public Peer {
 public:
  explicit Modbus(const std::string& device_path)
      : context_(modbus_new_rtu(device_path.c_str(), kBitsPerSecond, 'N', 8, 1), modbus_free) {
    Require(context_ != nullptr && modbus_set_slave(context_.get(), kModbusUnit) == 0 &&
                modbus_set_response_timeout(context_.get(), 1, 0) == 0 &&
                modbus_connect(context_.get()) == 0 && modbus_flush(context_.get()) >= 0,
            "libmodbus: the port cannot be opened");
  }
  ~Modbus() override { modbus_close(context_.get()); }
  Modbus(const Modbus&) = delete;
  Modbus& operator=(const Modbus&) = delete;

  void Ask() override {
    std::uint16_t time = 0;
    Require(modbus_read_registers(context_.get(), 0, 1, &time) == 1 && time == kWatchdogTime,
            "libmodbus: another answer");
  }

 private:
  const std::unique_ptr<modbus_t, void (*)(modbus_t*)> context_;
};

// The library opens the board's port, which leads to the same device.
class KavoRolu : public Peer {
 public:
  KavoRolu() { Require(KAVO_ROLU_WD_Initialize(0) == ROLU_STATUS_SUCCESS, "kavo_rolu: it does not open"); }
  ~KavoRolu() override { KAVO_ROLU_WD_Deinitialize(); }
  KavoRolu(const KavoRolu&) = delete;
  KavoRolu& operator=(const KavoRolu&) = delete;

  void Ask() override {
    unsigned short time = 0;
    Require(KAVO_ROLU_WD_GetTime(&time) == ROLU_STATUS_SUCCESS && time == kWatchdogTime,
            "kavo_rolu: another answer");
  }
};

template <typename Function>
const void* AddressOf(Function* function) {
  return reinterpret_cast<const void*>(function);
}

}  // namespace

const std::vector<PeerKind>& PeerKinds() {
  static const std::vector<PeerKind> kinds = {
      {"bare termios", [](const std::string& path) { return std::make_unique<BareTermios>(path); }, nullptr},
      {"libserialport", [](const std::string& path) { return std::make_unique<Serialport>(path); },
       AddressOf(sp_open)},
      {"libmodbus", [](const std::string& path) { return std::make_unique<Modbus>(path); },
       AddressOf(modbus_connect)},
      {"kavo_rolu", [](const std::string&) { return std::make_unique<KavoRolu>(); },
       AddressOf(KAVO_ROLU_WD_GetTime)},
  };
  return kinds;
}

}  // namespace rolu_bench
