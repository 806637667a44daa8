// Descriptors of the board's devices: copies, children, and the less usual calls. Compiled as distributions
// compile programs (fortified).

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <stdio.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <string>
#include <thread>

#include "simulator/board.h"

// The stat calls of programs that were linked before glibc 2.33.
extern "C" {
int OldStat(int version, const char* path, struct stat* record) __asm__("__xstat");
int OldLstat64(int version, const char* path, struct stat64* record) __asm__("__lxstat64");
int OldFstat(int version, int fd, struct stat* record) __asm__("__fxstat");
int OldFstat64(int version, int fd, struct stat64* record) __asm__("__fxstat64");
int OldFstatat(int version, int directory, const char* path, struct stat* record,
               int flags) __asm__("__fxstatat");
}

namespace rolu_sim {
namespace {

constexpr int kStatVersion = sizeof(long) == 8 ? 1 : 3;

class BoardDescriptor : public testing::Test {
 protected:
  BoardDescriptor() {
    board_.AttachThisProcess();
    board_.light_sensor().SetText("abcdef\n");
  }

  static UniqueFd Open(const char* path, int flags) { return UniqueFd(open(path, flags | O_CLOEXEC)); }
  size_t OpenCount() { return board_.devices().OpenCount(kLuxPath); }

  // Reads the next `count` bytes.
  static std::string Read(int fd, size_t count) {
    std::array<char, 16> bytes{};
    const ssize_t length = read(fd, bytes.data(), count);
    return length < 0 ? strerrorname_np(errno) : std::string(bytes.data(), static_cast<size_t>(length));
  }
  static std::string ReadAt(int fd, size_t count, off_t offset) {
    std::array<char, 16> bytes{};
    const ssize_t length = pread(fd, bytes.data(), count, offset);
    return length < 0 ? strerrorname_np(errno) : std::string(bytes.data(), static_cast<size_t>(length));
  }
  static long Seek(int fd, off_t offset, int whence) {
    const off_t position = lseek(fd, offset, whence);
    return position < 0 ? -errno : static_cast<long>(position);
  }
  // Exit status 0 when `holds` is true in a child.
  template <typename Condition>
  static int InChild(Condition holds) {
    const pid_t child = fork();
    if (child == 0) _exit(holds() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return status;
  }

  Board board_;
};

TEST_F(BoardDescriptor, CopiesGoOnWhereAnotherLeftOffAndTheLastClosesTheDevice) {
  constexpr int kChosen = 300;
  using Copy = int (*)(int fd);
  const Copy ways[] = {[](int fd) { return dup(fd); }, [](int fd) { return dup2(fd, kChosen); },
                       [](int fd) { return dup3(fd, kChosen, O_CLOEXEC); },
                       [](int fd) { return fcntl(fd, F_DUPFD, kChosen); },
                       [](int fd) { return fcntl(fd, F_DUPFD_CLOEXEC, kChosen); }};
  for (const Copy copy_of : ways) {
    UniqueFd first = Open(kLuxPath, O_RDONLY);
    const UniqueFd second(copy_of(first.get()));
    EXPECT_EQ(Read(first.get(), 2), "ab");
    EXPECT_EQ(Read(second.get(), 2), "cd");
    EXPECT_EQ(InChild([&] { return Read(second.get(), 1) == "e" && close(second.get()) == 0; }), 0);
    first.Reset();
    EXPECT_EQ(OpenCount(), 1U);
    EXPECT_EQ(Read(second.get(), 8), "f\n");
    const UniqueFd other = Open("/dev/zero", O_RDONLY);
    ASSERT_EQ(dup2(other.get(), second.get()), second.get());
    EXPECT_EQ(OpenCount(), 0U);
    EXPECT_EQ(Read(second.get(), 1), std::string(1, '\0'));
  }
}

TEST_F(BoardDescriptor, APositionIsSoughtAsInASysfsAttribute) {
  const UniqueFd file = Open(kLuxPath, O_RDONLY);
  EXPECT_EQ(Read(file.get(), 3), "abc");
  EXPECT_EQ(Seek(file.get(), -2, SEEK_CUR), 1);
  EXPECT_EQ(Read(file.get(), 1), "b");
  EXPECT_EQ(Seek(file.get(), -1, SEEK_END), 4095);
  EXPECT_EQ(Read(file.get(), 1), "");
  EXPECT_EQ(Seek(file.get(), -1, SEEK_SET), -EINVAL);
  EXPECT_EQ(Seek(file.get(), 7, SEEK_HOLE), 4096);
  EXPECT_EQ(Seek(file.get(), 4096, SEEK_DATA), -ENXIO);
  EXPECT_EQ(Seek(file.get(), 1, 77), -EINVAL);

  board_.light_sensor().SetText("new\n");
  EXPECT_EQ(Seek(file.get(), 1, SEEK_SET), 1);
  EXPECT_EQ(Read(file.get(), 2), "bc") << "the text is made anew at its beginning only";
  EXPECT_EQ(ReadAt(file.get(), 4, 0), "new\n");
  EXPECT_EQ(ReadAt(file.get(), 4, -1), "EINVAL");
  EXPECT_EQ(Read(file.get(), 8), "\n") << "a read at an offset moves no position";

  const UniqueFd bus = Open(kI2cBusPath, O_RDWR);
  EXPECT_EQ(Seek(bus.get(), 0, SEEK_CUR), -ESPIPE);
}

TEST_F(BoardDescriptor, PartsAreReadAndWrittenOneAfterTheOther) {
  std::array<char, 3> first{};
  std::array<char, 8> second{};
  iovec parts[] = {{first.data(), first.size()}, {second.data(), second.size()}};
  const UniqueFd file = Open(kLuxPath, O_RDONLY);
  EXPECT_EQ(readv(file.get(), parts, 2), 7);
  EXPECT_STREQ(second.data(), "def\n");
  EXPECT_EQ(preadv(file.get(), parts, 2, 4), 3);
  EXPECT_EQ(std::string(first.data(), 3), "ef\n");

  const UniqueFd backlight = Open(kBacklightPath, O_RDWR);
  char three[] = "3";
  char bright[] = "bright";
  iovec levels[] = {{three, 1}, {bright, 6}};
  EXPECT_EQ(writev(backlight.get(), levels, 2), 1) << "each part is a level";
  EXPECT_EQ(board_.backlight().level(), 3);
  EXPECT_EQ(pwritev(backlight.get(), levels + 1, 1, 0), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(Read(backlight.get(), 8), "\n") << "a write moves the position as well";
  EXPECT_EQ(pwrite(backlight.get(), "4", 1, 0), 1);
  EXPECT_EQ(board_.backlight().level(), 4);
}

TEST_F(BoardDescriptor, TheSystemCopiesFromAndToADevice) {
  board_.light_sensor().SetText("7\n");
  const UniqueFd file = Open(kLuxPath, O_RDONLY);
  const UniqueFd backlight = Open(kBacklightPath, O_WRONLY);
  off_t offset = 0;
  EXPECT_EQ(sendfile(backlight.get(), file.get(), &offset, 100), 2);
  EXPECT_EQ(offset, 2);
  EXPECT_EQ(sendfile(backlight.get(), file.get(), &offset, 100), 0);
  EXPECT_EQ(board_.backlight().level(), 7);
  EXPECT_EQ(sendfile(backlight.get(), file.get(), nullptr, 1), 1);
  EXPECT_EQ(copy_file_range(file.get(), nullptr, backlight.get(), nullptr, 1, 0), -1);
  EXPECT_EQ(errno, ENOSYS);
}

TEST_F(BoardDescriptor, EveryStatCallTellsWhatItIs) {
  const UniqueFd file = Open(kLuxPath, O_RDONLY);
  struct stat status {};
  struct stat64 status64 {};
  const auto is_lux = [](auto& record, int result) {
    const bool told = result == 0 && record.st_mode == (S_IFREG | 0444) && record.st_size == 4096;
    record = {};
    return told;
  };
  EXPECT_TRUE(is_lux(status, fstat(file.get(), &status)));
  EXPECT_TRUE(is_lux(status64, fstat64(file.get(), &status64)));
  EXPECT_TRUE(is_lux(status, fstatat(file.get(), "", &status, AT_EMPTY_PATH)));
  EXPECT_TRUE(is_lux(status, OldStat(kStatVersion, kLuxPath, &status)));
  EXPECT_TRUE(is_lux(status64, OldLstat64(kStatVersion, kLuxPath, &status64)));
  EXPECT_TRUE(is_lux(status, OldFstat(kStatVersion, file.get(), &status)));
  EXPECT_TRUE(is_lux(status64, OldFstat64(kStatVersion, file.get(), &status64)));
  EXPECT_TRUE(is_lux(status, OldFstatat(kStatVersion, AT_FDCWD, kLuxPath, &status, 0)));
  struct statx extended {};
  ASSERT_EQ(statx(file.get(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &extended), 0);
  EXPECT_EQ(extended.stx_mode, S_IFREG | 0444);
  struct stat other {};
  ASSERT_EQ(stat(kLuxPath, &status), 0);
  ASSERT_EQ(stat(kBacklightPath, &other), 0);
  EXPECT_NE(status.st_ino, other.st_ino) << "or a program takes the two for one file";
}

// A handler may ask on a signal stack of its own, which is small.
TEST_F(BoardDescriptor, AStatCallNeedsLittleStack) {
  constexpr size_t kPage = 4096;
  // Beside what the kernel puts there, one to two pages are left for the handler.
  const size_t least = std::max<size_t>(getauxval(AT_MINSIGSTKSZ), 2048) + kPage;
  const size_t size = (least + kPage - 1) / kPage * kPage;
  static int result;
  result = -1;
  char* const pages = static_cast<char*>(
      mmap(nullptr, kPage + size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_EQ(mprotect(pages, kPage, PROT_NONE), 0);
  stack_t small{};
  small.ss_sp = pages + kPage;
  small.ss_size = size;
  stack_t before{};
  ASSERT_EQ(sigaltstack(&small, &before), 0);
  struct sigaction asking {};
  asking.sa_flags = SA_ONSTACK;
  asking.sa_handler = [](int) {
    struct stat status {};
    result = fstat(STDOUT_FILENO, &status);
  };
  struct sigaction other {};
  ASSERT_EQ(sigaction(SIGUSR1, &asking, &other), 0);
  raise(SIGUSR1);
  EXPECT_EQ(result, 0);
  sigaction(SIGUSR1, &other, nullptr);
  sigaltstack(&before, nullptr);
  munmap(pages, kPage + size);
}

TEST_F(BoardDescriptor, StreamsSeekAndNameTheirDescriptor) {
  FILE* stream = fopen(kLuxPath, "r");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(fgetc(stream), 'a');
  board_.light_sensor().SetText("new\n");
  rewind(stream);
  EXPECT_EQ(fgetc(stream), 'n');
  EXPECT_EQ(ReadAt(fileno(stream), 3, 0), "new");
  fclose(stream);
  EXPECT_EQ(OpenCount(), 0U);
  stream = fdopen(open(kBacklightPath, O_WRONLY), "w");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(fprintf(stream, "%d", 4), 1);
  EXPECT_EQ(fclose(stream), 0);
  EXPECT_EQ(board_.backlight().level(), 4);
}

TEST_F(BoardDescriptor, StandardOutputIsADeviceWhileItIsLedToOne) {
  const UniqueFd kept(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10));
  FILE* const usual = stdout;
  fflush(stdout);
  UniqueFd backlight = Open(kBacklightPath, O_WRONLY);
  ASSERT_EQ(dup2(backlight.get(), STDOUT_FILENO), STDOUT_FILENO);
  backlight.Reset();
  printf("8\n");
  const int taken = fflush(stdout);
  printf("bright\n");
  const int refused = fflush(stdout) == 0 ? 0 : errno;
  ASSERT_EQ(dup2(kept.get(), STDOUT_FILENO), STDOUT_FILENO);
  EXPECT_EQ(taken, 0);
  EXPECT_EQ(refused, EINVAL);
  EXPECT_EQ(stdout, usual);
  EXPECT_EQ(board_.backlight().level(), 8);
  EXPECT_EQ(board_.devices().OpenCount(kBacklightPath), 0U);
}

// The C library's own writes do not go through the wrapped functions.
TEST_F(BoardDescriptor, BytesWrittenPastThePreloadedObjectAreNotLost) {
  const UniqueFd backlight = Open(kBacklightPath, O_WRONLY);
  const UniqueFd file = Open(kBacklightPath, O_RDONLY);
  for (int level = 0; level <= Backlight::kHighestLevel; ++level) {
    ASSERT_EQ(dprintf(backlight.get(), "%d", level), level < 10 ? 1 : 2);
    EXPECT_EQ(ReadAt(file.get(), 8, 0), std::to_string(level) + '\n') << "the next call sees it";
  }
}

TEST_F(BoardDescriptor, ChildrenUseTheBoardWhileOtherThreadsDo) {
  const UniqueFd file = Open(kLuxPath, O_RDONLY);
  std::atomic<bool> done{false};
  std::thread busy([&] {
    while (!done) ReadAt(file.get(), 4, 0);
  });
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(InChild([&] { return ReadAt(file.get(), 3, 0) == "abc" && Open(kBacklightPath, O_RDWR); }), 0);
  }
  done = true;
  busy.join();
}

}  // namespace
}  // namespace rolu_sim
