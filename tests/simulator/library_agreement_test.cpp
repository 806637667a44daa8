// The library on the simulated board with nothing scripted: what one of them sets is what the other
// has.

#include <gmock/gmock.h>
#include <pthread.h>

#include <array>
#include <chrono>
#include <ctime>
#include <functional>

#include "kavo_rolu.h"
#include "simulator/board.h"

namespace rolu_sim {
namespace {

constexpr ROLU_STATUS kSuccess = ROLU_STATUS_SUCCESS;

class LibraryAgreement : public testing::Test {
 protected:
  LibraryAgreement() { board_.AttachThisProcess(); }

  template <typename Use>
  auto Mcu(Use use) {
    return board_.mcu().WithModel(use);
  }

  Board board_;
};

// Waits on a condition variable as an application does.
class PowerOffEvent {
 public:
  void* Registration() { return &event_; }

  // A signal that comes while nobody waits is lost: then the cause comes again.
  template <typename Cause>
  bool ComesAfter(Cause cause) {
    constexpr int kTries = 5;
    for (int tries = 0; tries < kTries; ++tries) {
      timespec limit{};
      clock_gettime(CLOCK_REALTIME, &limit);
      limit.tv_sec += 4;
      pthread_mutex_lock(&mutex_);
      cause();
      const int result = pthread_cond_timedwait(&event_, &mutex_, &limit);
      pthread_mutex_unlock(&mutex_);
      if (result == 0) return true;
    }
    return false;
  }

 private:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t event_ = PTHREAD_COND_INITIALIZER;
};

TEST_F(LibraryAgreement, vpm_settings_reach_the_mcu_and_come_back) {
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), kSuccess);

  struct DelayRow {
    ROLU_STATUS (*set)(unsigned short);
    ROLU_STATUS (*get)(unsigned short*);
    DelayType type;
  };
  constexpr DelayRow kDelays[] = {
      {KAVO_ROLU_VPM_SetLBPLowDelay, KAVO_ROLU_VPM_GetLBPLowDelay, DelayType::kLowBattery},
      {KAVO_ROLU_VPM_SetLBPLowHardDelay, KAVO_ROLU_VPM_GetLBPLowHardDelay, DelayType::kLowBatteryHard},
      {KAVO_ROLU_VPM_SetIgnOnDelay, KAVO_ROLU_VPM_GetIgnOnDelay, DelayType::kIgnitionOn},
      {KAVO_ROLU_VPM_SetIgnOffEventDelay, KAVO_ROLU_VPM_GetIgnOffEventDelay, DelayType::kIgnitionOffEvent},
      {KAVO_ROLU_VPM_SetIgnHardOffDelay, KAVO_ROLU_VPM_GetIgnHardOffDelay, DelayType::kIgnitionHardOff},
      {KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay, KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay,
       DelayType::kIgnitionSuspendHardOff},
      {KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay, KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay,
       DelayType::kPrePowerOffAlarm},
  };
  unsigned short expected = 1001;
  for (const DelayRow& row : kDelays) {
    unsigned short read = 0;
    EXPECT_EQ(row.set(++expected), kSuccess);
    EXPECT_EQ(row.get(&read), kSuccess);
    EXPECT_EQ(read, expected);
    EXPECT_EQ(Mcu([&](McuModel& mcu) { return mcu.power_off.Delay(row.type); }), expected);
  }

  constexpr WAKEUP_SOURCE kSources[] = {WAKEUP_SOURCE_0, WAKEUP_SOURCE_5, WAKEUP_SOURCE_RTC_ALARM,
                                        WAKEUP_SOURCE_10};
  for (const WAKEUP_SOURCE source : kSources) {
    char before = '?';
    char after = '?';
    EXPECT_EQ(KAVO_ROLU_VPM_GetWakeupSourceControlStatus(source, &before), kSuccess);
    EXPECT_EQ(KAVO_ROLU_VPM_SetWakeupSourceControlStatus(source, before == 0 ? 1 : 0), kSuccess);
    EXPECT_EQ(KAVO_ROLU_VPM_GetWakeupSourceControlStatus(source, &after), kSuccess);
    EXPECT_EQ(before + after, 1) << source;
  }
  EXPECT_EQ(KAVO_ROLU_VPM_SetWakeupSourceControlStatus(static_cast<WAKEUP_SOURCE>(8), 1),
            ROLU_STATUS_INVALID_PARAMETER);

