#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "kavo_rolu.h"
#include "simulator/board.h"

namespace {

using testing::Each;

constexpr char kRelease[] = "3.2.0-board";
constexpr char kVersion[] = "#7 SMP PREEMPT Mon Jul 14 10:00:00 UTC 2014";

class CoreOnBoard : public testing::Test {
 protected:
  CoreOnBoard() { board.AttachThisProcess(); }
  ~CoreOnBoard() override { KAVO_ROLU_CORE_DeInit(); }
  rolu_sim::Board board{{{}, {"armv7l", kRelease, kVersion}}};
};

TEST(Core, IsSwitchedOnAndOff) {
  EXPECT_EQ(KAVO_ROLU_CORE_DeInit(), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_Available(), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_Init(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_CORE_Init(), ROLU_STATUS_ALREADY_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_Available(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_CORE_DeInit(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_CORE_DeInit(), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_Available(), ROLU_STATUS_NOT_INITIALIZED);
}

TEST(Core, WritesSeventeenCharactersOfItsVersion) {
  unsigned char version[18];
  memset(version, 0xFF, sizeof version);
  EXPECT_EQ(KAVO_ROLU_CORE_GetLibVersion(version), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(std::string(version, version + 17), "030001.2014072500");
  EXPECT_EQ(version[17], 0xFF);
  EXPECT_EQ(KAVO_ROLU_CORE_GetLibVersion(nullptr), ROLU_STATUS_NULL_POINTER);
}

TEST(Core, DoesNotProvideTheRest) {
  EXPECT_EQ(KAVO_ROLU_CORE_AccessBootCounter(1), ROLU_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(KAVO_ROLU_CORE_SoftReset(), ROLU_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(KAVO_ROLU_CORE_HardReset(), ROLU_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(KAVO_ROLU_CORE_RegistrySave(), ROLU_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(KAVO_ROLU_CORE_RegistryClean(), ROLU_STATUS_NOT_SUPPORTED);
}

TEST_F(CoreOnBoard, TellsThePlatformNameInTheParts) {
  char name[8];
  memset(name, '#', sizeof name);
  uint32_t length = 77;
  ROLU_PLATFORM_NAME nothing{nullptr, nullptr};
  ROLU_PLATFORM_NAME only_length{nullptr, &length};
  ROLU_PLATFORM_NAME only_name{name, nullptr};
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(&nothing), ROLU_STATUS_NOT_INITIALIZED) << "the flag comes first";
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(nullptr), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(&only_length), ROLU_STATUS_NOT_INITIALIZED);
  KAVO_ROLU_CORE_Init();
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(&nothing), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(nullptr), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(length, 77U);
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(&only_length), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(length, 6U);
  EXPECT_EQ(KAVO_ROLU_CORE_GetPlatformName(&only_name), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(std::string(name, sizeof name), "armv7l##") << "no NUL";
}

TEST_F(CoreOnBoard, TellsTheKernelInPaddedBuffers) {
  char release[129];
  char version[129];
  memset(release, '#', sizeof release);
  memset(version, '#', sizeof version);
  ROLU_IMAGE_INFO info{nullptr, nullptr, release, version};
  ROLU_IMAGE_INFO no_release{nullptr, nullptr, nullptr, version};
  ROLU_IMAGE_INFO no_version{nullptr, nullptr, release, nullptr};
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(nullptr), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(&info), ROLU_STATUS_NOT_INITIALIZED);
  KAVO_ROLU_CORE_Init();
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(nullptr), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(&no_release), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(&no_version), ROLU_STATUS_INVALID_PARAMETER);
  EXPECT_THAT(release, Each('#'));
  EXPECT_THAT(version, Each('#'));
  EXPECT_EQ(KAVO_ROLU_CORE_GetImageinfo(&info), ROLU_STATUS_SUCCESS);
  const auto padded = [](std::string text) {
    text.resize(128, '\0');
    return text + '#';
  };
  EXPECT_EQ(std::string(release, sizeof release), padded(kRelease));
  EXPECT_EQ(std::string(version, sizeof version), padded(kVersion));
}

TEST_F(CoreOnBoard, ResetsTheBoardOverTheI2cBus) {
  EXPECT_EQ(KAVO_ROLU_CORE_Reset(), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_TRUE(board.devices().Accesses().empty());
  KAVO_ROLU_CORE_Init();
  EXPECT_EQ(KAVO_ROLU_CORE_Reset(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(board.reset_controller().ResetCount(), 1);
  const auto transfers = board.i2c().Transfers();
  ASSERT_EQ(transfers.size(), 1U) << "both bytes in one write";
  EXPECT_EQ(transfers[0].address, 0x78);
  EXPECT_EQ(transfers[0].bytes, "\x0B\x01");
  const auto accesses = board.devices().Accesses();
  ASSERT_EQ(accesses.size(), 4U) << "open, bind, write, close";
  EXPECT_EQ(accesses[1].request, rolu_sim::I2cBus::kForceSelectRequest);
  EXPECT_EQ(board.devices().OpenCount(rolu_sim::kI2cBusPath), 0U);
}

}  // namespace
