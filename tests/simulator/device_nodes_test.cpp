// A program's calls on the board's paths. Compiled as distributions compile programs (fortified).

#include <dirent.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <poll.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "simulator/board.h"

namespace rolu_sim {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class DeviceNodes : public testing::Test {
 protected:
  DeviceNodes() { board_.AttachThisProcess(); }

  Board board_;
};

TEST_F(DeviceNodes, I2cTransfersReachTheAddressedDevice) {
  board_.register_device().SetRegister(0x10, 0xAB);
  const int bus = open(kI2cBusPath, O_RDWR);
  ASSERT_GE(bus, 0);
  ASSERT_EQ(ioctl(bus, I2cBus::kForceSelectRequest, Board::kRegisterDeviceAddress), 0);
  EXPECT_EQ(write(bus, "\x10", 1), 1);
  unsigned char bytes[2] = {};
  const volatile size_t wanted = sizeof bytes;  // volatile, so that the read is a fortified one
  EXPECT_EQ(read(bus, bytes, wanted), 2);
  EXPECT_EQ(bytes[0], 0xAB);
  EXPECT_EQ(ioctl(bus, 0x1234, 0), -1);
  EXPECT_EQ(errno, ENOTTY);
  ASSERT_EQ(ioctl(bus, I2cBus::kForceSelectRequest, ResetController::kAddress), 0);
  EXPECT_EQ(write(bus, "\x0B\x01", 2), 2);
  EXPECT_EQ(board_.devices().OpenCount(kI2cBusPath), 1U);
  EXPECT_EQ(close(bus), 0);
  EXPECT_EQ(board_.devices().OpenCount(kI2cBusPath), 0U);
  EXPECT_EQ(board_.reset_controller().ResetCount(), 1);
  EXPECT_THAT(board_.devices().Writes(kI2cBusPath), ElementsAre("\x10", "\x0B\x01"));
}

TEST_F(DeviceNodes, I2cAddressesRefuseAsTold) {
  board_.i2c().RefuseSelection(0x21, EBUSY);
  board_.i2c().RefuseTransfers(Board::kRegisterDeviceAddress, ETIMEDOUT);
  const UniqueFd bus(open(kI2cBusPath, O_RDWR | O_CLOEXEC));
  const auto write_to = [&](unsigned address) {
    errno = 0;
    if (ioctl(bus.get(), I2cBus::kForceSelectRequest, address) == 0 && write(bus.get(), "x", 1) == 1)
      return 0;
    return errno;
  };
  EXPECT_EQ(write_to(0x21), EBUSY);
  EXPECT_EQ(write_to(Board::kRegisterDeviceAddress), ETIMEDOUT);
  EXPECT_EQ(write_to(0x33), EREMOTEIO);
  EXPECT_EQ(write_to(0x80), EINVAL);
}

// The widths and pointers of these requests are those of the program, which may be a 32-bit one.
TEST_F(DeviceNodes, I2cTakesCombinedAndSmbusTransfers) {
  const UniqueFd bus(open(kI2cBusPath, O_RDWR | O_CLOEXEC));
  unsigned long functions = 0;
  ASSERT_EQ(ioctl(bus.get(), I2C_FUNCS, &functions), 0);
  EXPECT_EQ(functions & (I2C_FUNC_I2C | I2C_FUNC_SMBUS_QUICK | I2C_FUNC_SMBUS_PEC),
            static_cast<unsigned long>(I2C_FUNC_I2C | I2C_FUNC_SMBUS_QUICK));

  unsigned char written[] = {0x10, 1, 2, 3};
  unsigned char read[3] = {};
  i2c_msg messages[] = {{0x50, 0, 4, written}, {0x50, 0, 1, written}, {0x50, I2C_M_RD, 3, read}};
  i2c_rdwr_ioctl_data combined = {messages, 3};
  const auto answer = [&](unsigned long request, auto argument) {
    return ioctl(bus.get(), request, argument) < 0 ? -errno : 0;
  };
  EXPECT_EQ(ioctl(bus.get(), I2C_RDWR, &combined), 3);
  EXPECT_THAT(read, ElementsAre(1, 2, 3));
  messages[1].addr = 0x33;
  EXPECT_EQ(answer(I2C_RDWR, &combined), -EREMOTEIO);
  messages[1].len = 8193;
  EXPECT_EQ(answer(I2C_RDWR, &combined), -EINVAL);
  messages[1] = {0x50, 0, 1, nullptr};
  EXPECT_EQ(answer(I2C_RDWR, &combined), -EFAULT);
  combined.nmsgs = 43;
  EXPECT_EQ(answer(I2C_RDWR, &combined), -EINVAL);

  ASSERT_EQ(answer(I2C_SLAVE, 0x50), 0);
  for (const auto& [size, wire] : {std::pair(I2C_SMBUS_QUICK, ""),
                                   {I2C_SMBUS_BYTE, "\x80"},
                                   {I2C_SMBUS_BYTE_DATA, "\x80\x02"},
                                   {I2C_SMBUS_WORD_DATA, "\x80\x02\x0A"},
                                   {I2C_SMBUS_BLOCK_DATA, "\x80\x02\x0A\x0B"},
                                   {I2C_SMBUS_I2C_BLOCK_DATA, "\x80\x0A\x0B"}}) {
    i2c_smbus_data data = {};
    std::copy_n("\x02\x0A\x0B", 3, data.block);
    i2c_smbus_ioctl_data transfer = {I2C_SMBUS_WRITE, 0x80, static_cast<__u32>(size), &data};
    EXPECT_EQ(answer(I2C_SMBUS, &transfer), 0) << size;
    EXPECT_EQ(board_.i2c().Transfers().back().bytes, wire) << size;
    if (size == I2C_SMBUS_BLOCK_DATA) continue;
    board_.register_device().SetRegister(0x80, 2);
    board_.register_device().SetRegister(0x81, 0x0A);
    transfer.read_write = I2C_SMBUS_READ;
    EXPECT_EQ(answer(I2C_SMBUS, &transfer), 0) << size;
    EXPECT_TRUE(board_.i2c().Transfers().back().is_read) << size;
    if (size == I2C_SMBUS_WORD_DATA) {
      EXPECT_EQ(data.word, 0x0A02);
    }
  }
  i2c_smbus_data block = {};
  i2c_smbus_ioctl_data block_read = {I2C_SMBUS_READ, 0x80, I2C_SMBUS_BLOCK_DATA, &block};
  EXPECT_EQ(answer(I2C_SMBUS, &block_read), -EOPNOTSUPP);
  block_read.size = I2C_SMBUS_I2C_BLOCK_BROKEN;
  EXPECT_EQ(answer(I2C_SMBUS, &block_read), 0);
  EXPECT_THAT(block.block, testing::Contains(0x0A));
  EXPECT_EQ(block.block[0], I2C_SMBUS_BLOCK_MAX);
  block_read.read_write = 2;
  EXPECT_EQ(answer(I2C_SMBUS, &block_read), -EINVAL);
  EXPECT_EQ(answer(I2C_PEC, 1), -EOPNOTSUPP);
  EXPECT_EQ(answer(I2C_RETRIES, 3), 0);
  EXPECT_EQ(answer(I2C_FUNCS, nullptr), -EFAULT);
  EXPECT_EQ(board_.reset_controller().ResetCount(), 0);
}

TEST_F(DeviceNodes, StatAndAccessTellWhatIsThere) {
  struct stat status {};
  ASSERT_EQ(stat(kI2cBusPath, &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
  ASSERT_EQ(fstatat(AT_FDCWD, kBacklightPath, &status, 0), 0);
  EXPECT_TRUE(S_ISREG(status.st_mode));
  ASSERT_EQ(lstat("/proc/vpm_serial", &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
  EXPECT_EQ(access(kI2cBusPath, R_OK | W_OK), 0);
  EXPECT_EQ(access("/sys/class/gpio/gpio45/value", F_OK), -1);
  EXPECT_EQ(errno, ENOENT);
}

// Under the emulator, a disk's directory offsets do not fit the 32-bit records.
std::set<std::string> ScannedNames(const char* directory) {
  dirent64** entries = nullptr;
  const int count = scandir64(directory, &entries, nullptr, alphasort64);
  std::set<std::string> names;
  for (int i = 0; i < count; ++i) {
    names.insert(entries[i]->d_name);
    free(entries[i]);
  }
  free(entries);
  return names;
}

TEST_F(DeviceNodes, DirectoriesShowWhatIsThereNow) {
  const std::string lines = "/sys/class/gpio/gpio45";
  EXPECT_THAT(ScannedNames("/sys/class/gpio"), ElementsAre(".", "..", "export"));
  EXPECT_EQ(opendir(lines.c_str()), nullptr);
  const UniqueFd exporting(open(kGpioExportPath, O_WRONLY | O_CLOEXEC));
  ASSERT_EQ(write(exporting.get(), "45", 2), 2);
  EXPECT_THAT(ScannedNames(lines.c_str()), ElementsAre(".", "..", "direction", "value"));
  DeviceFaults faults;
  faults.missing = true;
  board_.devices().SetFaults(lines + "/value", faults);
  EXPECT_THAT(ScannedNames(lines.c_str()), ElementsAre(".", "..", "direction"));
  board_.devices().SetFaults(lines + "/direction", faults);
  EXPECT_THAT(ScannedNames("/sys/class/gpio"), ElementsAre(".", "..", "export"));
}

TEST_F(DeviceNodes, PathsAreTakenAsTheSystemTakesThem) {
  char path[PATH_MAX];
  EXPECT_STREQ(realpath("/sys//class/./gpio/../gpio/export", path), kGpioExportPath);
  EXPECT_EQ(realpath("/sys/class/gpio/gpio45", path), nullptr);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(readlink(kI2cBusPath, path, sizeof path), -1);
  EXPECT_EQ(errno, EINVAL);
  const UniqueFd before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
  ASSERT_EQ(chdir("/sys/class/gpio"), 0);
  EXPECT_STREQ(getcwd(path, sizeof path), "/sys/class/gpio");
  EXPECT_EQ(access("export", W_OK), 0);
  EXPECT_TRUE(UniqueFd(open("export", O_WRONLY | O_CLOEXEC)));
  struct stat status {};
  EXPECT_EQ(stat("../../class", &status), 0);
  EXPECT_EQ(stat("/sys/..", &status), 0);
  EXPECT_EQ(fchdir(before.get()), 0);
}

TEST_F(DeviceNodes, TheKernelsNamesAreTheBoardsWhileItIsAttached) {
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  EXPECT_STREQ(names.machine, "armv7l");
  EXPECT_STREQ(names.release, KernelIdentity{}.release.c_str());
  EXPECT_STREQ(names.version, KernelIdentity{}.version.c_str());
}

TEST_F(DeviceNodes, OtherPathsPassThrough) {
  const std::string path = board_.root().path() + "/file";
  const UniqueFd file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600));
  ASSERT_EQ(write(file.get(), "text", 4), 4);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(status.st_size, 4);
}

TEST_F(DeviceNodes, AProgramFindsNothingThatTheMcuSentToTheOneBefore) {
  for (int i = 0; i < 100; ++i) {
    const UniqueFd port(open(kSerialPath, O_RDWR | O_NOCTTY | O_CLOEXEC));
    pollfd waiting{port.get(), POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 0), 0);
    board_.mcu().SendRaw("unread\r\n");
    EXPECT_EQ(poll(&waiting, 1, std::chrono::milliseconds(10s).count()), 1);
  }
}

std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

TEST(Board, IsGoneWithoutATrace) {
  const std::ptrdiff_t descriptors_before = OpenDescriptors();
  setenv("PATH", "/a::/b:", 1);
  std::string root;
  {
    Board board;
    board.AttachThisProcess();
    board.AttachThisProcess();
    root = board.root().path();
    EXPECT_EQ(getenv("PATH"), root + "/bin:/a::/b:");
    EXPECT_TRUE(std::filesystem::exists(root));
    EXPECT_TRUE(UniqueFd(open(kI2cBusPath, O_RDWR)));
  }
  EXPECT_FALSE(std::filesystem::exists(root));
  EXPECT_STREQ(getenv("PATH"), "/a::/b:");
  EXPECT_EQ(OpenDescriptors(), descriptors_before);
  const int seen = access(kI2cBusPath, F_OK) == 0 ? 0 : errno;
  const int here = syscall(SYS_faccessat, AT_FDCWD, kI2cBusPath, F_OK) == 0 ? 0 : errno;
  EXPECT_EQ(seen, here) << "the board still answers";
}

// Users may have low limits on kernel objects; many boards must still fit.
TEST(Board, HasRoomBesideTwoHundredOthers) {
  constexpr int kBoards = 200;
  rlimit descriptors{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &descriptors), 0);
  const rlimit all_descriptors{descriptors.rlim_max, descriptors.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &all_descriptors), 0);
  if (access("/dev/shm", W_OK) == 0)
    setenv("TMPDIR", "/dev/shm", 1);  // a disk would take a second and a half
  // Each board has two threads, and a 32-bit program has a small address space.
  pthread_attr_t small_stacks;
  pthread_attr_init(&small_stacks);
  pthread_attr_setstacksize(&small_stacks, 1 << 20);
  pthread_setattr_default_np(&small_stacks);

  std::vector<std::unique_ptr<Board>> boards;
  for (int i = 0; i < kBoards; ++i) boards.push_back(std::make_unique<Board>());
  for (const auto& board : boards) {
    const UniqueFd port(open(board->mcu().DevicePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(write(port.get(), "MCVG\r", 5), 5);
    char answer[8] = {};
    EXPECT_GT(read(port.get(), answer, sizeof answer), 0);
  }
}

}  // namespace
}  // namespace rolu_sim
