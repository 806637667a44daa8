#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kOff = ROLU_STATUS_NOT_INITIALIZED;

class Core : public CallTableTest {
 protected:
  Core() : CallTableTest({KAVO_ROLU_CORE_Init, KAVO_ROLU_CORE_DeInit}) {}
};

TEST_F(Core, IsSwitchedOnAndOff) {
  const Call available = Plain(KAVO_ROLU_CORE_Available);
  const Call on = Plain(KAVO_ROLU_CORE_Init);
  const Call off = Plain(KAVO_ROLU_CORE_DeInit);
  const std::vector<NamedCall> refused = {{"off while off", off}, {"not available", available}};
  Refuse(kOff, refused);
  Run({{"on", on}});
  Refuse(ROLU_STATUS_ALREADY_INITIALIZED, {{"on again", on}});
  Run({{"available", available}, {"off", off}});
  Refuse(kOff, refused);
}

TEST_F(Core, WritesSeventeenCharactersOfItsVersion) {
  const Call get = Into(KAVO_ROLU_CORE_GetLibVersion);
  Run({Gives("version", get, {}, Characters("030001.2014072500", 17))});
  Refuse(ROLU_STATUS_NULL_POINTER, {{"null", OnNull(get)}});
}

Call GetPlatform(bool with_name, bool with_length) {
  return [=](void* output) {
    ROLU_PLATFORM_NAME record = {with_name ? static_cast<char*>(output) : nullptr,
                                 with_length ? static_cast<uint32_t*>(output) : nullptr};
    return KAVO_ROLU_CORE_GetPlatformName(&record);
  };
}

Call GetImage(bool with_release, bool with_version) {
  return [=](void* output) {
    char* text = static_cast<char*>(output);
    ROLU_IMAGE_INFO info = {nullptr, nullptr, with_release ? text : nullptr,
                            with_version ? text + 128 : nullptr};
    return KAVO_ROLU_CORE_GetImageinfo(&info);
  };
}

TEST_F(Core, TellsThePlatformAndTheKernelInTheirParts) {
  const std::vector<NamedCall> refused = {{"platform into nothing", GetPlatform(false, false)},
                                          {"platform, null", With(KAVO_ROLU_CORE_GetPlatformName, nullptr)},
                                          {"kernel without a release", GetImage(false, true)},
                                          {"kernel without a version", GetImage(true, false)},
                                          {"kernel, null", With(KAVO_ROLU_CORE_GetImageinfo, nullptr)}};
  Refuse(kOff, refused);
  Refuse(kOff, {{"platform", GetPlatform(false, true)}, {"kernel", GetImage(true, true)}});
  BringUp();
  Refuse(kBad, refused);
  const rolu_sim::KernelIdentity kernel;
  Bytes image = Characters(kernel.release, 128);
  const Bytes version = Characters(kernel.version, 128);
  image.insert(image.end(), version.begin(), version.end());
  Run({Gives("length", GetPlatform(false, true), {}, Written(uint32_t{6})),
       Gives("name without a NUL", GetPlatform(true, false), {}, Characters("armv7l", 6)),
       Gives("kernel", GetImage(true, true), {}, image)});
}

TEST_F(Core, ResetsTheBoardOverTheI2cBus) {
  const Call reset = Plain(KAVO_ROLU_CORE_Reset);
  Refuse(kOff, {{"while off", reset}});
  EXPECT_TRUE(board().devices().Accesses().empty());
  BringUp();
  Run({{"on", reset}});
  EXPECT_EQ(board().reset_controller().ResetCount(), 1);
  const auto transfers = board().i2c().Transfers();
  ASSERT_EQ(transfers.size(), 1U) << "both bytes in one write";
  EXPECT_EQ(transfers[0].address, 0x78);
  EXPECT_EQ(transfers[0].bytes, "\x0B\x01");
  const auto accesses = board().devices().Accesses();
  ASSERT_EQ(accesses.size(), 4U) << "open, bind, write, close";
  EXPECT_EQ(accesses[1].request, rolu_sim::I2cBus::kForceSelectRequest);
}

}  // namespace
}  // namespace rolu_test