  EXPECT_EQ(KAVO_ROLU_VPM_SetKeepAliveMode(1), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetATMode(2), kSuccess);
  EXPECT_EQ(Mcu([](McuModel& mcu) { return mcu.ignition.keep_alive_mode * 10 + mcu.ignition.at_mode; }), 12);

  EXPECT_EQ(KAVO_ROLU_VPM_LoadDefaultValue(), kSuccess);
  unsigned short delay = 0;
  EXPECT_EQ(KAVO_ROLU_VPM_GetLBPLowDelay(&delay), kSuccess);
  EXPECT_EQ(delay, PowerOffState().Delay(DelayType::kLowBattery));

  float celsius = 0;
  EXPECT_EQ(KAVO_ROLU_VPM_GetBackupBatteryTemperture(&celsius), kSuccess);
  EXPECT_FLOAT_EQ(celsius, 25.05F);
  EXPECT_EQ(KAVO_ROLU_VPM_ForceShutdown(), kSuccess);
  EXPECT_EQ(board_.mcu().Events().size(), 1U);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), kSuccess);
}

TEST_F(LibraryAgreement, the_clock_and_its_alarm_are_the_mcus) {
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_DAILY, {3, 13, 30}), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetAlarmActive(1), kSuccess);
  ALARM_MODE mode = ALARM_MODE_NONE;
  VPM_ALARM_TIME alarm{};
  EXPECT_EQ(KAVO_ROLU_VPM_GetAlarmTime(&mode, &alarm), kSuccess);
  EXPECT_EQ(mode, ALARM_MODE_DAILY);
  EXPECT_EQ(alarm.weekday * 10000 + alarm.hour * 100 + alarm.minute, 31330);
  EXPECT_EQ(KAVO_ROLU_VPM_SetRTCTime({14, 7, 25, 5, 13, 29, 59}), kSuccess);
  ASSERT_TRUE(board_.mcu().WaitForEvent(McuEventKind::kAlarmWakeup, std::chrono::seconds(10)));
  VPM_RTC_TIME now{};
  EXPECT_EQ(KAVO_ROLU_VPM_GetRTCTime(&now), kSuccess);
  EXPECT_EQ(now.year * 10000 + now.month * 100 + now.day, 140725);
  EXPECT_EQ(now.hour * 100 + now.minute, 1330);
  WAKEUP_SOURCE last = WAKEUP_SOURCE_NONE;
  EXPECT_EQ(KAVO_ROLU_VPM_GetLastWakeupSource(&last), kSuccess);
  EXPECT_EQ(last, WAKEUP_SOURCE_RTC_ALARM);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), kSuccess);
}

TEST_F(LibraryAgreement, power_off_warnings_wake_the_application) {
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), kSuccess);
  PowerOffEvent ignition;
  PowerOffEvent low_battery;
  EXPECT_EQ(KAVO_ROLU_VPM_SetIgnPowerOffEvent(ignition.Registration()), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetLBPPowerOffEvent(low_battery.Registration()), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetPrePowerOffAlarm(1), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetIgnOffEventDelay(1), kSuccess);
  EXPECT_EQ(KAVO_ROLU_VPM_SetLBPLowDelay(1), kSuccess);
  EXPECT_TRUE(ignition.ComesAfter([&] {
    Mcu([](McuModel& mcu) { mcu.ignition.on = true; });
    Mcu([](McuModel& mcu) { mcu.ignition.on = false; });
  }));
  EXPECT_TRUE(low_battery.ComesAfter([&] {
    Mcu([](McuModel& mcu) { mcu.SetBatteryVolts(12.6); });
    Mcu([](McuModel& mcu) { mcu.SetBatteryVolts(9.0); });
  }));
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), kSuccess);
}

