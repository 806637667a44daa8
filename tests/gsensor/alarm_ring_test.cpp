// The messages that the MCU sends on its own, as an application gets them: alarm samples from the G-sensor
// family, power-off warnings from the power manager.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "kavo_rolu.h"
#include "simulator/board.h"
#include "tests/oracle/plain_reading.h"
#include "tests/support/process_state.h"

namespace {

// The link handles lines in order. So when the next answer has come, the link has handled the message.
void AwaitMessages() {
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  ASSERT_EQ(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), ROLU_STATUS_SUCCESS);
}

// The message of an alarm sample.
std::string Alarm(unsigned int x, unsigned int y, unsigned int z) {
  char line[24];
  snprintf(line, sizeof line, "[GI:%04X%04X%04X]\r\n", x & 0xFFFF, y & 0xFFFF, z & 0xFFFF);
  return line;
}

// An application's condition variable and the thread that waits on it.
class Waiter {
 public:
  Waiter() : thread_([this] { Wait(); }) {
    while (!waiting_) std::this_thread::yield();
    // The waiting thread releases the mutex only when it waits.
    pthread_mutex_lock(&mutex_);
    pthread_mutex_unlock(&mutex_);
  }
  ~Waiter() {
    while (!woken_) {
      pthread_cond_signal(&event_);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    thread_.join();
    pthread_cond_destroy(&event_);
    pthread_mutex_destroy(&mutex_);
  }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  void* event() { return &event_; }
  bool woken() const { return woken_; }
  bool WaitUntilWoken() const {
    return WaitUntil([this] { return woken_.load(); });
  }

 private:
  void Wait() {
    pthread_mutex_lock(&mutex_);
    waiting_ = true;
    pthread_cond_wait(&event_, &mutex_);
    pthread_mutex_unlock(&mutex_);
    woken_ = true;
  }

  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t event_ = PTHREAD_COND_INITIALIZER;
  std::atomic<bool> waiting_{false};
  std::atomic<bool> woken_{false};
  std::thread thread_;
};

class UnsolicitedTest : public testing::Test {
 protected:
  explicit UnsolicitedTest(bool paced = false) : board_(Options(paced)) {}
  void SetUp() override {
    board_.AttachThisProcess();
    ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
    ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  }
  void TearDown() override {
    KAVO_ROLU_GSENSOR_Deinitialize();
    KAVO_ROLU_VPM_Deinitialize();
  }

  void Send(const std::string& lines) {
    board_.mcu().SendRaw(lines);
    AwaitMessages();
  }
  static std::vector<ROLU_GSENSOR_DATA> Drain() {
    std::vector<ROLU_GSENSOR_DATA> samples;
    ROLU_GSENSOR_DATA sample;
    ROLU_STATUS status = KAVO_ROLU_GSENSOR_GetAlarmData(&sample);
    for (; status == ROLU_STATUS_SUCCESS; status = KAVO_ROLU_GSENSOR_GetAlarmData(&sample))
      samples.push_back(sample);
    EXPECT_EQ(status, ROLU_STATUS_GSENSOR_NO_ALARM_DATA);
    return samples;
  }

  static rolu_sim::BoardOptions Options(bool paced) {
    rolu_sim::BoardOptions options;
    options.serial.paced = paced;
    return options;
  }

  rolu_sim::Board board_;
};

TEST_F(UnsolicitedTest, WarningsWakeTheRegisteredThread) {
  struct Row {
    const char* line;
    bool ignition;
    bool battery;
  };
  constexpr Row kRows[] = {{"[0000]", true, false},
                           {"[0001]", false, true},
                           {"[0000 rest of it]", true, false},
                           {"[0002]", false, false}};
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    Waiter ignition;
    Waiter battery;
    ASSERT_EQ(KAVO_ROLU_VPM_SetIgnPowerOffEvent(ignition.event()), ROLU_STATUS_SUCCESS);
    ASSERT_EQ(KAVO_ROLU_VPM_SetLBPPowerOffEvent(battery.event()), ROLU_STATUS_SUCCESS);
    Send(std::string(row.line) + "\r");
    EXPECT_EQ(row.ignition ? ignition.WaitUntilWoken() : ignition.woken(), row.ignition);
    EXPECT_EQ(row.battery ? battery.WaitUntilWoken() : battery.woken(), row.battery);
    // The registrations must not point to this row's waiters when these are gone.
    static pthread_cond_t unused = PTHREAD_COND_INITIALIZER;
    KAVO_ROLU_VPM_SetIgnPowerOffEvent(&unused);
    KAVO_ROLU_VPM_SetLBPPowerOffEvent(&unused);
  }
}

TEST_F(UnsolicitedTest, ReopeningForgetsSamplesAndRegistrations) {
  Waiter waiter;
  ASSERT_EQ(KAVO_ROLU_GSENSOR_SetAlarmEvent(waiter.event()), ROLU_STATUS_SUCCESS);
  Send(Alarm(1, 2, 3));
  ASSERT_TRUE(waiter.WaitUntilWoken());
  Waiter forgotten;
  ASSERT_EQ(KAVO_ROLU_GSENSOR_SetAlarmEvent(forgotten.event()), ROLU_STATUS_SUCCESS);
  TearDown();
  ASSERT_TRUE(board_.mcu().WaitForHostClosed(kGenerous));
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(Drain().empty());
  Send(Alarm(1, 2, 3));
  EXPECT_EQ(Drain().size(), 1U);
  EXPECT_FALSE(forgotten.woken());
}

// The samples come at the speed of the line.
class PacedLine : public UnsolicitedTest {
 protected:
  PacedLine() : UnsolicitedTest(true) {}
};

// Meanwhile another thread asks one question after another.
TEST_F(PacedLine, NoSampleIsLostAndNoQueryFails) {
  constexpr unsigned int kBursts = 64;
  constexpr int kSamplesOfABurst = 8;
  std::atomic<bool> drained{false};
  std::atomic<int> queries{0};
  std::thread asking([&] {
    for (; !drained; ++queries) AwaitMessages();
  });
  ROLU_GSENSOR_DATA sample = {};
  const auto arrives = [&] { return KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS; };
  for (unsigned int burst = 1; burst <= kBursts; ++burst) {
    std::string lines;
    for (unsigned int i = 0; i < kSamplesOfABurst; ++i) lines += Alarm(burst * 256, i * 256, -burst);
    board_.mcu().SendRaw(lines);
    // The application takes each sample as it comes.
    for (int i = 0; i < kSamplesOfABurst; ++i) {
      if (!WaitUntil(arrives)) ADD_FAILURE() << "a sample is lost";
      EXPECT_EQ(sample.x, static_cast<int32_t>(burst) * 1000);
      EXPECT_EQ(sample.y, i * 1000);
      EXPECT_EQ(sample.z, rolu_test::ScaledAxis(static_cast<int16_t>(-burst)));
    }
    // While the line never pauses, no command leaves. So there is time for a command between the bursts, as
    // on a vehicle.
    const int answered = queries;
    if (!WaitUntil([&] { return queries > answered; })) ADD_FAILURE() << "no query was answered";
    if (HasFailure()) break;
  }
  drained = true;
  asking.join();
}

}  // namespace
