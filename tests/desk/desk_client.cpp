// A client that behaves like an application. It makes the calls that its arguments name, one after another,
// and prints for each call the status and the value. A call that sends commands brings its family up first.

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include "kavo_rolu.h"

namespace {

// Discards the line that the start-up prints, so that only these lines are printed.
void Print(const std::string& call, ROLU_STATUS status, const std::string& value = {}) {
  std::printf("%s %04X%s%s\n", call.c_str(), static_cast<unsigned>(status), value.empty() ? "" : " ",
              value.c_str());
  std::fflush(stdout);
}

void ReadVoltage() {
  float volts = 0;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts);
  std::array<char, 32> text{};
  if (status == ROLU_STATUS_SUCCESS) {
    std::snprintf(text.data(), text.size(), "%.2f", static_cast<double>(volts));
  }
  Print("voltage", status, text.data());
}

// Reads until a reading fails.
void ReadVoltageUntilFailure() {
  float volts = 0;
  ROLU_STATUS status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts);
  Print("first", status);
  while (status == ROLU_STATUS_SUCCESS) status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts);
  Print("failure", status);
}

void ReadRegister() {
  std::array<unsigned char, 1> index = {0x10};
  std::array<unsigned char, 1> value = {};
  ROLU_IIC_TRANSFER transfer{0, 0xA0, index.data(), 1, value.data(), 1};
  const ROLU_STATUS status = KAVO_ROLU_IIC_WriteReadCombine(&transfer);
  Print("register", status, std::to_string(value[0]));
}

// Waits for the warning that the ignition is off.
void AwaitWarning() {
  static pthread_cond_t warned = PTHREAD_COND_INITIALIZER;
  static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  pthread_mutex_lock(&mutex);
  Print("registered", KAVO_ROLU_VPM_SetIgnPowerOffEvent(&warned));
  pthread_cond_wait(&warned, &mutex);
  pthread_mutex_unlock(&mutex);
  Print("warned", ROLU_STATUS_SUCCESS);
}

struct Call {
  std::string_view name;
  void (*make)();
};
constexpr std::array<Call, 11> kCalls = {{
    {"voltage", ReadVoltage},
    {"failure", ReadVoltageUntilFailure},
    {"platform",
     [] {
       std::array<char, 13> name{};
       const ROLU_STATUS status = KAVO_ROLU_VPM_GetPlatformName(name.data());
       Print("platform", status, name.data());
     }},
    {"inputs",
     [] {
       std::array<unsigned char, 2> pins{};
       KAVO_ROLU_DIO_Initialize();
       const ROLU_STATUS status = KAVO_ROLU_DIO_ReadDIPin(pins.data());
       Print("inputs", status, std::to_string(pins[0]) + std::to_string(pins[1]));
     }},
    {"outputs",
     [] {
       std::array<unsigned char, 2> pins = {1, 0};
       KAVO_ROLU_DIO_Initialize();
       Print("outputs", KAVO_ROLU_DIO_WriteDOPin(pins.data()));
     }},
    {"register", ReadRegister},
    {"light",
     [] {
       unsigned short lux = 0;
       const ROLU_STATUS status = KAVO_ROLU_LIGHTSENSOR_GetStatus(&lux);
       Print("light", status, std::to_string(lux));
     }},
    {"watchdog",
     [] {
       KAVO_ROLU_WD_Initialize(0);
       KAVO_ROLU_WD_SetTime(1);
       Print("watchdog", KAVO_ROLU_WD_Enabled(true));
       KAVO_ROLU_WD_Deinitialize();
     }},
    {"alarm",
     [] {
       KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_DAILY, {0, 7, 30});
       Print("alarm", KAVO_ROLU_VPM_SetAlarmActive(1));
     }},
    {"warning", AwaitWarning},
    {"sleep", [] { std::this_thread::sleep_for(std::chrono::milliseconds(1500)); }},
}};

}  // namespace

int main(int argc, char** argv) {
  KAVO_ROLU_CORE_Init();
  Print("start", KAVO_ROLU_VPM_Initialize(0));
  for (int index = 1; index < argc; ++index) {
    const auto* const call =
        std::find_if(kCalls.begin(), kCalls.end(), [&](const Call& one) { return argv[index] == one.name; });
    if (call == kCalls.end()) return 1;
    call->make();
  }
  KAVO_ROLU_VPM_Deinitialize();
  return 0;
}