TEST_F(LibraryAgreement, a_shake_is_queued_as_an_alarm) {
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), kSuccess);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_SetAlarmThreshold(2062), kSuccess);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_AlarmEnabled(true), kSuccess);
  EXPECT_FALSE(Mcu([](McuModel& mcu) { return mcu.ShakeTo({0, 0, 512}); }));
  EXPECT_TRUE(Mcu([](McuModel& mcu) { return mcu.ShakeTo({0, 0, -768}); }));
  // The answer to this query comes behind the alarm.
  ROLU_GSENSOR_DATA sample{};
  EXPECT_EQ(KAVO_ROLU_GSENSOR_GetData(&sample), kSuccess);
  ROLU_GSENSOR_DATA alarm{};
  EXPECT_EQ(KAVO_ROLU_GSENSOR_GetAlarmData(&alarm), kSuccess);
  EXPECT_EQ(alarm.z, sample.z);
  EXPECT_EQ(alarm.z, -2999);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_GetAlarmData(&alarm), ROLU_STATUS_GSENSOR_NO_ALARM_DATA);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), kSuccess);
  EXPECT_FALSE(Mcu([](McuModel& mcu) { return mcu.gsensor.on; }));
}

TEST_F(LibraryAgreement, peripherals_are_switched_where_they_are) {
  ASSERT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), kSuccess);
  struct Row {
    PERIPHERAL_TYPE type;
    std::function<bool()> is_on;
  };
  const Row rows[] = {
      {PERIPHERAL_TYPE_MCU_SWITCH,
       [&] { return Mcu([](McuModel& mcu) { return mcu.peripheral_switch.on; }); }},
      {PERIPHERAL_TYPE_WLAN, [&] { return board_.wireless().IsUp(); }},
      {PERIPHERAL_TYPE_GPS, [&] { return board_.gpio().Level(45); }},
  };
  for (const Row& row : rows) {
    for (const char wanted : {'\1', '\0', '\1'}) {
      char state = '?';
      EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(row.type, wanted), kSuccess) << row.type;
      EXPECT_EQ(row.is_on(), wanted == 1) << row.type;
      EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(row.type, &state), kSuccess) << row.type;
      EXPECT_EQ(state, wanted) << row.type;
    }
  }
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Deinitialize(), kSuccess);
  ASSERT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), kSuccess);
  EXPECT_FALSE(board_.gpio().Level(45)) << "the kernel drives a line low that is made an output once more";
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Deinitialize(), kSuccess);
}

TEST_F(LibraryAgreement, device_files_serve_the_families_that_follow_the_core) {
  ASSERT_EQ(KAVO_ROLU_CORE_Init(), kSuccess);
  EXPECT_EQ(KAVO_ROLU_DIO_Initialize(), kSuccess);
  EXPECT_EQ(KAVO_ROLU_DIO_Initialize(), kSuccess);
  board_.gpio().SetInput(36, true);
  std::array<unsigned char, 2> pins = {9, 9};
  EXPECT_EQ(KAVO_ROLU_DIO_ReadDIPin(pins.data()), kSuccess);
  EXPECT_THAT(pins, testing::ElementsAre(0, 1));
  EXPECT_EQ(KAVO_ROLU_DIO_WriteDOPin(pins.data()), kSuccess);
  EXPECT_FALSE(board_.gpio().Level(35));
  EXPECT_TRUE(board_.gpio().Level(34));

  unsigned char level = 0;
  EXPECT_EQ(KAVO_ROLU_DISPLAY_SetBright(3), kSuccess);
  EXPECT_EQ(KAVO_ROLU_DISPLAY_GetBright(&level), kSuccess);
  EXPECT_EQ(level, 3);
  EXPECT_EQ(board_.backlight().level(), 3);

  unsigned short light = 0;
  EXPECT_EQ(KAVO_ROLU_LIGHTSENSOR_GetStatus(&light), kSuccess);
  EXPECT_EQ(light, 350);
  EXPECT_EQ(KAVO_ROLU_CORE_DeInit(), kSuccess);

  board_.register_device().SetRegister(0x10, 0xAB);
  unsigned char index = 0x10;
  unsigned char value = 0;
  ROLU_IIC_TRANSFER transfer = {0, Board::kRegisterDeviceAddress << 1, &index, 1, &value, 1};
  EXPECT_EQ(KAVO_ROLU_IIC_WriteReadCombine(&transfer), kSuccess);
  EXPECT_EQ(value, 0xAB);
}

}  // namespace
}  // namespace rolu_sim
