// What the MCU reports on its own, as an application meets it: alarm samples through the G-sensor
// family, power-off warnings through the power manager.
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(20);

// A message has been handled once the MCU's next answer has: both come in order.
void AwaitMessages() {
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  ASSERT_EQ(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), ROLU_STATUS_SUCCESS);
}

// An application's condition variable and the thread that waits on it.
class Waiter {
 public:
  Waiter() : thread_([this] { Wait(); }) {
    while (!waiting_) std::this_thread::yield();
    // The waiting thread holds the mutex until it waits.
    pthread_mutex_lock(&mutex_);
    pthread_mutex_unlock(&mutex_);
  }
  ~Waiter() {
    while (!woken_) {
      pthread_cond_signal(&event_);
      std::this_thread::sleep_for(milliseconds(1));
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
    const auto end = steady_clock::now() + kPatience;
    while (!woken_ && steady_clock::now() < end) std::this_thread::sleep_for(milliseconds(1));
    return woken_;
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
  static std::string Alarm(unsigned int x, unsigned int y, unsigned int z) {
    char line[24];
    snprintf(line, sizeof line, "[GI:%04X%04X%04X]\r\n", x & 0xFFFF, y & 0xFFFF, z & 0xFFFF);
    return line;
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

  rolu_sim::Board board_;
};

TEST_F(UnsolicitedTest, MessagesThatAreSamplesAndMessagesThatAreNot) {
  struct Row {
    const char* line;
    bool is_sample;
  };
  constexpr Row kRows[] = {
      {"[GI:0001FFFF8000]", true},
      {"[GI:0001ffff8000]", true},
      {"[GI:0001FFFF8000", true},
      {"[GI:0001FFFF80001]", true},
      {"[GI:0001FFFF80]", false},
      {"[GI:0001FFFF800]", false},
      {"[GI: 001FFFF8000]", false},
      {"[GI:0x01FFFF8000]", false},
      {"[GJ:0001FFFF8000]", false},
      {"GI:0001FFFF8000]", false},
      {"xGI:0001FFFF8000]", false},
      {"[G]", false},
      {"[", false},
      {"]", false},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    Send(std::string(row.line) + "\r");
    const std::vector<ROLU_GSENSOR_DATA> samples = Drain();
    ASSERT_EQ(samples.size(), row.is_sample ? 1U : 0U);
    if (!row.is_sample) continue;
    EXPECT_EQ(samples[0].x, 4);
    EXPECT_EQ(samples[0].y, -3);
    EXPECT_EQ(samples[0].z, -127999);
  }
}

TEST_F(UnsolicitedTest, FullRingDropsTheOldest) {
  std::string burst;
  for (unsigned int i = 1; i <= 32; ++i) burst += Alarm(i * 256, 0, 0);
  Send(burst);
  const std::vector<ROLU_GSENSOR_DATA> samples = Drain();
  ASSERT_EQ(samples.size(), 31U);
  EXPECT_EQ(samples.front().x, 2000);
  EXPECT_EQ(samples.back().x, 32000);
}

TEST_F(UnsolicitedTest, WarningsWakeTheRegisteredThread) {
  struct Row {
    const char* line;
    bool ignition;
    bool battery;
  };
  constexpr Row kRows[] = {
      {"[0000]", true, false},  {"[0001]", false, true},  {"[0000 rest of it]", true, false},
      {"[0100]", false, false}, {"[0002]", false, false}, {"[00", false, false},
      {"[00]", false, false},   {"[zz00]", false, false}, {"0000]", false, false},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    Waiter ignition;
    Waiter battery;
    ASSERT_EQ(KAVO_ROLU_VPM_SetIgnPowerOffEvent(ignition.event()), ROLU_STATUS_SUCCESS);
    ASSERT_EQ(KAVO_ROLU_VPM_SetLBPPowerOffEvent(battery.event()), ROLU_STATUS_SUCCESS);
    Send(std::string(row.line) + "\r");
    EXPECT_EQ(row.ignition ? ignition.WaitUntilWoken() : ignition.woken(), row.ignition);
    EXPECT_EQ(row.battery ? battery.WaitUntilWoken() : battery.woken(), row.battery);
    // The registrations must outlive this row's waiters.
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
  ASSERT_TRUE(board_.mcu().WaitForHostClosed(kPatience));
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(Drain().empty());
  Send(Alarm(1, 2, 3));
  EXPECT_EQ(Drain().size(), 1U);
  EXPECT_FALSE(forgotten.woken());
}

TEST_F(UnsolicitedTest, MessageBetweenACommandAndItsReply) {
  using rolu_sim::Reply;
  board_.mcu().Script(rolu_sim::CommandMatch::Exactly("MCBG"),
                      Reply::Bytes(Alarm(5, 5, 5) + "02\r\n" + Alarm(6, 6, 6)));
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  ASSERT_EQ(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(mode, CAR_BATTERY_MODE_24V);
  AwaitMessages();
  EXPECT_EQ(Drain().size(), 2U);
}

}  // namespace

// A thousand samples at the pace of the line, while another thread asks questions all the time.
TEST(AlarmStream, NoSampleIsLostAndNoQueryFailsAtThePaceOfTheLine) {
  constexpr unsigned int kSamples = 1000;
  rolu_sim::BoardOptions options;
  options.serial.paced = true;
  rolu_sim::Board board(options);
  board.AttachThisProcess();
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  static pthread_cond_t event = PTHREAD_COND_INITIALIZER;
  static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  ASSERT_EQ(KAVO_ROLU_GSENSOR_SetAlarmEvent(&event), ROLU_STATUS_SUCCESS);

  std::atomic<bool> drained{false};
  std::atomic<int> failed_queries{0};
  std::atomic<int> queries{0};
  std::thread asking([&] {
    while (!drained) {
      CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_24V;
      const ROLU_STATUS status = KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode);
      if (status != ROLU_STATUS_SUCCESS || mode != CAR_BATTERY_MODE_12V) ++failed_queries;
      ++queries;
    }
  });
  // Eight samples at a time, the next eight once these were taken: the application keeps up.
  std::vector<int32_t> received;
  const auto end = steady_clock::now() + kPatience;
  for (unsigned int sent = 0; received.size() < kSamples && steady_clock::now() < end;) {
    if (received.size() == sent) {
      std::string burst;
      for (int i = 0; i < 8; ++i, ++sent) {
        char line[24];
        snprintf(line, sizeof line, "[GI:%04X00000000]\r\n", sent);
        burst += line;
      }
      board.mcu().SendRaw(burst);
    }
    pthread_mutex_lock(&mutex);
    timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_nsec += 2000000;
    if (until.tv_nsec >= 1000000000) {
      until.tv_nsec -= 1000000000;
      ++until.tv_sec;
    }
    pthread_cond_timedwait(&event, &mutex, &until);
    pthread_mutex_unlock(&mutex);
    ROLU_GSENSOR_DATA sample;
    while (KAVO_ROLU_GSENSOR_GetAlarmData(&sample) == ROLU_STATUS_SUCCESS) received.push_back(sample.x);
  }
  drained = true;
  asking.join();
  ASSERT_EQ(received.size(), kSamples);
  for (unsigned int i = 0; i < kSamples; ++i) {
    ASSERT_EQ(received[i], static_cast<int32_t>(static_cast<float>(i) * 3.90625F + 0.5F)) << i;
  }
  EXPECT_EQ(failed_queries, 0);
  EXPECT_GT(queries, 0);
  EXPECT_EQ(KAVO_ROLU_GSENSOR_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
}

}  // namespace rolu_test
