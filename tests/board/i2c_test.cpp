#include <cerrno>

#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

using rolu_sim::I2cTransfer;

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kFailed = ROLU_STATUS_DEVICE_IO_FAILED;
constexpr uint8_t kAddress = 0x51;
constexpr uint8_t kShifted = kAddress << 1;

// The calls need no family and send nothing to the MCU.
class I2cTest : public CallTableTest {
 protected:
  I2cTest() : CallTableTest({[] { return kDone; }, [] { return kDone; }}) {
    registers_->SetRegister(7, 0xAB);
    registers_->SetRegister(8, 0xCD);
    board().i2c().Attach(kAddress, registers_);
  }

  void Prepare(const CallRow&) override { board().i2c().ClearTransfers(); }

  // Each transfer as "51w07 " (written bytes) or "51r2 " (the length of a read).
  std::string Traffic() override {
    std::string transfers;
    for (const I2cTransfer& transfer : board().i2c().Transfers()) {
      char text[16];
      snprintf(text, sizeof text, "%02x%c", transfer.address, transfer.is_read ? 'r' : 'w');
      transfers += text;
      if (transfer.is_read) transfers += std::to_string(transfer.bytes.size());
      for (const char byte : transfer.is_read ? std::string() : transfer.bytes) {
        snprintf(text, sizeof text, "%02x", static_cast<unsigned char>(byte));
        transfers += text;
      }
      transfers += ' ';
    }
    EXPECT_EQ(board().devices().OpenCount("/dev/i2c-3"), 0U) << "every call closes the bus";
    return transfers;
  }

  std::shared_ptr<rolu_sim::I2cRegisterDevice> registers_ = std::make_shared<rolu_sim::I2cRegisterDevice>();
};

using Transfer = ROLU_STATUS (*)(ROLU_IIC_TRANSFER*);

Call Read(uint8_t address, uint32_t length) {
  return [=](void* output) {
    ROLU_IIC_TRANSFER record = {0, address, static_cast<unsigned char*>(output), length, nullptr, 0};
    return KAVO_ROLU_IIC_Read(&record);
  };
}
Call Write(uint8_t address, std::vector<unsigned char> bytes) {
  return [=](void*) mutable {
    ROLU_IIC_TRANSFER record = {0, address, bytes.data(), static_cast<uint32_t>(bytes.size()), nullptr, 0};
    return KAVO_ROLU_IIC_Write(&record);
  };
}
Call Combine(uint8_t address, unsigned char index, uint32_t length) {
  return [=](void* output) mutable {
    ROLU_IIC_TRANSFER record = {0, address, &index, 1, static_cast<unsigned char*>(output), length};
    return KAVO_ROLU_IIC_WriteReadCombine(&record);
  };
}
Bytes Registers() {
  return {0xAB, 0xCD};
}

TEST_F(I2cTest, TransfersReachTheAddressedSlave) {
  Run({{"write", Write(kShifted, {0x07}), {}, kDone, {}, "51w07 "},
       {"read", Read(kShifted, 2), {}, kDone, Registers(), "51r2 "},
       {"the lowest bit does not matter", Write(kShifted | 1, {0x20, 0x99}), {}, kDone, {}, "51w2099 "},
       {"combined, with its pause", Combine(kShifted, 7, 2), {}, kDone, Registers(), "51w07 51r2 ", 100}});
  EXPECT_EQ(registers_->Register(0x20), 0x99);
}

TEST_F(I2cTest, MissingPointersAreRefusedBeforeTheBusIsOpened) {
  unsigned char byte = 0;
  const auto with = [](Transfer transfer, unsigned char* data, unsigned char* read_data) {
    return [=](void*) {
      ROLU_IIC_TRANSFER record = {0, kShifted, data, 1, read_data, 1};
      return transfer(&record);
    };
  };
  board().devices().ClearAccesses();
  for (const Transfer transfer : {KAVO_ROLU_IIC_Read, KAVO_ROLU_IIC_Write, KAVO_ROLU_IIC_WriteReadCombine}) {
    Run({{"no record", With(transfer, nullptr), {}, kBad},
         {"no data", with(transfer, nullptr, &byte), {}, kBad}});
  }
  Run({{"no read data", with(KAVO_ROLU_IIC_WriteReadCombine, &byte, nullptr), {}, kBad}});
  EXPECT_TRUE(board().devices().Accesses().empty());
}

// The matrix of device faults checks the results; this test checks the traffic on the bus.
TEST_F(I2cTest, NothingFollowsAPhaseThatFailed) {
  Run({{"nobody there", Read(0x22, 1), {}, kFailed, {}, "11r0 "}});
  board().i2c().RefuseTransfers(kAddress, EIO);
  Run({{"first phase fails", Combine(kShifted, 7, 2), {}, kFailed, {}, "51w07 "}});
}

}  // namespace
}  // namespace rolu_test
